#include "imaging/reading/WebPReader.h"

#include <webp/decode.h>
#include <webp/demux.h>

#include <cerrno>
#include <memory>
#include <optional>

#include "imaging/codec/Release.h"
#include "imaging/reading/CameraFiles.h"
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

/// `errno` is what the library has left.
QString ReasonOf(VP8StatusCode status) {
    switch (status) {
        case VP8_STATUS_OUT_OF_MEMORY:
            return OutOfMemoryReason();
        case VP8_STATUS_SUSPENDED:
        case VP8_STATUS_NOT_ENOUGH_DATA:
            return IncompleteFileReason();
        default:
            // Of a packed picture the library tells no lack of memory.
            return errno == ENOMEM ? OutOfMemoryReason() : DamagedFileReason();
    }
}

/// The bytes of a file and what they hold, which is no copy.
class WebPFile {
 public:
    explicit WebPFile(const ReadTask& task) : task_(task), bytes_(task.ReadWhole()) {
        if (HasTooManyChunks(bytes_)) {
            task.Fail(TooMuchMemoryReason());
        }
        const WebPData data{reinterpret_cast<const uint8_t*>(bytes_.constData()),
                            static_cast<size_t>(bytes_.size())};
        demuxer_.reset(WebPDemux(&data));
        WebPIterator frame = {};
        if (!demuxer_ || !WebPDemuxGetFrame(demuxer_.get(), 1, &frame)) {
            task.Fail(DamagedOrIncompleteFileReason());
        }
        frame_ = frame.fragment;
        WebPDemuxReleaseIterator(&frame);
        if (!WebPInitDecoderConfig(&config_)) {
            task.Fail(DamagedFileReason());
        }
        Require([this] { return WebPGetFeatures(frame_.bytes, frame_.size, &config_.input); });
    }

    /// In a few bytes a picture without losses, and the alpha of one with, may have any number of
    /// codes, each with tables of kilobytes.
    bool IsPacked() const { return IsLossless() || config_.input.has_alpha; }

    DecodedImage Decoded() {
        DecodedImage decoded;
        const WebPBitstreamFeatures& features = config_.input;
        task_.RequireAllowedSize(features.width, features.height);
        decoded.profile = ProfileOf(demuxer_.get(), task_);
        // A lossless picture is decoded beside the result, in four bytes a pixel of its own, and so
        // is the alpha of a lossy one, with the byte that becomes of it.
        const int besideLossy = features.has_alpha ? 5 : 0;
        const int beside = IsLossless() ? 4 : besideLossy;
        task_.RequireMemoryBeside(bytes_.size() + decoded.profile.size() +
                                  qint64{features.width} * features.height * beside);
        QImage& image = decoded.image;
        image = task_.NewPicture({features.width, features.height},
                                 features.has_alpha ? QImage::Format_ARGB32 : QImage::Format_RGB32);
        config_.output.colorspace = MODE_BGRA;
        config_.output.is_external_memory = 1;
        config_.output.u.RGBA = {image.bits(), static_cast<int>(image.bytesPerLine()),
                                 static_cast<size_t>(image.sizeInBytes())};
        Require([this] { return WebPDecode(frame_.bytes, frame_.size, &config_); });
        return decoded;
    }

 private:
    bool IsLossless() const {
        constexpr int Lossless = 2;
        return config_.input.format == Lossless;
    }
    template <typename Step>
    void Require(Step step) const {
        errno = 0;
        if (const VP8StatusCode status = step(); status != VP8_STATUS_OK) {
            task_.Fail(ReasonOf(status));
        }
    }

    const ReadTask& task_;
    QByteArray bytes_;
    Demuxer demuxer_;
    WebPData frame_ = {};
    WebPDecoderConfig config_ = {};
};

/// Nothing where a process of its own is to decode it.
std::optional<DecodedImage> DecodedHere(const ReadTask& task) {
    WebPFile file(task);
    return file.IsPacked() ? std::nullopt : std::optional(file.Decoded());
}

}  // namespace

bool IsWebP(QByteArrayView start) {
    return start.size() >= 12 && start.startsWith("RIFF") && start.sliced(8, 4) == "WEBP";
}

DecodedImage ReadWebP(const ReadTask& task) {
    FileMetadata metadata = ReadFileMetadata(task.Device());
    std::optional<DecodedImage> decoded = DecodedHere(task);
    if (!decoded) {
        ReadOptions options = task.Options();
        options.progress = nullptr;  // CanGiveUp() does not know how it is packed
        decoded = ReadPackedWebP(task.Within(task.Device(), options));
    }
    decoded->metadata = std::move(metadata);
    return std::move(*decoded);
}

DecodedImage DecodeWebP(const ReadTask& task) {
    return WebPFile(task).Decoded();
}

}  // namespace kadrona::imaging
