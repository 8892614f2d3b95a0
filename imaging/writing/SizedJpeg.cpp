#include "imaging/writing/SizedJpeg.h"

#include <algorithm>
#include <cmath>
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

/// Codes one picture again and again.
class Search {
 public:
    Search(const Pixels& pixels, DotsPerInch resolution, const WrittenMetadata& metadata)
        : size_(pixels.Size()),
          rows_(pixels, ChannelOrder::RedFirst),
          segments_(pixels.Size(), resolution, metadata) {}

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

    /// The finest tables between two percentages that take at most `most` bytes; `coarse` itself
    /// where not even they do.
    SizedJpeg Finest(int fine, int coarse, ChromaSampling chroma, qint64 most) const {
        SizedJpeg best = Encode(coarse, chroma);
        // From one end to the other a picture grows by about this; then its finest tables are
        // likely to fit too, and nothing has to be searched.
        constexpr int UsualGrowth = 5;
        if (UsualGrowth * best.bytes.size() <= most && Try(fine, chroma, most, best)) {
            return best;
        }
        // Up to `tooFine` nothing fits.
        for (int tooFine = fine - 1; best.bytes.size() <= most && coarse - tooFine > 1;) {
            const int middle = Between(tooFine, coarse);
            (Try(middle, chroma, most, best) ? coarse : tooFine) = middle;
        }
        return best;
    }

 private:
    /// Files shrink ever slower the coarser the tables get.
    static int Between(int fine, int coarse) {
        const int middle = static_cast<int>(std::sqrt((fine + 1.0) * (coarse + 1.0))) - 1;
        return std::clamp(middle, fine + 1, coarse - 1);
    }

    /// True, and in `best`, where it takes at most `most` bytes.
    bool Try(int tablePercent, ChromaSampling chroma, qint64 most, SizedJpeg& best) const {
        SizedJpeg tried = Encode(tablePercent, chroma);
        const bool fits = tried.bytes.size() <= most;
        if (fits) {
            best = std::move(tried);
        }
        return fits;
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
    SizedJpeg full = search.Finest(FinestTables, TablePercentOf(QualityOfAllColours),
                                   ChromaSampling::Full, range.most);
    if (full.bytes.size() <= range.most) {
        return full;
    }
    SizedJpeg quarter = search.Finest(FinestTables, coarsest, ChromaSampling::Quarter, range.most);
    if (quarter.bytes.size() >= range.least) {
        return quarter;
    }
    // The finest tables for every fourth colour are not enough, those for all were too much.
    full = search.Finest(TablePercentOf(QualityOfAllColours), coarsest, ChromaSampling::Full,
                         range.most);
    return range.Contains(full.bytes.size()) ? full : quarter;
}

}  // namespace kadrona::imaging
