#include "imaging/reading/CameraFiles.h"

#include <algorithm>
#include <array>
#include <set>

#include "imaging/metadata/TiffFields.h"
#include "imaging/reading/CamerasPart.h"
#include "imaging/reading/DecodingProcess.h"
#include "platform/ProgramPart.h"

namespace kadrona::imaging {

namespace {

bool& DecodesHere() {
    static bool here = false;
    return here;
}

DecodedImage DecodeHere(CameraFormat format, const ReadTask& task) {
    const auto decode = platform::PartFunction<decltype(kadrona_decode_camera_file)>(
        "kadrona-cameras", "kadrona_decode_camera_file");
    DecodedImage decoded;
    decode(format, task, decoded);
    return decoded;
}

DecodedImage Decode(CameraFormat format, const ReadTask& task) {
    try {
        return DecodesHere()
                   ? DecodeHere(format, task)
                   : DecodeByProcess(platform::PartProgram("kadrona-decode"), format, task);
    } catch (const platform::PartMissing& missing) {
        task.Fail(missing.Text());
    }
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

bool IsJpeg2000(QByteArrayView start) {
    return start.startsWith(QByteArrayView("\0\0\0\x0cjP  \r\n\x87\n", 12)) ||
           start.startsWith("\xff\x4f\xff\x51");
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
    return Decode(CameraFormat::Heif, task);
}

DecodedImage ReadJpegXl(const ReadTask& task) {
    return Decode(CameraFormat::JpegXl, task);
}

DecodedImage ReadJpeg2000(const ReadTask& task) {
    return Decode(CameraFormat::Jpeg2000, task);
}

DecodedImage ReadRaw(const ReadTask& task) {
    return Decode(CameraFormat::Raw, task);
}

DecodedImage ReadMetafile(const ReadTask& task) {
    return Decode(CameraFormat::Metafile, task);
}

DecodedImage ReadPackedWebP(const ReadTask& task) {
    return Decode(CameraFormat::WebP, task);
}

void DecodeCameraFilesHere() {
    DecodesHere() = true;
}

}  // namespace kadrona::imaging
