#include "imaging/retouch/CloneStroke.h"

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

/// The squares of the distances of a row's pixels from a way.
class DistanceFrom {
 public:
    DistanceFrom(const QLineF& way, int left, int y)
        : x_(static_cast<float>(left + 0.5 - way.x1())),
          y_(static_cast<float>(y + 0.5 - way.y1())),
          stepX_(static_cast<float>(way.dx())),
          stepY_(static_cast<float>(way.dy())) {
        const float square = stepX_ * stepX_ + stepY_ * stepY_;
        perSquare_ = square > 0 ? 1 / square : 0;
    }

    /// Of the pixel in a column counted from the left one.
    float SquareAt(int column) const {
        const float x = x_ + static_cast<float>(column);
        const float along = std::clamp((x * stepX_ + y_ * stepY_) * perSquare_, 0.0F, 1.0F);
        const float offX = x - along * stepX_;
        const float offY = y_ - along * stepY_;
        return offX * offX + offY * offY;
    }

 private:
    float x_;
    float y_;
    float stepX_;
    float stepY_;
    float perSquare_;
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

CoverageTable::CoverageTable(const BrushFalloff& falloff)
    : innerSquare_(static_cast<float>(falloff.inner * falloff.inner)) {
    const double range = falloff.outer * falloff.outer - falloff.inner * falloff.inner;
    perSquare_ = static_cast<float>(Steps / range);
    for (size_t i = 0; i < coverage_.size(); ++i) {
        // Each entry is for the middle of its step; the last for all that lies beyond.
        const double square = innerSquare_ + (static_cast<double>(i) + 0.5) * range / Steps;
        coverage_[i] = static_cast<std::uint8_t>(std::lround(falloff.At(std::sqrt(square)) * 255));
    }
    coverage_.front() = 255;
}

double Coverage(const Brush& brush, double distance) {
    return BrushFalloff(brush).At(distance);
}

CloneStamp::Stroke::Stroke(LayeredImage& image, const Brush& brush, QPoint offset, QPointF start)
    : image_(image),
      reach_(BrushFalloff(brush).outer),
      coverage_(BrushFalloff(brush)),
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
    const QRectF reachable =
        QRectF(QPointF(), image_.Photo().Size()).adjusted(-reach_, -reach_, reach_, reach_);
    const std::optional<QLineF> part = Clipped(way, reachable);
    if (!part) {
        return;
    }
    // The box around a piece is little larger than what the brush covers on it.
    const double length = std::max(reach_, ShortestPiece);
    const int pieces = std::max(1, static_cast<int>(std::ceil(part->length() / length)));
    for (int i = 0; i < pieces; ++i) {
        DrawPiece({part->pointAt(double(i) / pieces), part->pointAt(double(i + 1) / pieces)});
    }
}

/// Whether the first piece of a stroke makes any difference: one over equal pixels makes none.
bool CloneStamp::Stroke::Changes(const QLineF& way, const QRect& area) const {
    const QImage& photo = image_.Photo().Tile();
    if (photo.size() != image_.Photo().Size()) {
        return true;
    }
    const auto row = [&](int y) { return reinterpret_cast<const QRgb*>(photo.constScanLine(y)); };
    for (int y = area.top(); y <= area.bottom(); ++y) {
        const DistanceFrom distance(way, area.left(), y);
        const QRgb* target = row(y) + area.left();
        const QRgb* source = row(y + offset_.y()) + area.left() + offset_.x();
        for (int i = 0; i < area.width(); ++i) {
            if (target[i] != source[i] && coverage_.At(distance.SquareAt(i)) > 0) {
                return true;
            }
        }
    }
    return false;
}

void CloneStamp::Stroke::DrawPiece(const QLineF& way) {
    const QRect photo(QPoint(), image_.Photo().Size());
    const QRect area = QRectF(way.p1(), way.p2())
                           .normalized()
                           .adjusted(-reach_, -reach_, reach_, reach_)
                           .toAlignedRect() &
                       photo & photo.translated(-offset_);
    if (area.isEmpty()) {
        return;
    }
    if (!isRecorded_ && !Changes(way, area)) {
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
    const DistanceFrom distance(way, area.left(), y);
    for (int begin = 0; begin < area.width();) {
        const int left = area.left() + begin;
        const int run = StrokeRecord::RunLength(left, area.width() - begin);
        const StrokeRecord::Row record = record_.RowAt(left, y);
        for (int i = 0; i < run; ++i) {
            const int column = begin + i;
            const std::uint8_t coverage = coverage_.At(distance.SquareAt(column));
            if (coverage > record.coverage[i]) {
                record.coverage[i] = coverage;
                QRgb& pixel = row[static_cast<size_t>(column)];
                pixel = Mixed(record.original[i], source[static_cast<size_t>(column)], coverage);
            }
        }
        begin += run;
    }
}

}  // namespace kadrona::imaging
