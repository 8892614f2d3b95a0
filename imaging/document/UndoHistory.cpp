#include "imaging/document/UndoHistory.h"

#include <QScopeGuard>
#include <algorithm>
#include <cstdint>
#include <vector>

namespace kadrona::imaging {

namespace {

/// The addresses of a picture's pixels, end exclusive. Pictures that share pixels overlap.
struct MemoryRange {
    std::uintptr_t begin;
    std::uintptr_t end;
    bool isPhoto;
};

MemoryRange RangeOf(const Pixels& pixels, bool isPhoto) {
    const auto begin = reinterpret_cast<std::uintptr_t>(pixels.Tile().constBits());
    return {begin, begin + static_cast<std::uintptr_t>(pixels.ByteCount()), isPhoto};
}

/// Bytes of all ranges, overlaps counted once, without those that overlap the photo's: the photo
/// keeps these alive anyway.
qsizetype BytesBesidePhoto(std::vector<MemoryRange> ranges) {
    std::sort(ranges.begin(), ranges.end(),
              [](const MemoryRange& a, const MemoryRange& b) { return a.begin < b.begin; });
    qsizetype bytes = 0;
    for (auto range = ranges.begin(); range != ranges.end();) {
        MemoryRange merged = *range;
        for (++range; range != ranges.end() && range->begin < merged.end; ++range) {
            merged.end = std::max(merged.end, range->end);
            merged.isPhoto = merged.isPhoto || range->isPhoto;
        }
        bytes += merged.isPhoto ? 0 : static_cast<qsizetype>(merged.end - merged.begin);
    }
    return bytes;
}

}  // namespace

UndoHistory::UndoHistory(int limit, qsizetype byteBudget)
    : limit_(limit), byteBudget_(byteBudget) {}

void UndoHistory::SetLimit(int limit) {
    limit_ = limit;
    while (Count() > std::max(limit_, 0)) {
        DropOldest();
    }
}

void UndoHistory::Record(const Pixels& photo, DotsPerInch resolution, PhotoEdits edits) {
    if (limit_ <= 0) {
        return;
    }
    if (!steps_.empty()) {
        MoveReferenceTo(photo);
        if (steps_.back().difference.IsNone()) {
            return;
        }
    }
    reference_ = photo;
    steps_.push_back({{}, resolution, edits});
    while (Count() > limit_ || (Count() > 1 && ByteCount(photo) > byteBudget_)) {
        DropOldest();
    }
}

void UndoHistory::KeepPlaces(std::vector<LayerPlace> places) {
    if (!steps_.empty()) {
        steps_.back().places = std::move(places);
    }
}

std::optional<std::vector<LayerPlace>> UndoHistory::TakeNewest(Pixels& photo,
                                                               DotsPerInch& resolution) {
    const bool isShared = reference_.SharesPixelsWith(photo);
    if (isShared) {
        // With one holder left, blocks are put back without a copy of the whole photo.
        photo = Pixels();
    }
    auto keepPhoto = qScopeGuard([&] {
        if (isShared) {
            photo = reference_;
        }
    });
    steps_.back().difference.ApplyTo(reference_);
    keepPhoto.dismiss();
    photo = reference_;
    resolution = steps_.back().resolution;
    auto places = std::move(steps_.back().places);
    steps_.pop_back();
    if (steps_.empty()) {
        Clear();
    }
    return places;
}

void UndoHistory::EditInPlace(Pixels& photo, const QRect& area,
                              const std::function<void(QImage&)>& edit) {
    const bool isShared = !steps_.empty() && reference_.SharesPixelsWith(photo);
    if (isShared) {
        steps_.back().difference.HoldArea(reference_, area);
        reference_ = Pixels();
    }
    const auto follow = qScopeGuard([&] {
        if (isShared) {
            reference_ = photo;
        }
    });
    edit(photo.EditableTile());
}

void UndoHistory::Clear() {
    steps_.clear();
    reference_ = Pixels();
}

qsizetype UndoHistory::ByteCount(const Pixels& photo) const {
    qsizetype blocks = 0;
    std::vector<MemoryRange> ranges = {RangeOf(photo, true), RangeOf(reference_, false)};
    for (const Step& step : steps_) {
        blocks += step.difference.BlockByteCount();
        ranges.push_back(RangeOf(step.difference.Whole(), false));
    }
    return blocks + BytesBesidePhoto(std::move(ranges));
}

/// Expresses the newest step by its difference from the photo instead of from the old reference.
void UndoHistory::MoveReferenceTo(const Pixels& photo) {
    if (reference_.SharesPixelsWith(photo)) {
        return;
    }
    Pixels newest = reference_;
    steps_.back().difference.ApplyTo(newest);
    steps_.back().difference = PixelDifference(photo, newest);
    reference_ = photo;
}

void UndoHistory::DropOldest() {
    steps_.pop_front();
    if (steps_.empty()) {
        Clear();
    }
}

}  // namespace kadrona::imaging
