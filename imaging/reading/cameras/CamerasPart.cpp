#include "imaging/reading/CamerasPart.h"

#include "imaging/reading/MetafileReader.h"
#include "imaging/reading/WebPReader.h"
#include "imaging/reading/cameras/HeifReader.h"
#include "imaging/reading/cameras/Jpeg2000Reader.h"
#include "imaging/reading/cameras/JpegXlReader.h"
#include "imaging/reading/cameras/RawReader.h"

using kadrona::imaging::CameraFormat;

void kadrona_prepare_camera_files() {
    kadrona::imaging::PrepareHeif();
}

void kadrona_decode_camera_file(CameraFormat format, const kadrona::imaging::ReadTask& task,
                                kadrona::imaging::DecodedImage& decoded) {
    switch (format) {
        case CameraFormat::Heif:
            decoded = kadrona::imaging::DecodeHeif(task);
            break;
        case CameraFormat::JpegXl:
            decoded = kadrona::imaging::DecodeJpegXl(task);
            break;
        case CameraFormat::Jpeg2000:
            decoded = kadrona::imaging::DecodeJpeg2000(task);
            break;
        case CameraFormat::Raw:
            decoded = kadrona::imaging::DecodeRaw(task);
            break;
        case CameraFormat::Metafile:
            decoded = kadrona::imaging::DrawMetafile(task);
            break;
        case CameraFormat::WebP:
            decoded = kadrona::imaging::DecodeWebP(task);
            break;
    }
}
