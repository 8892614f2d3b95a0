#include "imaging/view/ScaledPixels.h"

#include <QRegion>
#include <QScopeGuard>
#include <algorithm>
#include <cstring>
#include <utility>

#include "imaging/NewImage.h"

namespace kadrona::imaging::view {

namespace {

constexpr double CrispAbove = 3.0;

int Edge(int index, int length, int count) {
    return static_cast<int>((2 * qint64{index} * length + count) / (2 * qint64{count}));
}

void CopyPart(const QImage& source, QPoint from, QImage& destination, QPoint to, QSize size) {
    for (int row = 0; row < size.height(); ++row) {
        std::memcpy(destination.scanLine(to.y() + row) + ptrdiff_t{4} * to.x(),
                    source.constScanLine(from.y() + row) + ptrdiff_t{4} * from.x(),
                    sizeof(quint32) * static_cast<size_t>(size.width()));
    }
}

// The level whose pixels are at most twice as fine as the device's along the finer axis.
int LevelFor(const Pyramid& pyramid, double step) {
    int level = 0;
    while (step > 2 && level + 1 < pyramid.LevelCount()) {
        step /= 2;
        ++level;
    }
    return level;
}

}  // namespace

void ScaledPixels::Notice(const Pixels& pixels) {
    // The key also changes when pixels are changed in place.
    const Identity identity{pixels.Tile().cacheKey(), pixels.Columns(), pixels.Rows()};
    if (identity == identity_) {
        return;
    }
    if (identity.tile != identity_.tile) {
        pyramid_ = Pyramid(pixels.Tile().size());
    }
    identity_ = identity;
    drawnPart_ = QRect();
}

void ScaledPixels::Draw(const Pixels& pixels, QSize size, const QRect& part, Quality quality) {
    Notice(pixels);
    const bool reusable =
        size == size_ && (quality_ == Quality::Smooth || quality == Quality::Fast);
    if (reusable && drawnPart_.contains(part)) {
        return;
    }
    const QRect kept = reusable ? drawnPart_ & part : QRect();
    if (spare_.size() != part.size() || spare_.format() != pixels.Tile().format()) {
        spare_ = NewImage(part.size(), pixels.Tile().format());
    }
    std::swap(drawing_, spare_);
    if (!kept.isEmpty()) {
        CopyPart(spare_, kept.topLeft() - drawnPart_.topLeft(), drawing_,
                 kept.topLeft() - part.topLeft(), kept.size());
    }
    size_ = size;
    quality_ = kept.isEmpty() ? quality : quality_;
    drawnPart_ = part;
    auto forgetIncomplete = qScopeGuard([this] { drawnPart_ = QRect(); });
    for (const QRect& missing : QRegion(part) - kept) {
        DrawPart(pixels, missing);
    }
    forgetIncomplete.dismiss();
}

void ScaledPixels::DrawPart(const Pixels& pixels, const QRect& part) {
    for (int row = 0; row < pixels.Rows(); ++row) {
        const int top = Edge(row, size_.height(), pixels.Rows());
        const int bottom = Edge(row + 1, size_.height(), pixels.Rows());
        if (bottom <= part.top() || top > part.bottom()) {
            continue;
        }
        for (int column = 0; column < pixels.Columns(); ++column) {
            const int left = Edge(column, size_.width(), pixels.Columns());
            const int right = Edge(column + 1, size_.width(), pixels.Columns());
            const QRect tile(left, top, right - left, bottom - top);
            const QRect visible = tile & part;
            if (!visible.isEmpty()) {
                DrawTile(pixels.Tile(), tile.size(), visible.translated(-tile.topLeft()),
                         visible.topLeft() - drawnPart_.topLeft());
            }
        }
    }
}

void ScaledPixels::DrawTile(const QImage& tile, QSize size, const QRect& part, QPoint at) {
    const QSize full = tile.size();
    double stepX = static_cast<double>(full.width()) / size.width();
    double stepY = static_cast<double>(full.height()) / size.height();
    const int level = LevelFor(pyramid_, std::min(stepX, stepY));
    stepX /= 1 << level;
    stepY /= 1 << level;
    const QSize source = pyramid_.LevelSize(level);
    const AxisTaps columns = MakeAxisTaps(source.width(), stepX, part.left(), part.right() + 1,
                                          FilterFor(stepX));
    const AxisTaps rows = MakeAxisTaps(source.height(), stepY, part.top(), part.bottom() + 1,
                                       FilterFor(stepY));
    const QRect used(QPoint(columns.FirstSource(), rows.FirstSource()),
                     QPoint(columns.EndSource() - 1, rows.EndSource() - 1));
    Resample(pyramid_.Level(tile, level, used), columns, rows, drawing_, at);
}

Filter ScaledPixels::FilterFor(double step) const {
    if (step == 1.0 || (enlargement_ == Enlargement::Crisp && step * CrispAbove < 1.0)) {
        return Filter::Nearest;
    }
    return step > 1.0 && quality_ == Quality::Smooth ? Filter::Area : Filter::Linear;
}

}  // namespace kadrona::imaging::view
