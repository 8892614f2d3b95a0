#include "imaging/CloneStroke.h"

#include <algorithm>
#include <cmath>
#include <opencv2/core/utility.hpp>
#include <optional>

namespace kadrona::imaging {

namespace {

constexpr double SmallestDiameter = 1;
constexpr double LargestDiameter = 2000;
/// Brush positions that lie this near are drawn in one go, whatever the brush.
constexpr double ShortestPiece = 64;

/// The part of a line inside a rectangle (Y.-D. Liang and B. Barsky, "A new concept and method for
/// line clipping", ACM Trans. Graphics 3(1), 1984).
std::optional<QLineF> Clipped(const QLineF& line, const QRectF& rectangle) {
    double begin = 0;
    double end = 1;
    const auto clip = [&](double start, double step, double low, double high) {
        if (step == 0) {
            end = start >= low && start <= high ? end : -1;
            return;
        }
        const auto [first, last] = std::minmax({(low - start) / step, (high - start) / step});
        begin = std::max(begin, first);
        end = std::min(end, last);
    };
    clip(line.x1(), line.dx(), rectangle.left(), rectangle.right());
    clip(line.y1(), line.dy(), rectangle.top(), rectangle.bottom());
    if (begin > end) {
        return std::nullopt;
    }
    return QLineF(line.pointAt(begin), line.pointAt(end));
}

/// The square of a pixel's distance from a way.
class DistanceFrom {
 public:
    explicit DistanceFrom(const QLineF& way) : start_(way.p1()), step_(way.p2() - way.p1()) {
        const double square = QPointF::dotProduct(step_, step_);
        perSquare_ = square > 0 ? 1 / square : 0;
    }

    double SquareAt(int x, int y) const {
        const QPointF from = QPointF(x + 0.5, y + 0.5) - start_;
        const double along = std::clamp(QPointF::dotProduct(from, step_) * perSquare_, 0.0, 1.0);
        const QPointF off = from - step_ * along;
        return QPointF::dotProduct(off, off);
    }

 private:
    QPointF start_;
    QPointF step_;
    double perSquare_;
};

/// `above` over `below`, channel by channel; coverage 0 ... 255.
QRgb Mixed(QRgb below, QRgb above, std::uint32_t coverage) {
    const std::uint32_t rest = 255 - coverage;
    QRgb mixed = 0;
    for (int shift = 0; shift < 32; shift += 8) {
        const std::uint32_t sum =
            ((below >> shift) & 0xff) * rest + ((above >> shift) & 0xff) * coverage;
        mixed |= (sum + 127) / 255 << shift;
    }
    return mixed;
}

}  // namespace

BrushFalloff::BrushFalloff(const Brush& brush) {
    const double radius = std::clamp(brush.diameter, SmallestDiameter, LargestDiameter) / 2;
    const double softPart = radius * std::clamp(brush.softness, 0.0, 1.0);
    const double middle = radius - softPart / 2;
    // Even a hard edge is as soft as a pixel, so that it shows no steps.
    const double half = std::max(softPart / 2, 0.5);
    inner = std::max(middle - half, 0.0);
    outer = middle + half;
}

double BrushFalloff::At(double distance) const {
    const double t = std::clamp((outer - distance) / (outer - inner), 0.0, 1.0);
    return t * t * (3 - 2 * t);
}

double Coverage(const Brush& brush, double distance) {
    return BrushFalloff(brush).At(distance);
}

CloneStamp::Stroke::Stroke(LayeredImage& image, const Brush& brush, QPoint offset, QPointF start)
    : image_(image),
      falloff_(brush),
      pieceLength_(std::max(falloff_.outer, ShortestPiece)),
      offset_(offset),
      position_(start),
      record_(image.Photo().Size()),
      photoKey_(image.Photo().Tile().cacheKey()) {}

bool CloneStamp::Stroke::IsPhotoTheSame() const {
    return image_.Photo().Tile().cacheKey() == photoKey_;
}

void CloneStamp::Stroke::DrawTo(QPointF position) {
    const QLineF way(position_, position);
    position_ = position;
    const double reach = falloff_.outer;
    const QRectF reachable =
        QRectF(QPointF(), image_.Photo().Size()).adjusted(-reach, -reach, reach, reach);
    const std::optional<QLineF> part = Clipped(way, reachable);
    if (!part) {
        return;
    }
    // The box around a piece is little larger than what the brush covers on it.
    const int pieces = std::max(1, static_cast<int>(std::ceil(part->length() / pieceLength_)));
    for (int i = 0; i < pieces; ++i) {
        DrawPiece({part->pointAt(double(i) / pieces), part->pointAt(double(i + 1) / pieces)});
    }
}

void CloneStamp::Stroke::DrawPiece(const QLineF& way) {
    const double reach = falloff_.outer;
    const QRect photo(QPoint(), image_.Photo().Size());
    const QRect area = QRectF(way.p1(), way.p2())
                           .normalized()
                           .adjusted(-reach, -reach, reach, reach)
                           .toAlignedRect() &
                       photo & photo.translated(-offset_);
    if (area.isEmpty()) {
        return;
    }
    if (!isRecorded_) {
        image_.RecordUndoStep();
        isRecorded_ = true;
    }
    image_.EditPhoto(area, [&](QImage& pixels) {
        record_.Save(pixels, area);
        uchar* const bits = pixels.bits();
        const auto width = static_cast<size_t>(area.width());
        cv::parallel_for_(cv::Range(area.top(), area.bottom() + 1), [&](const cv::Range& rows) {
            std::vector<QRgb> source(width);
            for (int y = rows.start; y < rows.end; ++y) {
                record_.CopyOriginal(pixels, area.left() + offset_.x(), y + offset_.y(),
                                     area.width(), source.data());
                auto* row = reinterpret_cast<QRgb*>(bits + y * pixels.bytesPerLine());
                DrawRow(way, area, y, {row + area.left(), width}, source);
            }
        });
    });
    photoKey_ = image_.Photo().Tile().cacheKey();
}

/// `row` and `source` are as wide as the area.
void CloneStamp::Stroke::DrawRow(const QLineF& way, const QRect& area, int y, std::span<QRgb> row,
                                 std::span<QRgb> source) {
    const DistanceFrom distance(way);
    const double innerSquare = falloff_.inner * falloff_.inner;
    const double outerSquare = falloff_.outer * falloff_.outer;
    for (int begin = 0; begin < area.width();) {
        const int left = area.left() + begin;
        const int run = StrokeRecord::RunLength(left, area.width() - begin);
        const StrokeRecord::Row record = record_.RowAt(left, y);
        for (int i = 0; i < run; ++i) {
            const double square = distance.SquareAt(left + i, y);
            if (square >= outerSquare) {
                continue;
            }
            const double share = square <= innerSquare ? 1 : falloff_.At(std::sqrt(square));
            const auto coverage = static_cast<std::uint8_t>(std::lround(share * 255));
            if (coverage > record.coverage[i]) {
                record.coverage[i] = coverage;
                const auto column = static_cast<size_t>(begin + i);
                row[column] = Mixed(record.original[i], source[column], coverage);
            }
        }
        begin += run;
    }
}

}  // namespace kadrona::imaging
