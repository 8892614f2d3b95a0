#include "core/sheet/UploadFile.h"

#include <QLocale>
#include <algorithm>
#include <cmath>

#include "imaging/pixels/Resampling.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

namespace {

using imaging::SizedJpeg;

constexpr int GoodQuality = 85;
/// Nobody sees a picture that is this much wider than it should be.
constexpr double LargestStretch = 0.005;

/// The sizes of one shape that lie within the figures, by their widths.
struct Sizes {
    double ratio;  ///< height over width
    int least;
    int most;
    /// The only size, where it is not quite of the shape.
    std::optional<QSize> stretched = {};
    bool fits = true;

    QSize At(int width) const {
        return stretched ? *stretched
                         : QSize(width, std::max(1, static_cast<int>(std::lround(width * ratio))));
    }
};

/// Where no width gives a height within the figures, the size within the figures next to the shape
/// is taken if the picture need not be stretched much, else the size of the right shape next to it.
Sizes SizesOf(const UploadFigures& figures, double ratio) {
    const int leastWidth = figures.width.least.value_or(1);
    const int mostWidth = figures.width.most.value_or(LongestUploadSide);
    const int leastHeight = figures.height.least.value_or(1);
    const int mostHeight = figures.height.most.value_or(LongestUploadSide);
    // A height is rounded, so half a pixel beside it is still it.
    const int low = std::max(leastWidth, static_cast<int>(std::ceil((leastHeight - 0.5) / ratio)));
    const int high =
        std::min(mostWidth, static_cast<int>(std::ceil((mostHeight + 0.5) / ratio)) - 1);
    if (low <= high) {
        return {ratio, low, high};
    }
    const bool tooHigh = leastWidth * ratio > mostHeight;
    const int height = tooHigh ? mostHeight : leastHeight;
    const int width = static_cast<int>(std::lround(height / ratio));
    const QSize corner(std::max(leastWidth, std::min(width, mostWidth)), height);
    const double stretch = std::abs(corner.height() / (corner.width() * ratio) - 1);
    if (leastWidth <= mostWidth && leastHeight <= mostHeight && stretch <= LargestStretch) {
        return {ratio, corner.width(), corner.width(), corner};
    }
    return {.ratio = ratio, .least = corner.width(), .most = corner.width(), .fits = false};
}

/// Tries sizes and codings of one cut.
class Maker {
 public:
    explicit Maker(const UploadRequest& request)
        : request_(request),
          sizes_(SizesOf(request.figures,
                         double(request.printedHeight.value) / request.printedWidth.value)) {}

    UploadFile Make() {
        Scale(UsualWidth());
        if (Bytes().most != imaging::ByteRange::NoEnd) {
            ShrinkForGoodQuality();
        }
        SizedJpeg made = Encode();
        GrowForLowerEnd(made);
        return Described(std::move(made));
    }

 private:
    const imaging::ByteRange& Bytes() const { return request_.figures.bytes; }

    bool PixelsAreFree() const {
        return request_.figures.width == PixelRange() && request_.figures.height == PixelRange();
    }

    int UsualWidth() const {
        const bool noLeast = !request_.figures.width.least && !request_.figures.height.least;
        const int enough = noLeast ? sizes_.most : 2 * sizes_.least;
        const int most = std::clamp(enough, sizes_.least, sizes_.most);
        return std::clamp(request_.cut.Width(), sizes_.least, most);
    }

    imaging::DotsPerInch Resolution() const {
        return PrintResolution(scaled_.Width(), request_.printedWidth);
    }

    void Scale(int width) {
        width_ = width;
        // The height of a cut is rounded too; nobody asks to change it by a pixel.
        const bool asItIs = PixelsAreFree() && width == request_.cut.Width();
        scaled_ = asItIs ? request_.cut : imaging::Resampled(request_.cut, sizes_.At(width));
    }

    SizedJpeg Encode() const {
        return imaging::EncodeJpegWithin(scaled_, Resolution(), request_.metadata, Bytes());
    }

    qint64 BytesOfGoodQuality() const {
        return imaging::EncodeJpegAs(scaled_, Resolution(), request_.metadata,
                                     {.tablePercent = imaging::TablePercentOf(GoodQuality),
                                      .chroma = imaging::ChromaSampling::Quarter,
                                      .ownTables = true})
            .bytes.size();
    }

    /// Bytes go with the square of the width, nearly.
    void ShrinkForGoodQuality() {
        constexpr double Surely = 0.98;
        while (width_ > sizes_.least) {
            const qint64 bytes = BytesOfGoodQuality();
            if (bytes <= Bytes().most) {
                return;
            }
            const double part = std::sqrt(double(Bytes().most) / double(bytes)) * Surely;
            Scale(std::max(sizes_.least, static_cast<int>(width_ * part)));
        }
    }

    void GrowForLowerEnd(SizedJpeg& made) {
        constexpr double Surely = 1.03;
        constexpr double MostAtOnce = 2;
        constexpr int LargestGrowth = 4;
        const int most = std::min(sizes_.most, LargestGrowth * width_);
        while (made.bytes.size() < Bytes().least && width_ < most) {
            const double part =
                std::sqrt(double(Bytes().least) / double(made.bytes.size())) * Surely;
            Scale(std::min(most, static_cast<int>(std::ceil(width_ * std::min(part, MostAtOnce)))));
            made = Encode();
        }
    }

    UploadFile Described(SizedJpeg made) const {
        UploadFile file{.bytes = std::move(made.bytes),
                        .size = scaled_.Size(),
                        .resolution = Resolution(),
                        .quality = made.Quality(),
                        .chroma = made.coding.chroma,
                        .enlarged = scaled_.Width() > request_.cut.Width()};
        file.shortfall = Shortfall(file);
        return file;
    }

    QString Shortfall(const UploadFile& file) const {
        if (const QString crossed = CrossedRange(request_.figures); !crossed.isEmpty()) {
            return u"Bei der %1 ist „von“ größer als „bis“."_s.arg(crossed);
        }
        const QLocale german(QLocale::German);
        const QString nearest = u"Am nächsten kommen %1 x %2 Pixel mit %3 Bytes."_s.arg(
            QString::number(file.size.width()), QString::number(file.size.height()),
            german.toString(file.bytes.size()));
        if (!sizes_.fits) {
            return u"Das Foto hat eine andere Form als die Datei (%1). "_s.arg(UploadFiguresText(
                       {request_.figures.width, request_.figures.height, {}, {}})) +
                   nearest;
        }
        if (file.bytes.size() > Bytes().most) {
            return u"So klein wird die Datei selbst bei der geringsten Qualität nicht (%1). "_s.arg(
                       UploadFiguresText(request_.figures)) +
                   nearest;
        }
        if (file.bytes.size() < Bytes().least) {
            return u"So groß wird die Datei selbst bei der höchsten Qualität nicht (%1). "_s.arg(
                       UploadFiguresText(request_.figures)) +
                   nearest;
        }
        return {};
    }

    const UploadRequest& request_;
    Sizes sizes_;
    int width_ = 0;
    imaging::Pixels scaled_;
};

}  // namespace

UploadFile MakeUploadFile(const UploadRequest& request) {
    return Maker(request).Make();
}

}  // namespace kadrona::core
