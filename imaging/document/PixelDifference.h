#pragma once

#include <QImage>
#include <QPoint>
#include <vector>

#include "imaging/pixels/Pixels.h"

namespace kadrona::imaging {

/// What turns one picture, the base, into another one, the target: the blocks in which they differ,
/// or the whole target where sizes differ or blocks would save little.
class PixelDifference {
 public:
    static constexpr int BlockLength = 256;

    /// None: the target is the base.
    PixelDifference() = default;

    /// Compares the pictures. Where memory for blocks is short it keeps the whole target instead,
    /// which shares the target's pixels.
    PixelDifference(const Pixels& base, const Pixels& target);

    bool IsNone() const { return whole_.IsEmpty() && blocks_.empty(); }

    /// Makes the target of the base; in place where nothing else shares the base's pixels. Throws
    /// platform::Error where memory is short and leaves the base then.
    void ApplyTo(Pixels& base) const;

    /// Prepares for the base being changed inside `area`: holds the blocks there as the target has
    /// them now, so that the target stays what it is. Throws platform::Error where memory is short.
    void HoldArea(const Pixels& base, const QRect& area);

    /// The target where it is held whole, else empty.
    const Pixels& Whole() const { return whole_; }

    /// Memory that the blocks take; the whole target does not count.
    qsizetype BlockByteCount() const;

 private:
    struct Block {
        QPoint position;
        QImage pixels;
    };

    Pixels whole_;
    std::vector<Block> blocks_;
};

}  // namespace kadrona::imaging
