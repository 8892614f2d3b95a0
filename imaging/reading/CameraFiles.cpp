#include "imaging/reading/CameraFiles.h"

#include <algorithm>
#include <array>
#include <set>

#include "imaging/metadata/TiffFields.h"
#include "imaging/reading/CamerasPart.h"
#include "platform/ProgramPart.h"

namespace kadrona::imaging {

namespace {

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

/// It says so itself (DNG), has a camera's mosaic of colours, compressed or not, or its first
/// picture is a preview of others and a camera made it.
bool IsRawTiff(QIODevice& device) {
    enum Tag : quint16 {
        PictureKind = 0x00fe,
        Photometry = 0x0106,
        Make = 0x010f,
        FurtherPictures = 0x014a,
        DngVersion = 0xc612,
    };
    constexpr quint32 Mosaic = 32803;
    bool isRaw = false;
    std::set<quint16> tags;
    bool isPreview = false;
    try {
        const TiffFields tiff(device);
        for (const TiffField& field : tiff.Directory(tiff.First())) {
            tags.insert(field.tag);
            isRaw |= field.tag == Photometry && tiff.Number(field) == Mosaic;
            isPreview |= field.tag == PictureKind && (tiff.Number(field) & 1) != 0;
        }
        isRaw |= tags.contains(DngVersion) ||
                 (isPreview && tags.contains(Make) && tags.contains(FurtherPictures));
    } catch (const platform::OutOfBytes&) {
        // The reader of TIFF files says what is wrong.
    }
    device.seek(0);
    return isRaw;
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
