#include "imaging/writing/DeflatedRows.h"

#include <zlib.h>

#include <QDataStream>
#include <algorithm>
#include <array>
#include <new>
#include <opencv2/core/utility.hpp>
#include <vector>

#include "imaging/writing/FormatWriting.h"

namespace kadrona::imaging {

namespace {

/// What one thread compresses at a time, enough that a band's fresh start does not count.
constexpr qint64 BandBytes = 1'048'576;

/// Compressed before anything is written; bounds the memory.
constexpr int BandsPerBatch = 16;

/// Higher levels take twice the time for less than a twentieth of the size.
constexpr int CompressionLevel = 2;

struct Band {
    QByteArray compressed;
    uLong checksum = 0;
    qint64 plainBytes = 0;
};

/// Filters a row: `filtered` takes one byte more than the row.
void FilterRow(const std::vector<uchar>& row, uchar* filtered) {
    constexpr uchar Sub = 1;
    constexpr size_t Left = RowSource::BytesPerPixel;
    *filtered++ = Sub;
    std::copy_n(row.begin(), Left, filtered);
    for (size_t i = Left; i < row.size(); ++i) {
        filtered[i] = static_cast<uchar>(row[i] - row[i - Left]);
    }
}

std::vector<uchar> FilteredRows(const RowSource& rows, int first, int count) {
    std::vector<uchar> row(static_cast<size_t>(rows.BytesPerRow()));
    std::vector<uchar> filtered((row.size() + 1) * static_cast<size_t>(count));
    for (int y = 0; y < count; ++y) {
        rows.CopyRow(first + y, row.data());
        FilterRow(row, filtered.data() + static_cast<size_t>(y) * (row.size() + 1));
    }
    return filtered;
}

/// Raw deflate, ended by a full flush: the next band begins at a byte and refers to nothing here.
QByteArray Deflated(std::vector<uchar>& plain) {
    constexpr int RawWindow = -MAX_WBITS;
    constexpr int MemoryLevel = 8;
    constexpr uLong FlushBytes = 16;
    z_stream stream{};
    if (deflateInit2(&stream, CompressionLevel, Z_DEFLATED, RawWindow, MemoryLevel,
                     Z_DEFAULT_STRATEGY) != Z_OK) {
        throw std::bad_alloc();
    }
    const uLong bound = deflateBound(&stream, static_cast<uLong>(plain.size())) + FlushBytes;
    QByteArray compressed(static_cast<qsizetype>(bound), Qt::Uninitialized);
    stream.next_in = plain.data();
    stream.avail_in = static_cast<uInt>(plain.size());
    stream.next_out = reinterpret_cast<Bytef*>(compressed.data());
    stream.avail_out = static_cast<uInt>(bound);
    deflate(&stream, Z_FULL_FLUSH);
    compressed.resize(static_cast<qsizetype>(stream.total_out));
    deflateEnd(&stream);
    compressed.squeeze();
    return compressed;
}

class DeflatedRowsWriter {
 public:
    DeflatedRowsWriter(QIODevice& device, const RowSource& rows)
        : device_(device),
          rows_(rows),
          rowsPerBand_(static_cast<int>(
              std::clamp(BandBytes / rows.BytesPerRow(), qint64{1}, qint64{rows.Period()}))) {}

    void Write() {
        constexpr std::array<uchar, 2> Header{0x78, 0x5e};        // window of 32 KiB, fast
        constexpr std::array<uchar, 5> End{1, 0, 0, 0xff, 0xff};  // last block, stored, empty
        WriteBytes(device_, Header.data(), Header.size());
        WriteFirstPeriod();
        for (int y = rows_.Period(); y < rows_.Height(); y += rows_.Period()) {
            std::for_each(kept_.begin(), kept_.end(), [&](const Band& band) { WriteBand(band); });
        }
        WriteBytes(device_, End.data(), End.size());
        QByteArray checksum;
        QDataStream(&checksum, QIODevice::WriteOnly) << static_cast<quint32>(checksum_);
        WriteBytes(device_, checksum.constData(), checksum.size());
    }

 private:
    void WriteFirstPeriod() {
        const bool keep = rows_.Height() > rows_.Period();
        const int count = (rows_.Period() + rowsPerBand_ - 1) / rowsPerBand_;
        for (int first = 0; first < count; first += BandsPerBatch) {
            std::vector<Band> batch(static_cast<size_t>(std::min(BandsPerBatch, count - first)));
            cv::parallel_for_(cv::Range(0, static_cast<int>(batch.size())),
                              [&](const cv::Range& range) {
                                  for (int i = range.start; i < range.end; ++i) {
                                      batch[static_cast<size_t>(i)] = CompressedBand(first + i);
                                  }
                              });
            for (Band& band : batch) {
                WriteBand(band);
                if (keep) {
                    kept_.push_back(std::move(band));
                }
            }
        }
    }

    Band CompressedBand(int index) const {
        const int first = index * rowsPerBand_;
        std::vector<uchar> plain =
            FilteredRows(rows_, first, std::min(rowsPerBand_, rows_.Period() - first));
        const auto bytes = static_cast<uInt>(plain.size());
        return {Deflated(plain), adler32(adler32(0, nullptr, 0), plain.data(), bytes), bytes};
    }

    void WriteBand(const Band& band) {
        WriteBytes(device_, band.compressed.constData(), band.compressed.size());
        checksum_ = adler32_combine(checksum_, band.checksum, band.plainBytes);
    }

    QIODevice& device_;
    const RowSource& rows_;
    int rowsPerBand_;
    uLong checksum_ = adler32(0, nullptr, 0);
    /// The bands of the first tile of a grid.
    std::vector<Band> kept_;
};

}  // namespace

void WriteDeflatedRows(QIODevice& device, const RowSource& rows) {
    DeflatedRowsWriter(device, rows).Write();
}

}  // namespace kadrona::imaging
