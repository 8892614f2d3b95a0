#include "imaging/view/LayerHandles.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace kadrona::imaging::view {

namespace {

constexpr std::array Corners = {Handle{-1, -1}, Handle{1, -1}, Handle{-1, 1}, Handle{1, 1}};
constexpr std::array HorizontalEdges = {Handle{0, -1}, Handle{0, 1}};
constexpr std::array VerticalEdges = {Handle{-1, 0}, Handle{1, 0}};

QRect GrownTo(const QRect& frame, int side) {
    const int x = std::max(0, side - frame.width() + 1) / 2;
    const int y = std::max(0, side - frame.height() + 1) / 2;
    return frame.adjusted(-x, -y, x, y);
}

// Keeps the ratio of the whole pixels as close as they can.
QSize ScaledSize(QSize size, double scale) {
    const auto round = [](double value) {
        return std::max(1, static_cast<int>(std::lround(value)));
    };
    if (size.width() >= size.height()) {
        const int width = round(size.width() * scale);
        return {width, round(static_cast<double>(width) * size.height() / size.width())};
    }
    const int height = round(size.height() * scale);
    return {round(static_cast<double>(height) * size.width() / size.height()), height};
}

// Start of the scaled length, with the end opposite of the handle (or the middle) kept.
int ScaledStart(int start, int length, int scaledLength, int side) {
    if (side > 0) {
        return start;
    }
    if (side < 0) {
        return start + length - scaledLength;
    }
    return static_cast<int>(std::lround(start + (length - scaledLength) / 2.0));
}

}  // namespace

HandleLayout::HandleLayout(const QRect& frame, int hitSize) : hitSize_(hitSize) {
    const QRect outline = GrownTo(frame, 3 * hitSize);
    const auto add = [&](Handle handle) {
        // x and y: -1, 0, 1 give the start, the middle and the end.
        places_.push_back({handle,
                           {outline.x() + (outline.width() - 1) * (handle.x + 1) / 2,
                            outline.y() + (outline.height() - 1) * (handle.y + 1) / 2}});
    };
    std::ranges::for_each(Corners, add);
    if (outline.width() >= 4 * hitSize) {
        std::ranges::for_each(HorizontalEdges, add);
    }
    if (outline.height() >= 4 * hitSize) {
        std::ranges::for_each(VerticalEdges, add);
    }
}

std::optional<Handle> HandleLayout::HandleAt(QPointF point) const {
    for (const Place& place : places_) {
        const QPointF away = point - place.centre;
        if (std::max(std::abs(away.x()), std::abs(away.y())) <= hitSize_ / 2.0) {
            return place.handle;
        }
    }
    return std::nullopt;
}

QRect ScaledAboutMiddle(const QRect& layer, QSize shape, int by, QSize photo) {
    const int width = layer.width() + 2 * by;
    const double scale = static_cast<double>(width) / shape.width();
    const QSize size(width, static_cast<int>(std::lround(shape.height() * scale)));
    const int longest = LayerDrag::MaximumSideOfPhoto * std::max(photo.width(), photo.height());
    const bool isAllowed = by < 0 ? std::min(size.width(), size.height()) >= LayerDrag::MinimumSide
                                  : std::max(size.width(), size.height()) <= longest;
    if (!isAllowed) {
        return layer;
    }
    const QSize growth = size - layer.size();
    return {layer.topLeft() - QPoint(growth.width() / 2, growth.height() / 2), size};
}

LayerDrag::LayerDrag(const QRect& start, Handle handle, QPointF pressedAt, QSize photo)
    : start_(start), handle_(handle), pressedAt_(pressedAt) {
    const int shortSide = std::min(start.width(), start.height());
    const int longSide = std::max(start.width(), start.height());
    const int longestAllowed = MaximumSideOfPhoto * std::max(photo.width(), photo.height());
    smallestScale_ = std::min(1.0, static_cast<double>(MinimumSide) / shortSide);
    largestScale_ = std::max(1.0, static_cast<double>(longestAllowed) / longSide);
}

QRect LayerDrag::RectangleAt(QPointF pointer) const {
    const QPointF move = pointer - pressedAt_;
    return handle_.IsBody() ? start_.translated(move.toPoint()) : Resized(move);
}

QRect LayerDrag::Resized(QPointF pointerMove) const {
    // From the fixed point to the handle; the pointer's way along it is the change of scale.
    const QPointF extent(handle_.x * start_.width(), handle_.y * start_.height());
    const double wanted =
        1.0 + QPointF::dotProduct(pointerMove, extent) / QPointF::dotProduct(extent, extent);
    const double scale = std::clamp(wanted, smallestScale_, largestScale_);
    const QSize size = ScaledSize(start_.size(), scale);
    return {QPoint(ScaledStart(start_.x(), start_.width(), size.width(), handle_.x),
                   ScaledStart(start_.y(), start_.height(), size.height(), handle_.y)),
            size};
}

}  // namespace kadrona::imaging::view
