#include "imaging/reading/CamerasPart.h"

#include "imaging/reading/cameras/HeifReader.h"
#include "imaging/reading/cameras/JpegXlReader.h"
#include "imaging/reading/cameras/RawReader.h"

using kadrona::imaging::CameraFormat;

void kadrona_decode_camera_file(CameraFormat format, const kadrona::imaging::ReadTask& task,
                                kadrona::imaging::DecodedImage& decoded) {
    switch (format) {
        case CameraFormat::Heif:
            decoded = kadrona::imaging::DecodeHeif(task);
            break;
        case CameraFormat::JpegXl:
            decoded = kadrona::imaging::DecodeJpegXl(task);
            break;
        case CameraFormat::Raw:
            decoded = kadrona::imaging::DecodeRaw(task);
            break;
    }
}
