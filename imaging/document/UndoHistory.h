#pragma once

#include <QRect>
#include <deque>
#include <functional>
#include <optional>
#include <vector>

#include "imaging/document/PhotoEdits.h"
#include "imaging/document/PixelDifference.h"
#include "imaging/pixels/Pixels.h"
#include "imaging/pixels/Resolution.h"

namespace kadrona::imaging {

/// Where a layer above the photo lay. Its pixels' key tells whether it is the same layer still.
struct LayerPlace {
    qint64 pixels;
    QRect rectangle;
};

/// The earlier states of one photo (pixels and resolution), newest on top. Holds at most `limit`
/// steps and at most a budget of bytes (the oldest go first; the newest always stays). Steps share
/// what has not changed: the newest shares the live photo's pixels until the photo changes, and a
/// state that differs from its successor only in places is kept as those places alone.
///
///     oldest                         newest
///     step 0  -->  step 1  -->  ...  step n  -->  reference        live photo
///           blocks        blocks         none     (shared with the live photo until that changes)
///
/// Each step is held as its difference from the next newer one, the newest as its difference from a
/// reference picture: the live photo as it was at the last recording or undo. Changes to the live
/// photo are found at the next recording, by comparison.
///
/// QUndoStack was weighed: it keeps whole commands, knows no budget of bytes, and its commands
/// would have to do all of this by themselves.
class UndoHistory {
 public:
    static constexpr qsizetype DefaultByteBudget = qsizetype{1} << 30;

    explicit UndoHistory(int limit = 10, qsizetype byteBudget = DefaultByteBudget);

    /// At 0 nothing is recorded.
    void SetLimit(int limit);

    /// Records the photo's present state. Does nothing where the newest step has the same pixels,
    /// so that "record, then an operation that records by itself" is one step. `edits` is what was
    /// done to the photo up to that state.
    void Record(const Pixels& photo, DotsPerInch resolution, PhotoEdits edits = {});

    /// What follows the newest step moves what the photo shows, as a turn does: taking the step
    /// brings the layers above back to these places.
    void KeepPlaces(std::vector<LayerPlace> places);

    bool IsEmpty() const { return steps_.empty(); }
    /// What was done to the photo up to the newest step; nothing where there is no step.
    PhotoEdits NewestEdits() const { return IsEmpty() ? PhotoEdits() : steps_.back().edits; }
    int Count() const { return static_cast<int>(steps_.size()); }

    /// Takes the newest step off and brings the photo back to it; in place where only blocks differ
    /// and nothing else shares the photo's pixels. Gives the places that were kept with it. There
    /// is no redo. Throws platform::Error where memory is short; photo and history stay then.
    /// Precondition: not empty.
    std::optional<std::vector<LayerPlace>> TakeNewest(Pixels& photo, DotsPerInch& resolution);

    /// Lets `edit` change the photo's tile in place, inside `area` alone, and keeps only the blocks
    /// touched: nothing but those is copied unless pixels are shared beside the history. Throws
    /// platform::Error where memory is short, before anything is changed.
    void EditInPlace(Pixels& photo, const QRect& area, const std::function<void(QImage&)>& edit);

    void Clear();

    /// Memory that the steps hold by themselves, without what they share with the live photo.
    qsizetype ByteCount(const Pixels& photo) const;

 private:
    struct Step {
        PixelDifference difference;
        DotsPerInch resolution;
        PhotoEdits edits;
        std::optional<std::vector<LayerPlace>> places = std::nullopt;
    };

    void MoveReferenceTo(const Pixels& photo);
    void DropOldest();

    std::deque<Step> steps_;
    Pixels reference_;
    int limit_;
    qsizetype byteBudget_;
};

}  // namespace kadrona::imaging
