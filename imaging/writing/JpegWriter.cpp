#include "imaging/writing/JpegWriter.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <opencv2/core/utility.hpp>

#include "imaging/writing/JpegEncoder.h"
#include "platform/Error.h"

using namespace Qt::StringLiterals;

namespace kadrona::imaging {

namespace {

/// What one thread encodes at a time, enough that setting up the encoder does not count.
constexpr int McuRowsPerStrip = 8;

/// Encoded before anything is written; bounds the memory.
constexpr int McuRowsPerBatch = 32 * McuRowsPerStrip;

using McuRows = std::vector<QByteArray>;

/// Encodes the MCU rows `first` to `end - 1` into the elements of these numbers.
void EncodeInParallel(const RowSource& rows, int first, int end, McuRows& encoded) {
    const int strips = (end - first + McuRowsPerStrip - 1) / McuRowsPerStrip;
    cv::parallel_for_(cv::Range(0, strips), [&](const cv::Range& range) {
        for (int strip = range.start; strip < range.end; ++strip) {
            const int begin = first + strip * McuRowsPerStrip;
            McuRows part = EncodeMcuRows(rows, begin, std::min(McuRowsPerStrip, end - begin));
            std::move(part.begin(), part.end(), encoded.begin() + begin);
        }
    });
}

/// Writes a scan, each MCU row as a restart interval.
class ScanWriter {
 public:
    ScanWriter(QIODevice& device, const RowSource& rows)
        : device_(device),
          rows_(rows),
          count_((rows.Height() + McuRowHeight - 1) / McuRowHeight),
          period_(std::lcm(int64_t{rows.Period()}, int64_t{McuRowHeight}) / McuRowHeight) {}

    void Write() {
        // A last row that is not full is padded, which makes it unlike the one that it repeats.
        const int full = rows_.Height() / McuRowHeight;
        const int distinct = static_cast<int>(std::min<int64_t>(period_, full));
        WriteDistinct(0, distinct, distinct < full);
        for (int row = distinct; row < full; ++row) {
            WriteMcuRow(row, encoded_[static_cast<size_t>(row % distinct)]);
        }
        WriteDistinct(full, count_, false);
    }

 private:
    void WriteDistinct(int first, int end, bool keep) {
        encoded_.resize(static_cast<size_t>(count_));
        for (int batch = first; batch < end; batch += McuRowsPerBatch) {
            const int batchEnd = std::min(batch + McuRowsPerBatch, end);
            EncodeInParallel(rows_, batch, batchEnd, encoded_);
            for (int row = batch; row < batchEnd; ++row) {
                QByteArray& encoded = encoded_[static_cast<size_t>(row)];
                WriteMcuRow(row, encoded);
                if (!keep) {
                    encoded.clear();
                }
            }
        }
    }

    void WriteMcuRow(int row, const QByteArray& encoded) {
        constexpr uchar Restart = 0xd0;
        constexpr uchar EndOfImage = 0xd9;
        const bool last = row == count_ - 1;
        const std::array<uchar, 2> marker{
            0xff, last ? EndOfImage : static_cast<uchar>(Restart + row % 8)};
        WriteBytes(device_, encoded.constData(), encoded.size());
        WriteBytes(device_, marker.data(), marker.size());
    }

    QIODevice& device_;
    const RowSource& rows_;
    int count_;
    /// After so many MCU rows a grid repeats.
    int64_t period_;
    McuRows encoded_;
};

}  // namespace

void WriteJpeg(QIODevice& device, const Pixels& pixels, DotsPerInch resolution,
               const WrittenMetadata& metadata) {
    if (std::max(pixels.Width(), pixels.Height()) > JpegMaximumLength) {
        throw platform::Error(
            u"JPEG fasst höchstens %1 Bildpunkte in jeder Richtung, das Bild hat %2 × %3."_s
                .arg(JpegMaximumLength)
                .arg(pixels.Width())
                .arg(pixels.Height()));
    }
    if (resolution.value > JpegMaximumDotsPerInch) {
        throw platform::Error(u"JPEG fasst eine Auflösung von höchstens %1 dpi, das Bild hat %2."_s
                                  .arg(JpegMaximumDotsPerInch)
                                  .arg(resolution.value));
    }
    const RowSource rows(pixels, ChannelOrder::RedFirst);
    const QByteArray header = EncodeJpegHeader(pixels.Size(), resolution, metadata);
    WriteBytes(device, header.constData(), header.size());
    ScanWriter(device, rows).Write();
}

}  // namespace kadrona::imaging
