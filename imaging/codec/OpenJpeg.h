#pragma once

#include <openjpeg.h>

#include <memory>

#include "imaging/codec/Release.h"

namespace kadrona::imaging {

using OpenJpegCodec = std::unique_ptr<opj_codec_t, Release<opj_destroy_codec>>;
using OpenJpegImage = std::unique_ptr<opj_image_t, Release<opj_image_destroy>>;
using OpenJpegStream = std::unique_ptr<opj_stream_t, Release<opj_stream_destroy>>;

}  // namespace kadrona::imaging
