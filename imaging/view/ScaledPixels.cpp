#include "imaging/view/ScaledPixels.h"

#include <QScopeGuard>
#include <algorithm>
#include <cstring>
#include <utility>

#include "imaging/pixels/NewImage.h"

namespace kadrona::imaging::view {

namespace {

constexpr double CrispAbove = 3.0;

/// Pixels that are read at most to build a level while it is drawn, and in each step of preparing
/// it: a few milliseconds on one core.
constexpr qint64 MostCostOfDrawing = 5'000'000;
constexpr qint64 CostOfStep = 4'000'000;

int Edge(int index, int length, int count) {
    return static_cast<int>((2 * qint64{index} * length + count) / (2 * qint64{count}));
}

const QImage& PictureOf(const Pixels& pixels, size_t index) {
    return pixels.Arranged() != nullptr ? pixels.Arranged()->pictures.at(index) : pixels.Tile();
}

size_t PictureCount(const Pixels& pixels) {
    return pixels.Arranged() != nullptr ? pixels.Arranged()->pictures.size() : 1;
}

QImage::Format FormatOf(const Pixels& pixels) {
    return pixels.Arranged() != nullptr ? QImage::Format_RGB32 : pixels.Tile().format();
}

void CopyPart(const QImage& source, QPoint from, QImage& destination, QPoint to, QSize size) {
    for (int row = 0; row < size.height(); ++row) {
        std::memcpy(destination.scanLine(to.y() + row) + ptrdiff_t{4} * to.x(),
                    source.constScanLine(from.y() + row) + ptrdiff_t{4} * from.x(),
                    sizeof(quint32) * static_cast<size_t>(size.width()));
    }
}

}  // namespace

// Source pixels per destination pixel.
struct ScaledPixels::Steps {
    double x;
    double y;

    double Finer() const { return std::min(x, y); }
    Steps AtLevel(int level) const { return {x / (1 << level), y / (1 << level)}; }

    /// The drawn pixels that may be mixed from those of `area`.
    QRect Showing(const QRect& area) const {
        return QRectF((area.x() - 2) / x, (area.y() - 2) / y, (area.width() + 4) / x,
                      (area.height() + 4) / y)
            .toAlignedRect()
            .adjusted(-3, -3, 3, 3);
    }

