#include "imaging/view/Shadow.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace kadrona::imaging::view {

namespace {

// In logical pixels.
constexpr double Blur = 4.0;
constexpr double Drop = 2.0;
constexpr double Opacity = 0.5;

// The blurred edge of a half plane that begins at 0.
double BlurredEdge(double position, double sigma) {
    return 0.5 * (1 + std::erf(position / (sigma * std::sqrt(2.0))));
}

// A blurred bar from `begin` to `end`, at the middle of every pixel.
std::vector<double> BlurredBar(int length, double begin, double end, double sigma) {
    std::vector<double> bar(static_cast<size_t>(length));
    for (int i = 0; i < length; ++i) {
        bar[static_cast<size_t>(i)] =
            BlurredEdge(i + 0.5 - begin, sigma) - BlurredEdge(i + 0.5 - end, sigma);
    }
    return bar;
}

// Where a length is cut into corner, side and corner.
using Cuts = std::array<int, 4>;

Cuts CutsOf(int start, int length, int corner) {
    return {start, start + corner, start + length - corner, start + length};
}

QRect Cell(const Cuts& x, const Cuts& y, size_t column, size_t row) {
    return {QPoint(x.at(column), y.at(row)), QPoint(x.at(column + 1) - 1, y.at(row + 1) - 1)};
}

}  // namespace

void Shadow::Prepare(double deviceScale) {
    if (deviceScale == deviceScale_) {
        return;
    }
    deviceScale_ = deviceScale;
    reach_ = static_cast<int>(std::ceil(Reach * deviceScale));
    const int side = 4 * reach_ + 1;
    const double drop = Drop * deviceScale;
    const double sigma = Blur * deviceScale;
    const std::vector<double> across = BlurredBar(side, reach_, side - reach_, sigma);
    const std::vector<double> down = BlurredBar(side, reach_ + drop, side - reach_ + drop, sigma);
    patch_ = QImage(side, side, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < side; ++y) {
        auto* line = reinterpret_cast<QRgb*>(patch_.scanLine(y));
        for (int x = 0; x < side; ++x) {
            const double share = across[static_cast<size_t>(x)] * down[static_cast<size_t>(y)];
            line[x] = qRgba(0, 0, 0, static_cast<int>(std::lround(255 * Opacity * share)));
        }
    }
}

void Shadow::Draw(QPainter& painter, const QRect& rectangle, double deviceScale) {
    Prepare(deviceScale);
    const QRect outer = rectangle.adjusted(-reach_, -reach_, reach_, reach_);
    // Half of a small rectangle's sides belongs to each corner.
    const int cornerWidth = reach_ + std::min(reach_, rectangle.width() / 2);
    const int cornerHeight = reach_ + std::min(reach_, rectangle.height() / 2);
    const Cuts targetX = CutsOf(outer.left(), outer.width(), cornerWidth);
    const Cuts targetY = CutsOf(outer.top(), outer.height(), cornerHeight);
    const Cuts sourceX = CutsOf(0, patch_.width(), cornerWidth);
    const Cuts sourceY = CutsOf(0, patch_.height(), cornerHeight);
    painter.save();
    painter.setClipRegion(QRegion(outer) - rectangle, Qt::IntersectClip);
    for (size_t row = 0; row < 3; ++row) {
        for (size_t column = 0; column < 3; ++column) {
            const bool isMiddle = row == 1 && column == 1;
            const QRect target = Cell(targetX, targetY, column, row);
            if (!isMiddle && !target.isEmpty()) {
                painter.drawImage(target, patch_, Cell(sourceX, sourceY, column, row));
            }
        }
    }
    painter.restore();
}

}  // namespace kadrona::imaging::view
