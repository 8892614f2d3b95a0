#include "imaging/retouch/CloneStamp.h"

#include <algorithm>
#include <cmath>

#include "imaging/retouch/CloneStroke.h"

namespace kadrona::imaging {

namespace {

/// Farther than any photo is long, and well within what positions are added in.
constexpr double FarAway = 1e9;

bool IsFinite(QPointF position) {
    return std::isfinite(position.x()) && std::isfinite(position.y());
}

QPointF Bounded(QPointF position) {
    return {std::clamp(position.x(), -FarAway, FarAway),
            std::clamp(position.y(), -FarAway, FarAway)};
}

/// Whole pixels, so that what is copied stays as sharp as it is.
QPoint WholeOffset(QPointF from, QPointF to) {
    const auto whole = [](double length) { return static_cast<int>(std::round(length)); };
    return {whole(to.x() - from.x()), whole(to.y() - from.y())};
}

}  // namespace

CloneStamp::CloneStamp(LayeredImage& image) : image_(image) {}

CloneStamp::~CloneStamp() = default;

void CloneStamp::TakeSource(QPointF position) {
    const QSize photo = image_.Photo().Size();
    const bool isOnPhoto = IsFinite(position) && position.x() >= 0 && position.y() >= 0 &&
                           position.x() < photo.width() && position.y() < photo.height();
    if (isOnPhoto) {
        EndStroke();
        source_ = position;
        offset_.reset();
    }
}

bool CloneStamp::HasSource() const {
    return source_.has_value();
}

void CloneStamp::Reset() {
    EndStroke();
    source_.reset();
    offset_.reset();
}

std::optional<QPointF> CloneStamp::SourceFor(QPointF target) const {
    return offset_ ? std::optional(target + *offset_) : source_;
}

bool CloneStamp::BeginStroke(QPointF position, const Brush& brush) {
    if (!source_ || image_.IsEmpty() || !IsFinite(position)) {
        return false;
    }
    if (!offset_) {
        offset_ = WholeOffset(Bounded(position), *source_);
    }
    stroke_ = std::make_unique<Stroke>(image_, brush, offset_->toPoint(), Bounded(position));
    stroke_->DrawTo(Bounded(position));
    return true;
}

void CloneStamp::ContinueStroke(QPointF position) {
    if (!stroke_ || !IsFinite(position)) {
        return;
    }
    if (!stroke_->IsPhotoTheSame()) {
        EndStroke();
        return;
    }
    stroke_->DrawTo(Bounded(position));
}

void CloneStamp::EndStroke() {
    stroke_.reset();
}

bool CloneStamp::IsStroking() const {
    return stroke_ != nullptr;
}

}  // namespace kadrona::imaging
