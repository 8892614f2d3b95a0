#include "imaging/reading/WebPReader.h"

#include <webp/decode.h>
#include <webp/demux.h>

#include <memory>

#include "imaging/codec/Release.h"
#include "imaging/pixels/NewImage.h"
#include "platform/ByteReader.h"

using namespace Qt::StringLiterals;

namespace kadrona::imaging {

namespace {

using Demuxer = std::unique_ptr<WebPDemuxer, Release<WebPDemuxDelete>>;

/// Empty where there is none.
QByteArray ProfileOf(const WebPDemuxer* demuxer, const ReadTask& task) {
    constexpr qint64 LargestProfile = 1 << 24;
    WebPChunkIterator chunk = {};
    if (!WebPDemuxGetChunk(demuxer, "ICCP", 1, &chunk)) {
        return {};
    }
    const WebPData found = chunk.chunk;  // bytes of the file
    WebPDemuxReleaseChunkIterator(&chunk);
    task.RequireMemoryBeside(static_cast<qint64>(found.size), LargestProfile);
    return {reinterpret_cast<const char*>(found.bytes), static_cast<qsizetype>(found.size)};
}

/// The library keeps a note of each chunk, however short.
bool HasTooManyChunks(QByteArrayView file) {
    constexpr int MostChunks = 200'000;
    constexpr int BeforeChunks = 12;
    platform::ByteReader reader(file);
    reader.Skip(BeforeChunks);
    for (int i = 0; i < MostChunks; ++i) {
        constexpr int Header = 8;
        if (reader.Remaining() < Header) {
            return false;
        }
        const QByteArrayView type = reader.Take(4);
        const qint64 length = reader.Read<quint32>();
        // Those of a frame are noted, too.
        constexpr qint64 HeaderOfFrame = 16;
        const qint64 step = type == "ANMF" ? HeaderOfFrame : length + length % 2;
        if (step > reader.Remaining()) {
            return false;
        }
        reader.Skip(step);
    }
    return true;
}

QString ReasonOf(VP8StatusCode status) {
    switch (status) {
        case VP8_STATUS_OUT_OF_MEMORY:
            return OutOfMemoryReason();
        case VP8_STATUS_SUSPENDED:
        case VP8_STATUS_NOT_ENOUGH_DATA:
            return IncompleteFileReason();
        default:
            return DamagedFileReason();
    }
}

/// `kept`: the bytes of the file and what was taken out of it.
QImage DecodeFrame(const WebPData& frame, qint64 kept, const ReadTask& task) {
    constexpr int Lossless = 2;
    WebPDecoderConfig config;
    if (!WebPInitDecoderConfig(&config)) {
        task.Fail(DamagedFileReason());
    }
    if (const auto status = WebPGetFeatures(frame.bytes, frame.size, &config.input);
        status != VP8_STATUS_OK) {
        task.Fail(ReasonOf(status));
    }
    const WebPBitstreamFeatures& features = config.input;
    task.RequireAllowedSize(features.width, features.height);
    // A lossless picture is decoded beside the result, in four bytes a pixel of its own, and so is
    // the alpha of a lossy one, with the byte that becomes of it.
    const int besideLossy = features.has_alpha ? 5 : 0;
    const int beside = features.format == Lossless ? 4 : besideLossy;
    task.RequireMemoryBeside(kept + qint64{features.width} * features.height * beside);
    QImage image = NewImage({features.width, features.height},
                            features.has_alpha ? QImage::Format_ARGB32 : QImage::Format_RGB32);
    config.output.colorspace = MODE_BGRA;
    config.output.is_external_memory = 1;
    config.output.u.RGBA = {image.bits(), static_cast<int>(image.bytesPerLine()),
                            static_cast<size_t>(image.sizeInBytes())};
    if (const auto status = WebPDecode(frame.bytes, frame.size, &config); status != VP8_STATUS_OK) {
        task.Fail(ReasonOf(status));
    }
    return image;
}

}  // namespace

bool IsWebP(QByteArrayView start) {
    return start.size() >= 12 && start.startsWith("RIFF") && start.sliced(8, 4) == "WEBP";
}

DecodedImage ReadWebP(const ReadTask& task) {
    DecodedImage decoded;
    decoded.metadata = ReadFileMetadata(task.Device());
    const QByteArray file = task.ReadWhole();
    if (HasTooManyChunks(file)) {
        task.Fail(TooMuchMemoryReason());
    }
    const WebPData data{reinterpret_cast<const uint8_t*>(file.constData()),
                        static_cast<size_t>(file.size())};
    const Demuxer demuxer(WebPDemux(&data));
    WebPIterator frame = {};
    if (!demuxer || !WebPDemuxGetFrame(demuxer.get(), 1, &frame)) {
        task.Fail(DamagedOrIncompleteFileReason());
    }
    const WebPData first = frame.fragment;  // bytes of the file
    WebPDemuxReleaseIterator(&frame);
    decoded.profile = ProfileOf(demuxer.get(), task);
    decoded.image = DecodeFrame(first, file.size() + decoded.profile.size(), task);
    return decoded;
}

}  // namespace kadrona::imaging
