#pragma once

#include <exception>

#include "imaging/pixels/Pixels.h"

namespace kadrona::imaging {

/// Whoever waited for a picture gave it up. No failure: nothing is to be said of it.
class ReadCancelled : public std::exception {};

/// Waits for a picture that takes long to be decoded, as cameras' raw files do.
class ReadProgress {
 public:
    /// In the place of a part that nobody knows.
    static constexpr double Unknown = -1;

    virtual ~ReadProgress() = default;

    /// It is going to take more than half a second. `preview` is what the file itself holds of the
    /// picture, turned as that will be and as a rule smaller; empty where it holds nothing.
    virtual void Begin(const Pixels& preview) = 0;

    /// So much is done, 0 to 1 or Unknown. False gives the picture up. Called by the thread that
    /// reads, a few times a second as far as the decoder lets it; must not throw.
    virtual bool GoOn(double part) = 0;
};

}  // namespace kadrona::imaging