    /// The source pixels that drawing `part` may read.
    QRect Covered(const QRect& part) const {
        return QRectF(part.x() * x, part.y() * y, part.width() * x, part.height() * y)
            .toAlignedRect()
            .adjusted(-2, -2, 2, 2);
    }
};

void ScaledPixels::Notice(const Pixels& pixels) {
    // The key also changes when pixels are changed in place.
    const Identity identity{pixels.Key(), pixels.Columns(), pixels.Rows()};
    if (identity == identity_) {
        return;
    }
    pyramids_.resize(PictureCount(pixels));
    for (size_t i = 0; i < pyramids_.size(); ++i) {
        const QSize size = PictureOf(pixels, i).size();
        if (pyramids_[i].PictureSize() != size) {
            pyramids_[i] = Pyramid(size);
        } else if (identity.key != identity_.key) {
            pyramids_[i].Invalidate();
        }
    }
    identity_ = identity;
    drawnPart_ = QRect();
    stale_ = QRegion();
    pending_.reset();
}

void ScaledPixels::TakeEdit(const Pixels& pixels, const QRect& area) {
    const QSize tile = pixels.Tile().size();
    const bool isPlain = pixels.Columns() == 1 && pixels.Rows() == 1;
    if (identity_ == Identity() || !isPlain || identity_.columns != 1 || identity_.rows != 1 ||
        pixels.Arranged() != nullptr || pyramids_.size() != 1 ||
        pyramids_.front().PictureSize() != tile) {
        Forget();
        return;
    }
    identity_.key = pixels.Key();
    pyramids_.front().Invalidate(area);
    if (!drawnPart_.isEmpty()) {
        // What is drawn of a coarser level may come from the pixels around as well.
        const Steps steps{static_cast<double>(tile.width()) / size_.width(),
                          static_cast<double>(tile.height()) / size_.height()};
        stale_ += steps.Showing(area) & drawnPart_;
    }
}

void ScaledPixels::Forget() {
    identity_ = {};
}

void ScaledPixels::DrawStale(const Pixels& pixels) {
    auto forgetIncomplete = qScopeGuard([this] { drawnPart_ = QRect(); });
    for (const QRect& rectangle : std::exchange(stale_, QRegion())) {
        DrawPart(pixels, rectangle);
    }
    forgetIncomplete.dismiss();
}

bool ScaledPixels::Prepare(const Pixels& pixels) {
    Notice(pixels);
    return !pending_ || pyramids_.at(pending_->picture)
                            .Build(PictureOf(pixels, pending_->picture), pending_->level,
                                   pending_->part, CostOfStep);
}

bool ScaledPixels::IsReusable(QSize size, Quality quality) {
    const bool isPrepared =
        pending_ && pyramids_.at(pending_->picture).IsBuilt(pending_->level, pending_->part);
    return size == size_ && !isPrepared &&
           (quality_ == Quality::Smooth || quality == Quality::Fast);
}

void ScaledPixels::Draw(const Pixels& pixels, QSize size, const QRect& part, Quality quality) {
    Notice(pixels);
    const bool reusable = IsReusable(size, quality);
    if (reusable) {
        DrawStale(pixels);
    } else {
        pending_.reset();
    }
    stale_ = QRegion();
    if (reusable && drawnPart_.contains(part)) {
        return;
    }
    const QRect kept = reusable ? drawnPart_ & part : QRect();
    if (spare_.size() != part.size() || spare_.format() != FormatOf(pixels)) {
        spare_ = NewImage(part.size(), FormatOf(pixels));
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

QRect ScaledPixels::Scaled(const QRect& rectangle, QSize whole) const {
    const int left = Edge(rectangle.left(), size_.width(), whole.width());
    const int top = Edge(rectangle.top(), size_.height(), whole.height());
    return {left, top, Edge(rectangle.right() + 1, size_.width(), whole.width()) - left,
            Edge(rectangle.bottom() + 1, size_.height(), whole.height()) - top};
}

void ScaledPixels::DrawPart(const Pixels& pixels, const QRect& part) {
    if (const Arrangement* arrangement = pixels.Arranged()) {
        Fill(QRect(QPoint(), size_), part, qRgb(255, 255, 255));
        for (const Arrangement::Placed& placed : arrangement->placed) {
            DrawPlaced(pixels, placed.picture,
                       Scaled(arrangement->RectangleOf(placed), pixels.Size()), part);
        }
        for (const Arrangement::Mark& mark : arrangement->marks) {
            const QRect scaled = Scaled(mark.area, pixels.Size());
            Fill({scaled.topLeft(), scaled.size().expandedTo({1, 1})}, part, mark.colour);
        }
        return;
    }
    const QSize tile = pixels.Tile().size();
    for (int row = 0; row < pixels.Rows(); ++row) {
        for (int column = 0; column < pixels.Columns(); ++column) {
            const QPoint corner(column * tile.width(), row * tile.height());
            DrawPlaced(pixels, 0, Scaled({corner, tile}, pixels.Size()), part);
        }
    }
}

void ScaledPixels::Fill(const QRect& area, const QRect& part, QRgb colour) {
    const QRect filled = (area & part).translated(-drawnPart_.topLeft());
    for (int y = filled.top(); y <= filled.bottom(); ++y) {
        std::fill_n(reinterpret_cast<QRgb*>(drawing_.scanLine(y)) + filled.left(), filled.width(),
                    colour);
    }
}

/// What of a picture that is scaled to `place` lies in `part`.
void ScaledPixels::DrawPlaced(const Pixels& pixels, size_t picture, const QRect& place,
                              const QRect& part) {
    const QRect visible = place & part;
    if (!visible.isEmpty()) {
        DrawPicture(picture, PictureOf(pixels, picture), place.size(),
                    visible.translated(-place.topLeft()), visible.topLeft() - drawnPart_.topLeft());
    }
}

void ScaledPixels::DrawPicture(size_t index, const QImage& picture, QSize size, const QRect& part,
                               QPoint at) {
    const Steps full{static_cast<double>(picture.width()) / size.width(),
                     static_cast<double>(picture.height()) / size.height()};
    const Source source = SourceFor(index, picture, full, part);
    const Steps steps = full.AtLevel(source.level);
    const Pyramid& pyramid = pyramids_[index];
    const QSize length = pyramid.LevelSize(source.level);
    const auto filter = [&](double step) {
        // Of a much finer level few pixels are read.
        return source.isProvisional && step > 2 ? Filter::Nearest : FilterFor(step);
    };
    const AxisTaps columns =
        MakeAxisTaps(length.width(), steps.x, part.left(), part.right() + 1, filter(steps.x));
    const AxisTaps rows =
        MakeAxisTaps(length.height(), steps.y, part.top(), part.bottom() + 1, filter(steps.y));
    DrawResampled(pyramid.Level(picture, source.level), columns, rows, drawing_, at);
}

// The level whose pixels are at most twice as fine as the device's along the finer axis, built as
// far as that takes no time. Else the nearest coarser one that is there, or a finer one; while
// something moves a coarser one is taken whatever the finer would cost.
ScaledPixels::Source ScaledPixels::SourceFor(size_t index, const QImage& picture, const Steps& full,
                                             const QRect& part) {
    Pyramid& pyramid = pyramids_[index];
    int level = 0;
    while (full.AtLevel(level).Finer() > 2 && level + 1 < pyramid.LevelCount()) {
        ++level;
    }
    const auto covered = [&](int candidate) { return full.AtLevel(candidate).Covered(part); };
    const auto isBuilt = [&](int candidate) {
        return pyramid.IsBuilt(candidate, covered(candidate));
    };
    int coarser = level + 1;
    while (coarser < pyramid.LevelCount() && !isBuilt(coarser)) {
        ++coarser;
    }
    const bool hasCoarser = coarser < pyramid.LevelCount();
    if (isBuilt(level) || (quality_ == Quality::Fast && coarser == level + 1 && hasCoarser)) {
        return {isBuilt(level) ? level : coarser, false};
    }
    if (pyramid.CostOf(level, covered(level)) <= MostCostOfDrawing) {
        pyramid.Build(picture, level, covered(level), MostCostOfDrawing);
        return {level, false};
    }
    Await(index, level, covered(level) & QRect(QPoint(), pyramid.LevelSize(level)));
    if (hasCoarser) {
        return {coarser, true};
    }
    do {
        --level;
    } while (!isBuilt(level));
    return {level, true};
}

/// One picture is prepared after the other: the drawing that shows the first asks for the next.
void ScaledPixels::Await(size_t picture, int level, const QRect& part) {
    if (!pending_ || (pending_->picture == picture && pending_->level != level)) {
        pending_ = {picture, level, part};
    } else if (pending_->picture == picture) {
        pending_->part |= part;
    }
}

Filter ScaledPixels::FilterFor(double step) const {
    if (step == 1.0 || (enlargement_ == Enlargement::Crisp && step * CrispAbove < 1.0)) {
        return Filter::Nearest;
    }
    return step > 1.0 && quality_ == Quality::Smooth ? Filter::Area : Filter::Linear;
}

}  // namespace kadrona::imaging::view
