#include "imaging/reading/CameraFiles.h"

#include <algorithm>
#include <array>

#include "imaging/reading/CamerasPart.h"
#include "platform/ByteReader.h"
#include "platform/ProgramPart.h"

namespace kadrona::imaging {

namespace {

/// The tags of a TIFF file's first directory by which a raw file is told.
struct FirstDirectory {
    bool isDng = false;
    bool hasFurtherPictures = false;
    bool hasMake = false;
    bool isPreview = false;
    /// A camera's mosaic of colours, compressed or not.
    bool isMosaic = false;
};

FirstDirectory ReadFirstDirectory(QByteArrayView start, QIODevice& device) {
    constexpr qint64 EntrySize = 12;
    constexpr int MosaicPhotometry = 32803;
    const auto order =
        start.startsWith('M') ? platform::ByteOrder::BigEndian : platform::ByteOrder::LittleEndian;
    platform::ByteReader header(start, order);
    header.Skip(4);
    const auto position = header.Read<quint32>();
    device.seek(position);
    const QByteArray count = device.read(2);
    const auto entries = platform::ByteReader(count, order).Read<quint16>();
    const QByteArray bytes = device.read(entries * EntrySize);
    platform::ByteReader reader(bytes, order);
    FirstDirectory found;
    for (int i = 0; i < entries; ++i) {
        reader.Seek(i * EntrySize);
        const auto tag = reader.Read<quint16>();
        const auto type = reader.Read<quint16>();
        reader.Skip(4);
        const quint32 value = type == 3 ? reader.Read<quint16>() : reader.Read<quint32>();
        found.isDng |= tag == 0xc612;
        found.hasFurtherPictures |= tag == 0x014a;
        found.hasMake |= tag == 0x010f;
        found.isPreview |= tag == 0x00fe && (value & 1) != 0;
        found.isMosaic |= tag == 0x0106 && value == MosaicPhotometry;
    }
    return found;
}

DecodedImage ReadByPart(CameraFormat format, const ReadTask& task) {
    const auto decode = [&task] {
        try {
            return platform::PartFunction<decltype(kadrona_decode_camera_file)>(
                "kadrona-cameras", "kadrona_decode_camera_file");
        } catch (const platform::PartMissing& missing) {
            task.Fail(missing.Text());
        }
    }();
    DecodedImage decoded;
    decode(format, task, decoded);
    return decoded;
}

}  // namespace

bool IsHeif(QByteArrayView start) {
    constexpr std::array<QByteArrayView, 8> Brands{"heic", "heix", "heim", "heis",
                                                   "mif1", "msf1", "avif", "avis"};
    return start.size() >= 12 && start.sliced(4, 4) == "ftyp" &&
           std::find(Brands.begin(), Brands.end(), start.sliced(8, 4)) != Brands.end();
}

bool IsJpegXl(QByteArrayView start) {
    return start.startsWith("\xff\x0a") ||
           start.startsWith(QByteArrayView("\0\0\0\x0cJXL \r\n\x87\n", 12));
}

bool IsRaw(QByteArrayView start) {
    const std::array<QByteArrayView, 9> signatures{QByteArrayView("FUJIFILMCCD-RAW"),
                                                   QByteArrayView("IIU\0", 4),
                                                   QByteArrayView("IIRO"),
                                                   QByteArrayView("IIRS"),
                                                   QByteArrayView("MMOR"),
                                                   QByteArrayView("FOVb"),
                                                   QByteArrayView("\0MRM", 4),
                                                   QByteArrayView("II\x1a\0\0\0HEAPCCDR", 14),
                                                   QByteArrayView("II*\0\x10\0\0\0CR", 10)};
    for (const QByteArrayView signature : signatures) {
        if (start.startsWith(signature)) {
            return true;
        }
    }
    return start.size() >= 12 && start.sliced(4, 8) == QByteArrayView("ftypcrx ");
}

bool IsRawTiff(QIODevice& device) {
    FirstDirectory found;
    try {
        found = ReadFirstDirectory(device.peek(8), device);
    } catch (const platform::OutOfBytes&) {
        // The reader of TIFF files says what is wrong.
    }
    device.seek(0);
    return found.isDng || found.isMosaic ||
           (found.hasMake && found.hasFurtherPictures && found.isPreview);
}

DecodedImage ReadHeif(const ReadTask& task) {
    return ReadByPart(CameraFormat::Heif, task);
}

DecodedImage ReadJpegXl(const ReadTask& task) {
    return ReadByPart(CameraFormat::JpegXl, task);
}

DecodedImage ReadRaw(const ReadTask& task) {
    return ReadByPart(CameraFormat::Raw, task);
}

}  // namespace kadrona::imaging
