#include "imaging/writing/SizedJpeg.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>
#include <vector>

#include "imaging/writing/JpegCompressor.h"
#include "imaging/writing/JpegSegments.h"

namespace kadrona::imaging {

namespace {

/// From here on the colours of every pixel are worth their bytes.
constexpr int QualityOfAllColours = 90;
constexpr int UsualQuality = 95;
constexpr int FinestTables = 0;

/// What tables of a percentage took.
struct Tried {
    int percent;
    qint64 bytes;
};

/// Codes one picture again and again.
class Search {
 public:
    Search(const Pixels& pixels, DotsPerInch resolution, const WrittenMetadata& metadata,
           ColourProfile profile = ColourProfile::Embedded)
        : size_(pixels.Size()),
          rows_(pixels, ChannelOrder::RedFirst),
          segments_(pixels.Size(), resolution, metadata, profile) {}

    SizedJpeg Encode(int tablePercent, ChromaSampling chroma) const {
        return Encode({.tablePercent = tablePercent, .chroma = chroma, .ownTables = true});
    }

    SizedJpeg Encode(const JpegCoding& coding) const {
        JpegCompressor compressor;
        compressor.Start(size_, coding, [this](jpeg_compress_struct& info) {
            segments_.SetDensity(info);
            jpeg_start_compress(&info, TRUE);
            segments_.Write(info);
        });
        std::vector<uchar> row(static_cast<size_t>(rows_.BytesPerRow()));
        JSAMPROW pointer = row.data();
        compressor.Run([&](jpeg_compress_struct& info) {
            for (int y = 0; y < rows_.Height(); ++y) {
                rows_.CopyRow(y, pointer);
                jpeg_write_scanlines(&info, &pointer, 1);
            }
            jpeg_finish_compress(&info);
        });
        return {compressor.Output().toByteArray(), coding};
    }

    /// The finest tables between two percentages that take at most `most` bytes, but for half a
    /// percent of these, which nobody sees; `coarse` itself where not even they do. `guess` lies
    /// between the two.
    SizedJpeg Finest(int fine, int coarse, int guess, ChromaSampling chroma, qint64 most) const {
        SizedJpeg best;
        std::optional<Tried> fits;
        std::optional<Tried> tooLarge;
        int percent = guess;
        for (int tries = 1;; ++tries) {
            SizedJpeg made = Encode(percent, chroma);
            const Tried tried{percent, made.bytes.size()};
            const bool isLast = percent == (tried.bytes <= most ? fine : coarse);
            (tried.bytes <= most ? fits : tooLarge) = tried;
            if (tried.bytes <= most || isLast) {
                best = std::move(made);
            }
            if (isLast || (fits && (IsNearly(fits->bytes, most) ||
                                    (tooLarge && fits->percent - tooLarge->percent == 1)))) {
                return best;
            }
            percent = std::clamp(NextToTry(fits, tooLarge, most, tries),
                                 tooLarge ? tooLarge->percent + 1 : fine,
                                 fits ? fits->percent - 1 : coarse);
        }
    }

    /// Where tables are to be for so many bytes, by what others took. Bytes go with a power of the
    /// percentage, which this one is for most photos.
    static int Likely(const Tried& tried, qint64 most) {
        constexpr double UsualPower = -0.65;
        return PercentOn(tried, UsualPower, most);
    }

 private:
    static bool IsNearly(qint64 bytes, qint64 most) {
        constexpr double Part = 0.995;
        return static_cast<double>(bytes) >= Part * static_cast<double>(most);
    }

    /// Rounded to the coarser side. The finest tables are counted as 0 percent, as small as others
    /// of 1; the distance from them is taken for the percentage.
    static int PercentOn(const Tried& tried, double power, qint64 most) {
        constexpr double Aim = 0.998;
        const double ratio = Aim * static_cast<double>(most) / static_cast<double>(tried.bytes);
        return static_cast<int>(
            std::ceil(std::min((tried.percent + 1) * std::pow(ratio, 1 / power), 1e6) - 1));
    }

    /// On the line through both that were tried last on either side of the aim.
    static int NextToTry(const std::optional<Tried>& fits, const std::optional<Tried>& tooLarge,
                         qint64 most, int tries) {
        // A curve that no line follows is halved.
        constexpr int Enough = 5;
        if (!fits || !tooLarge) {
            return Likely(fits ? *fits : *tooLarge, most);
        }
        if (tries > Enough) {
            return (fits->percent + tooLarge->percent) / 2;
        }
        const double power =
            std::log(static_cast<double>(fits->bytes) / static_cast<double>(tooLarge->bytes)) /
            std::log((fits->percent + 1.0) / (tooLarge->percent + 1.0));
        // Files that hardly shrink leave no line; the middle is as good then.
        constexpr double Flat = -0.01;
        return power < Flat ? PercentOn(*fits, power, most)
                            : (fits->percent + tooLarge->percent) / 2;
    }

    QSize size_;
    RowSource rows_;
    JpegSegments segments_;
};

/// Without an upper end: the usual quality, or the lowest one above it that reaches the lower end.
SizedJpeg EncodeFromBelow(const Search& search, qint64 least) {
    SizedJpeg made;
    for (int percent = TablePercentOf(UsualQuality); percent >= FinestTables; --percent) {
        made = search.Encode(percent, ChromaSampling::Full);
        if (made.bytes.size() >= least) {
            break;
        }
    }
    return made;
}

}  // namespace

int TablePercentOf(int quality) {
    return jpeg_quality_scaling(quality);
}

int SizedJpeg::Quality() const {
    constexpr int PercentOfFifty = 100;
    return coding.tablePercent <= PercentOfFifty ? (200 - coding.tablePercent) / 2
                                                 : 5000 / coding.tablePercent;
}

SizedJpeg EncodeJpegAs(const Pixels& pixels, DotsPerInch resolution,
                       const WrittenMetadata& metadata, const JpegCoding& coding) {
    return Search(pixels, resolution, metadata).Encode(coding);
}

SizedJpeg EncodeJpegWithin(const Pixels& pixels, DotsPerInch resolution,
                           const WrittenMetadata& metadata, const ByteRange& range) {
    const Search search(pixels, resolution, metadata);
    if (range.most == ByteRange::NoEnd) {
        return EncodeFromBelow(search, range.least);
    }
    const int coarsest = TablePercentOf(LowestQuality);
    const int worthAllColours = TablePercentOf(QualityOfAllColours);
    SizedJpeg full = search.Finest(FinestTables, worthAllColours, worthAllColours,
                                   ChromaSampling::Full, range.most);
    if (full.bytes.size() <= range.most) {
        return full;
    }
    // Now bytes are scarce; that the colours are sRGB stands in the EXIF block too, where there is
    // one.
    const Search scarce(pixels, resolution, metadata,
                        resolution.value > 0 ? ColourProfile::LeftOut : ColourProfile::Embedded);
    // Three quarters of the colours less are a third of the bytes less, or so.
    const Tried likely{worthAllColours, full.bytes.size() * 2 / 3};
    SizedJpeg quarter =
        scarce.Finest(FinestTables, coarsest,
                      std::clamp(Search::Likely(likely, range.most), FinestTables, coarsest),
                      ChromaSampling::Quarter, range.most);
    if (quarter.bytes.size() >= range.least) {
        return quarter;
    }
    // The finest tables for every fourth colour are not enough, those for all were too much.
    full =
        scarce.Finest(worthAllColours, coarsest, worthAllColours, ChromaSampling::Full, range.most);
    return range.Contains(full.bytes.size()) ? full : quarter;
}

}  // namespace kadrona::imaging
