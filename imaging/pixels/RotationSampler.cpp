#include "imaging/pixels/RotationSampler.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <opencv2/core/hal/intrin.hpp>

#include "imaging/pixels/CubicKernel.h"

namespace kadrona::imaging {

namespace {

/// Positions that are stepped along a row have this many binary digits after the point.
constexpr int FractionBits = 32;
constexpr double FixedOne = static_cast<double>(std::int64_t{1} << FractionBits);

constexpr int PairBits = 14;

std::int64_t ToFixed(double value) {
    return std::llround(value * FixedOne);
}

/// Premultiplied, no colour may exceed its alpha.
QRgb WithinAlpha(QRgb pixel) {
    const int alpha = qAlpha(pixel);
    return qRgba(std::min(qRed(pixel), alpha), std::min(qGreen(pixel), alpha),
                 std::min(qBlue(pixel), alpha), alpha);
}

/// Four pixels of a row, mixed by two pairs of weights.
inline cv::v_float32x4 MixedRow(const uchar* pixels, const cv::v_int16x8& left,
                                const cv::v_int16x8& right) {
    const cv::v_uint8x16 row = cv::v_load(pixels);
    cv::v_uint8x16 firstPair;
    cv::v_uint8x16 secondPair;
    cv::v_zip(row, cv::v_rotate_right<4>(row), firstPair, secondPair);
    const cv::v_int16x8 first = cv::v_reinterpret_as_s16(cv::v_expand_low(firstPair));
    const cv::v_int16x8 second = cv::v_reinterpret_as_s16(cv::v_expand_low(secondPair));
    return cv::v_cvt_f32(cv::v_dotprod(first, left) + cv::v_dotprod(second, right));
}

inline QRgb ToPixel(const cv::v_float32x4& channels) {
    const cv::v_int32x4 rounded = cv::v_round(channels);
    const cv::v_int16x8 words = cv::v_pack(rounded, rounded);
    return cv::v_reinterpret_as_u32(cv::v_pack_u(words, words)).get0();
}

}  // namespace

RotationSampler::RotationSampler(const QImage& source, QSize canvas, double degreesCounterClockwise,
                                 QRgb background)
    : source_(source),
      canvas_(canvas),
      cosine_(std::cos(degreesCounterClockwise * std::numbers::pi / 180)),
      sine_(std::sin(degreesCounterClockwise * std::numbers::pi / 180)),
      background_(background),
      opacity_(source.hasAlphaChannel() ? 0 : 0xff000000) {
    for (size_t i = 0; i < phases_.size(); ++i) {
        const double fraction = static_cast<double>(i) / PhaseCount;
        std::array<int, 4> whole{};
        for (size_t tap = 0; tap < whole.size(); ++tap) {
            const double weight = CubicKernel(static_cast<double>(tap) - 1 - fraction);
            phases_[i].weights[tap] = static_cast<float>(weight);
            whole[tap] = static_cast<int>(std::lround(weight * (1 << PairBits)));
        }
        // So that a plain area stays exactly what it is.
        whole[fraction < 0.5 ? 1 : 2] +=
            (1 << PairBits) - (whole[0] + whole[1] + whole[2] + whole[3]);
        const auto pair = [](int low, int high) {
            return static_cast<std::int32_t>((static_cast<std::uint32_t>(high) << 16) |
                                             (static_cast<std::uint32_t>(low) & 0xffff));
        };
        phases_[i].pairs = {pair(whole[0], whole[1]), pair(whole[2], whole[3])};
    }
}

RotationSampler::Position RotationSampler::SourceOf(int x, int y) const {
    const double right = x + 0.5 - canvas_.width() / 2.0;
    const double down = y + 0.5 - canvas_.height() / 2.0;
    return {source_.width() / 2.0 + cosine_ * right - sine_ * down,
            source_.height() / 2.0 + sine_ * right + cosine_ * down};
}

/// The columns of a row whose positions lie in the source, and at least `margin` from its edges.
RotationSampler::Span RotationSampler::ColumnsWithin(double margin, Span columns, int y) const {
    const Position start = SourceOf(0, y);
    double begin = columns.begin;
    double end = columns.end;
    const auto narrow = [&](double position, double step, double length) {
        const bool isPossible = margin <= length - margin;
        const bool isWithin = position >= margin && position <= length - margin;
        if (!isPossible || std::abs(step) < 1e-12) {
            end = isPossible && isWithin ? end : columns.begin;
            return;
        }
        const double one = (margin - position) / step;
        const double other = (length - margin - position) / step;
        begin = std::max(begin, std::ceil(std::min(one, other)));
        end = std::min(end, std::floor(std::max(one, other)) + 1);
    };
    narrow(start.x, cosine_, source_.width());
    narrow(start.y, sine_, source_.height());
    begin = std::min<double>(begin, columns.end);
    return {static_cast<int>(begin), static_cast<int>(std::clamp<double>(end, begin, columns.end))};
}

void RotationSampler::Draw(const QRect& part, uchar* bits, qsizetype bytesPerLine) const {
    // Of the four pixels that are mixed in each direction all must be there; the hundredths are for
    // rounding.
    constexpr double InsideMargin = 1.52;
    constexpr double TouchedMargin = -0.72;
    for (int y = part.top(); y <= part.bottom(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(bits + y * bytesPerLine);
        const Span all{part.left(), part.left() + part.width()};
        const Span touched = ColumnsWithin(TouchedMargin, all, y);
        const Span inside = ColumnsWithin(InsideMargin, touched, y);
        std::fill(row + all.begin, row + touched.begin, background_);
        for (int x = touched.begin; x < inside.begin; ++x) {
            row[x] = Edge(SourceOf(x, y));
        }
        DrawInside(inside, y, row);
        for (int x = inside.end; x < touched.end; ++x) {
            row[x] = Edge(SourceOf(x, y));
        }
        std::fill(row + touched.end, row + all.end, background_);
    }
}

void RotationSampler::DrawInside(Span columns, int y, QRgb* row) const {
    const Position start = SourceOf(columns.begin, y);
    // Pixel middles lie at halves. Half a phase more makes cutting off the rest a rounding.
    const double shift = -0.5 + 0.5 / PhaseCount;
    std::int64_t sourceX = ToFixed(start.x + shift);
    std::int64_t sourceY = ToFixed(start.y + shift);
    const std::int64_t stepX = ToFixed(cosine_);
    const std::int64_t stepY = ToFixed(sine_);
    const auto phaseOf = [this](std::int64_t position) -> const Phase& {
        return phases_[static_cast<size_t>(position >> (FractionBits - PhaseBits)) &
                       (PhaseCount - 1)];
    };
    const uchar* const bits = source_.constBits();
    const qsizetype bytesPerLine = source_.bytesPerLine();
    const cv::v_float32x4 scale = cv::v_setall_f32(1.0F / (1 << PairBits));
    for (int x = columns.begin; x < columns.end; ++x) {
        const Phase& across = phaseOf(sourceX);
        const Phase& down = phaseOf(sourceY);
        const auto left = cv::v_reinterpret_as_s16(cv::v_setall_s32(across.pairs[0]));
        const auto right = cv::v_reinterpret_as_s16(cv::v_setall_s32(across.pairs[1]));
        const uchar* pixels = bits + ((sourceY >> FractionBits) - 1) * bytesPerLine +
                              ((sourceX >> FractionBits) - 1) * qsizetype{sizeof(QRgb)};
        cv::v_float32x4 sum = cv::v_setzero_f32();
        for (const float weight : down.weights) {
            sum += MixedRow(pixels, left, right) * cv::v_setall_f32(weight);
            pixels += bytesPerLine;
        }
        const QRgb pixel = ToPixel(sum * scale);
        row[x] = opacity_ != 0 ? pixel | opacity_ : WithinAlpha(pixel);
        sourceX += stepX;
        sourceY += stepY;
    }
}

/// The part of a canvas pixel beyond a line of the source's direction, `distance` from the pixel's
/// middle; 0 ... 1.
double RotationSampler::PartBeyond(double distance) const {
    const double longer = std::max(std::abs(cosine_), std::abs(sine_));
    const double shorter = std::min(std::abs(cosine_), std::abs(sine_));
    const double reach = (longer + shorter) / 2;
    const double far = std::abs(distance);
    // Of the half that the line is nearer to: a corner of the pixel at most, or its middle strip.
    const double corner = std::max(reach - far, 0.0);
    const double part =
        far >= reach - shorter ? corner * corner / (2 * longer * shorter) : 0.5 - far / longer;
    return distance < 0 ? part : 1 - part;
}

double RotationSampler::Covered(double position, int length) const {
    return PartBeyond(position) - PartBeyond(position - length);
}

/// A pixel near or beyond the source's edge: what is mixed continues the edge's pixels outward.
QRgb RotationSampler::Edge(Position position) const {
    const double covered =
        Covered(position.x, source_.width()) * Covered(position.y, source_.height());
    if (covered <= 0) {
        return background_;
    }
    const double left = std::floor(position.x - 0.5);
    const double top = std::floor(position.y - 0.5);
    std::array<double, 4> sums{};
    for (int tapY = -1; tapY <= 2; ++tapY) {
        const int y = std::clamp(static_cast<int>(top) + tapY, 0, source_.height() - 1);
        const double weightY = CubicKernel(top + tapY + 0.5 - position.y);
        for (int tapX = -1; tapX <= 2; ++tapX) {
            const int x = std::clamp(static_cast<int>(left) + tapX, 0, source_.width() - 1);
            const double weight = weightY * CubicKernel(left + tapX + 0.5 - position.x);
            const uchar* pixel = source_.constScanLine(y) + ptrdiff_t{x} * 4;
            for (size_t channel = 0; channel < sums.size(); ++channel) {
                sums[channel] += weight * pixel[channel];
            }
        }
    }
    const auto blended = [&](size_t channel, int background) {
        const double colour = std::clamp(sums[channel], 0.0, 255.0);
        return static_cast<int>(std::lround(background + (colour - background) * covered));
    };
    const QRgb pixel = qRgba(blended(2, qRed(background_)), blended(1, qGreen(background_)),
                             blended(0, qBlue(background_)), blended(3, 255));
    return opacity_ != 0 ? pixel | opacity_ : WithinAlpha(pixel);
}

}  // namespace kadrona::imaging
