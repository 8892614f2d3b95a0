#include "imaging/reading/cameras/JpegXlReader.h"

#include <jxl/decode.h>
#include <jxl/thread_parallel_runner.h>

#include <ctime>
#include <memory>

#include "imaging/codec/Release.h"

using namespace Qt::StringLiterals;

namespace kadrona::imaging {

namespace {

/// What libjxl takes beside the result where a file is lossless and comes coarse first; of others,
/// which the header does not tell apart, a fifth.
constexpr qint64 BytesAPixel = 24;
/// It keeps pictures as numbers of 32 bits for those that follow.
constexpr qint64 BytesAPixelOfMoving = 37;
/// For each channel beside the colours.
constexpr qint64 BytesOfExtraChannel = 4;
/// Alpha and what a camera may add.
constexpr uint32_t MostExtraChannels = 4;

using Decoder = std::unique_ptr<JxlDecoder, Release<JxlDecoderDestroy>>;
using Runner = std::unique_ptr<void, Release<JxlThreadParallelRunnerDestroy>>;

/// libjxl's own threads, which work until they have had more processor time than any picture needs:
/// layers that nobody sees, each as large as the picture, take a few bytes of a file.
class BoundedThreads {
 public:
    BoundedThreads()
        : threads_(JxlThreadParallelRunnerCreate(nullptr,
                                                 JxlThreadParallelRunnerDefaultNumWorkerThreads())),
          end_(std::clock() + MostSeconds * CLOCKS_PER_SEC) {}

    explicit operator bool() const { return threads_ != nullptr; }
    /// A second for each megapixel on top.
    void Allow(qint64 pixels) { end_ += pixels * CLOCKS_PER_SEC / 1'000'000; }

    /// A JxlParallelRunner; `self` is such an object.
    static JxlParallelRetCode Run(void* self, void* work, JxlParallelRunInit begin,
                                  JxlParallelRunFunction part, uint32_t first, uint32_t end) {
        const auto& bounded = *static_cast<const BoundedThreads*>(self);
        return std::clock() > bounded.end_
                   ? -1
                   : JxlThreadParallelRunner(bounded.threads_.get(), work, begin, part, first, end);
    }

 private:
    static constexpr std::clock_t MostSeconds = 5;

    Runner threads_;
    std::clock_t end_;
};

/// Of libjxl's order of bytes (red first, perhaps premultiplied) makes ARGB32, in place.
void Rearrange(QImage& image) {
    const bool premultiplied = image.format() == QImage::Format_RGBA8888_Premultiplied;
    for (int y = 0; y < image.height(); ++y) {
        auto* const row = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            const auto* const bytes = reinterpret_cast<const uchar*>(row + x);
            const QRgb pixel = qRgba(bytes[0], bytes[1], bytes[2], bytes[3]);
            row[x] = premultiplied ? qUnpremultiply(pixel) : pixel;
        }
    }
    image.reinterpretAsFormat(QImage::Format_ARGB32);
}

constexpr JxlPixelFormat Pixels8Bit{4, JXL_TYPE_UINT8, JXL_NATIVE_ENDIAN, 0};

/// The decoding of one file, event by event, up to the end of its first picture.
class Decoding {
 public:
    explicit Decoding(const ReadTask& task)
        : task_(task), file_(task.ReadWhole()), decoder_(JxlDecoderCreate(nullptr)) {
        JxlDecoder* decoder = decoder_.get();
        Require(decoder && threads_ ? JXL_DEC_SUCCESS : JXL_DEC_ERROR);
        Require(JxlDecoderSetParallelRunner(decoder, &BoundedThreads::Run, &threads_));
        Require(JxlDecoderSetKeepOrientation(decoder, JXL_TRUE));
        Require(JxlDecoderSubscribeEvents(
            decoder, JXL_DEC_BASIC_INFO | JXL_DEC_COLOR_ENCODING | JXL_DEC_FULL_IMAGE));
        Require(JxlDecoderSetInput(decoder, reinterpret_cast<const uint8_t*>(file_.constData()),
                                   static_cast<size_t>(file_.size())));
        // Not told that this is all: it would complain on standard error of a file that is cut
        // short.
    }

