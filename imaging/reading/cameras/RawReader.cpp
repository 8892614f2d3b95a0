#include "imaging/reading/cameras/RawReader.h"

#include <libraw/libraw.h>

#include <algorithm>
#include <array>
#include <memory>
#include <new>

#include "imaging/reading/ReadProgress.h"
#include "imaging/reading/cameras/RawCompleteness.h"
#include "imaging/reading/cameras/RawDevelopment.h"
#include "imaging/reading/cameras/RawPreview.h"
#include "imaging/reading/cameras/RawStream.h"

using namespace Qt::StringLiterals;

namespace kadrona::imaging {

namespace {

QString ReasonOf(int code) {
    switch (code) {
        case LIBRAW_FILE_UNSUPPORTED:
        case LIBRAW_REQUEST_FOR_NONEXISTENT_IMAGE:
            return u"Die Rohdaten dieser Kamera werden nicht unterstützt."_s;
        case LIBRAW_UNSUFFICIENT_MEMORY:
            return OutOfMemoryReason();
        case LIBRAW_TOO_BIG:
            return TooMuchMemoryReason();
        default:
            return DamagedFileReason();
    }
}

void Require(const ReadTask& task, int code) {
    if (code == LIBRAW_CANCELLED_BY_CALLBACK) {
        throw ReadCancelled();
    }
    if (code != LIBRAW_SUCCESS) {
        task.Fail(ReasonOf(code));
    }
}

/// What LibRaw says of the data while it goes on: it would make black or grey of what is missing.
struct DataFaults {
    bool damaged = false;
    bool incomplete = false;

    static void Note(void* faults, const char* /*file*/, const int offset) {
        auto& noted = *static_cast<DataFaults*>(faults);
        (offset < 0 ? noted.incomplete : noted.damaged) = true;
    }
    void FailIfAny(const ReadTask& task) const {
        if (incomplete || damaged) {
            task.Fail(incomplete ? IncompleteFileReason() : DamagedFileReason());
        }
    }
};

void SetParameters(libraw_output_params_t& parameters) {
    constexpr int Srgb = 1;
    parameters.use_camera_wb = 1;
    parameters.output_color = Srgb;
    parameters.output_bps = 8;
    parameters.user_flip = 0;
    // Each photo as the camera exposed it, and not stretched to its brightest pixel.
    parameters.no_auto_bright = 1;
    // The curve of sRGB itself.
    parameters.gamm[0] = 1 / 2.4;
    parameters.gamm[1] = 12.92;
}

/// Shows the preview and tells whoever waits how far the work has come, where it takes long.
class RawProgress {
 public:
    /// Both outlive the object; `raw` is open.
    RawProgress(const ReadTask& task, LibRaw& raw) : progress_(task.Options().progress) {
        /// Fewer are developed at once on any machine of today.
        constexpr qint64 PixelsOfHalfASecond = 2'000'000;
        const libraw_image_sizes_t& sizes = raw.imgdata.sizes;
        if (progress_ == nullptr || qint64{sizes.width} * sizes.height < PixelsOfHalfASecond) {
            return;
        }
        progress_->Begin(ShownPreview(task, raw));
        raw.set_progress_handler(&RawProgress::Tell, this);
    }
    RawProgress(const RawProgress&) = delete;
    RawProgress& operator=(const RawProgress&) = delete;

    /// What LibRaw does from now on is this part of developing the unpacked data, 0 to 1.
    void BeginPart(double begin, double end) {
        begin_ = UnpackingPart + (1 - UnpackingPart) * begin;
        end_ = UnpackingPart + (1 - UnpackingPart) * end;
    }

 private:
    /// As 24 megapixels took it.
    static constexpr double UnpackingPart = 0.1;

    static Pixels ShownPreview(const ReadTask& task, LibRaw& raw) {
        constexpr int WideEnough = 4000;
        auto preview = RawPreview(task, raw, raw.imgdata.sizes.width >= WideEnough ? 4 : 2);
        if (!preview) {
            return {};
        }
        ConvertToSrgb(preview->image, preview->model, preview->profile);
        return Pixels(task.Options().applyOrientation
                          ? Uprighted(std::move(preview->image), preview->metadata.orientation)
                          : std::move(preview->image));
    }

    /// LibRaw's callback: anything but 0 ends the work.
    static int Tell(void* self, LibRaw_progress stage, int iteration, int expected) {
        struct Stage {
            LibRaw_progress stage;
            double begin;
            double length;
        };
        constexpr std::array Stages{Stage{LIBRAW_PROGRESS_LOAD_RAW, 0, 1},
                                    Stage{LIBRAW_PROGRESS_SCALE_COLORS, 0, 0.1},
                                    Stage{LIBRAW_PROGRESS_INTERPOLATE, 0.1, 0.75},
                                    Stage{LIBRAW_PROGRESS_CONVERT_RGB, 0.85, 0.15}};
        const auto& progress = *static_cast<const RawProgress*>(self);
        for (const Stage& known : Stages) {
            if (known.stage == stage) {
                const double done =
                    std::clamp(double(iteration) / std::max(1, expected - 1), 0., 1.);
                const double part = known.begin + known.length * done;
                const double whole = progress.begin_ + (progress.end_ - progress.begin_) * part;
                return progress.progress_->GoOn(whole) ? 0 : 1;
            }
        }
        return 0;
    }

    ReadProgress* progress_;
    double begin_ = 0;
    double end_ = UnpackingPart;
};

/// By what the file says before its pixels are unpacked.
void RequireAllowed(const ReadTask& task, LibRaw& raw, qint64 fileBytes) {
    const libraw_image_sizes_t& sizes = raw.imgdata.sizes;
    task.RequireAllowedSize(std::max(sizes.width, sizes.raw_width),
                            std::max(sizes.height, sizes.raw_height));
    task.RequireAllowedSize(sizes.width, sizes.height);
    // The file is let go before most of this is taken.
    task.RequireMemoryBeside(RawBytesBeside(raw) + fileBytes, MostBytesBesideOfCameras + fileBytes);
}

}  // namespace

DecodedImage DecodeRaw(const ReadTask& task) {
    QByteArray file = task.ReadWhole();
    RawStream stream(file);
    // Far larger than a stack should hold.
    const auto raw = std::make_unique<LibRaw>();
    DataFaults faults;
    raw->set_dataerror_handler(&DataFaults::Note, &faults);
    SetParameters(raw->imgdata.params);
    Require(task, raw->open_datastream(&stream));
    RequireAllowed(task, *raw, file.size());
    if (task.Shrink() > 1) {
        if (auto preview = RawPreview(task, *raw, task.Shrink())) {
            return std::move(*preview);
        }
    }
    if (!HasWholeRawData(file)) {
        task.Fail(DamagedOrIncompleteFileReason());
    }
    // Developing it unturned clears it.
    const Orientation orientation = RawOrientation(*raw);
    RawProgress progress(task, *raw);
    stream.StopCounting();
    Require(task, raw->unpack());
    faults.FailIfAny(task);
    raw->recycle_datastream();
    file.clear();
    task.LetFileGo();
    task.RequireMemoryBeside(RawBytesBeside(*raw), MostBytesBesideOfCameras);
    DecodedImage decoded;
    decoded.image = DevelopedRaw(
        *raw, [&task](QSize size) { return task.NewPicture(size, QImage::Format_RGB32); },
        [&task](int result) { Require(task, result); },
        [&progress](double begin, double end) { progress.BeginPart(begin, end); });
    decoded.metadata.orientation = orientation;
    return decoded;
}

}  // namespace kadrona::imaging
