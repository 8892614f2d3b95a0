#include "imaging/writing/BmpWriter.h"

#include <QDataStream>
#include <limits>
#include <vector>

#include "imaging/writing/RowSource.h"
#include "platform/Error.h"

using namespace Qt::StringLiterals;

namespace kadrona::imaging {

namespace {

constexpr quint32 FileHeaderBytes = 14;
constexpr quint32 InfoHeaderBytes = 40;

/// BITMAPFILEHEADER and BITMAPINFOHEADER.
QByteArray Headers(const RowSource& rows, quint32 pixelBytes, DotsPerInch resolution) {
    constexpr quint32 HeaderBytes = FileHeaderBytes + InfoHeaderBytes;
    constexpr quint16 Planes = 1;
    constexpr quint16 BitsPerPixel = 24;
    constexpr quint32 NotCompressed = 0;
    const qint32 dotsPerMetre = resolution.value > 0 ? DotsPerMetre(resolution) : 0;

    QByteArray headers;
    QDataStream stream(&headers, QIODevice::WriteOnly);
    stream.setByteOrder(QDataStream::LittleEndian);
    stream.writeRawData("BM", 2);
    stream << HeaderBytes + pixelBytes << quint32{0} << HeaderBytes;
    stream << InfoHeaderBytes << qint32{rows.Width()} << qint32{rows.Height()};
    stream << Planes << BitsPerPixel << NotCompressed << pixelBytes;
    stream << dotsPerMetre << dotsPerMetre;
    stream << quint32{0} << quint32{0};  // no palette
    return headers;
}

}  // namespace

void WriteBmp(QIODevice& device, const Pixels& pixels, DotsPerInch resolution,
              const WrittenMetadata& /*metadata*/) {
    const RowSource rows(pixels, ChannelOrder::BlueFirst);
    // Rows begin at multiples of four bytes.
    const qint64 stride = (rows.BytesPerRow() + 3) / 4 * 4;
    const qint64 fileBytes = FileHeaderBytes + InfoHeaderBytes + stride * rows.Height();
    if (fileBytes > std::numeric_limits<quint32>::max()) {
        throw platform::Error(u"Das Bild ist zu groß: BMP fasst höchstens 4 GiB."_s);
    }
    const QByteArray headers =
        Headers(rows, static_cast<quint32>(stride * rows.Height()), resolution);
    WriteBytes(device, headers.constData(), headers.size());
    std::vector<uchar> row(static_cast<size_t>(stride));
    for (int y = rows.Height() - 1; y >= 0; --y) {
        rows.CopyRow(y, row.data());
        WriteBytes(device, row.data(), stride);
    }
}

}  // namespace kadrona::imaging