    DecodedImage Run() {
        for (;;) {
            switch (JxlDecoderProcessInput(decoder_.get())) {
                case JXL_DEC_BASIC_INFO:
                    ReadBasicInfo();
                    break;
                case JXL_DEC_COLOR_ENCODING:
                    ReadProfile();
                    break;
                case JXL_DEC_NEED_IMAGE_OUT_BUFFER:
                    GiveBuffer();
                    break;
                case JXL_DEC_FULL_IMAGE:
                    Rearrange(decoded_.image);
                    return std::move(decoded_);
                case JXL_DEC_NEED_MORE_INPUT:
                    task_.Fail(IncompleteFileReason());
                default:
                    task_.Fail(DamagedOrIncompleteFileReason());
            }
        }
    }

 private:
    void Require(JxlDecoderStatus status) const {
        if (status != JXL_DEC_SUCCESS) {
            task_.Fail(DamagedFileReason());
        }
    }

    void ReadBasicInfo() {
        Require(JxlDecoderGetBasicInfo(decoder_.get(), &info_));
        task_.RequireAllowedSize(info_.xsize, info_.ysize);
        if (info_.num_extra_channels > MostExtraChannels) {
            task_.Fail(TooMuchMemoryReason());
        }
        const qint64 bytesAPixel = (info_.have_animation ? BytesAPixelOfMoving : BytesAPixel) +
                                   info_.num_extra_channels * BytesOfExtraChannel;
        task_.RequireMemoryBeside(file_.size() + qint64{info_.xsize} * info_.ysize * bytesAPixel,
                                  MostBytesBesideOfCameras);
        threads_.Allow(qint64{info_.xsize} * info_.ysize);
        for (size_t i = 0; i < info_.num_extra_channels; ++i) {
            JxlExtraChannelInfo channel;
            Require(JxlDecoderGetExtraChannelInfo(decoder_.get(), i, &channel));
            if (channel.type == JXL_CHANNEL_BLACK) {
                task_.Fail(u"JPEG XL mit vier Druckfarben wird nicht unterstützt."_s);
            }
        }
        decoded_.metadata.orientation = OrientationFrom(info_.orientation);
    }

    void ReadProfile() {
        constexpr size_t LargestProfile = 1 << 24;
        constexpr auto Target = JXL_COLOR_PROFILE_TARGET_DATA;
        size_t size = 0;
        if (JxlDecoderGetICCProfileSize(decoder_.get(), &Pixels8Bit, Target, &size) !=
                JXL_DEC_SUCCESS ||
            size == 0 || size > LargestProfile) {
            return;
        }
        QByteArray profile(static_cast<qsizetype>(size), '\0');
        Require(JxlDecoderGetColorAsICCProfile(decoder_.get(), &Pixels8Bit, Target,
                                               reinterpret_cast<uint8_t*>(profile.data()), size));
        decoded_.profile = profile;
        decoded_.model = info_.num_color_channels == 1 ? ColourModel::Grey : ColourModel::Rgb;
    }

    void GiveBuffer() {
        size_t size = 0;
        Require(JxlDecoderImageOutBufferSize(decoder_.get(), &Pixels8Bit, &size));
        QImage& image = decoded_.image;
        image = task_.NewPicture({static_cast<int>(info_.xsize), static_cast<int>(info_.ysize)},
                                 info_.alpha_premultiplied ? QImage::Format_RGBA8888_Premultiplied
                                                           : QImage::Format_RGBA8888);
        Require(size == static_cast<size_t>(image.sizeInBytes()) ? JXL_DEC_SUCCESS : JXL_DEC_ERROR);
        Require(JxlDecoderSetImageOutBuffer(decoder_.get(), &Pixels8Bit, image.bits(), size));
    }

    const ReadTask& task_;
    QByteArray file_;
    BoundedThreads threads_;
    Decoder decoder_;
    JxlBasicInfo info_ = {};
    DecodedImage decoded_;
};

}  // namespace

DecodedImage DecodeJpegXl(const ReadTask& task) {
    return Decoding(task).Run();
}

}  // namespace kadrona::imaging
