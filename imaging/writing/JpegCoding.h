#pragma once

namespace kadrona::imaging {

/// How the colours of a JPEG are stored: a pair for each pixel (4:4:4) or for four (4:2:0).
enum class ChromaSampling { Full, Quarter };

/// How a picture becomes a baseline JPEG.
struct JpegCoding {
    /// Of the standard's quantization tables (ITU-T T.81, annex K), in percent: 0 is the finest.
    int tablePercent = 10;
    ChromaSampling chroma = ChromaSampling::Full;
    /// Each row of MCUs is a restart interval.
    bool restartEachRow = false;
    /// Huffman tables made for the picture, in a second pass over its coefficients.
    bool ownTables = false;
};

}  // namespace kadrona::imaging
