#pragma once

#include <QtGlobal>
#include <deque>

#include "imaging/Pixels.h"
#include "imaging/Resolution.h"

namespace kadrona::imaging {

/// What one undo step brings back.
struct Snapshot {
    Pixels pixels;
    DotsPerInch resolution;
};

/// The earlier states of one photo, newest on top. Holds at most `limit` steps and at most a budget
/// of bytes (the oldest go first; the newest always stays). Steps share what has not changed: a
/// snapshot shares the live photo's pixels until the photo changes, and a state that differs from
/// its successor only in places is kept as those places alone.
class UndoHistory {
 public:
    static constexpr qsizetype DefaultByteBudget = qsizetype{1} << 30;

    explicit UndoHistory(int limit = 10, qsizetype byteBudget = DefaultByteBudget);

    void SetLimit(int limit);

    /// Records the photo's present state. Does nothing where the newest step holds the very same
    /// pixels, so that "record, then an operation that records by itself" is one step.
    void Record(const Snapshot& present);

    bool IsEmpty() const { return steps_.empty(); }
    int Count() const { return static_cast<int>(steps_.size()); }

    /// Takes the newest step back: returns the state it holds, given the present one. There is no
    /// redo. Precondition: not empty.
    Snapshot TakeNewest(const Snapshot& present);

    /// Drops the newest step without going back to it.
    void DropNewest();
    void Clear();

    /// Memory that the steps hold by themselves, without what they share with the live photo.
    qsizetype ByteCount() const;

 private:
    std::deque<Snapshot> steps_;
    int limit_;
    qsizetype byteBudget_;
};

}  // namespace kadrona::imaging
