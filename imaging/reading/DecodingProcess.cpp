#include "imaging/reading/DecodingProcess.h"

#include <QElapsedTimer>
#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <memory>
#include <optional>

#include "imaging/pixels/NewImage.h"
#include "imaging/reading/DecodingMessages.h"
#include "imaging/reading/ReadProgress.h"
#include "imaging/reading/SharedPicture.h"
#include "imaging/reading/WorkWatch.h"
#include "platform/HelperProcess.h"
#include "platform/SilenceWatch.h"

using namespace Qt::StringLiterals;

namespace kadrona::imaging {

namespace {

/// Whoever waits looks around as often.
constexpr std::chrono::milliseconds Look{100};
/// Whoever is patient so long without a word is asked whether he goes on.
constexpr qint64 PatienceMilliseconds = 2000;

/// From its last word to its end; one that goes on silently is not waited for.
constexpr std::chrono::milliseconds Farewell{1000};

QString NameOf(CameraFormat format) {
    switch (format) {
        case CameraFormat::Heif:
            return u"HEIC und AVIF"_s;
        case CameraFormat::JpegXl:
            return u"JPEG XL"_s;
        case CameraFormat::Jpeg2000:
            return u"JPEG 2000"_s;
        case CameraFormat::Metafile:
            return u"Metadateien"_s;
        case CameraFormat::WebP:
            return u"WebP"_s;
        case CameraFormat::Raw:
            break;
    }
    return u"Rohdaten"_s;
}

class Decoding {
 public:
    /// Throws platform::Error where it cannot be started.
    Decoding(const QString& program, CameraFormat format, const ReadTask& task)
        : format_(format),
          task_(task),
          progress_(task.Options().progress),
          process_(program, {&file_, &preview_, &picture_}) {
        sinceLook_.start();
    }

    DecodedImage Run() {
        Ask();
        for (;;) {
            QByteArray bytes;
            const auto heard = process_.Hear(bytes, Look);
            platform::SilenceWatch::NoteAnswer();  // the file itself has long been read
            if (heard == platform::HelperProcess::Heard::End) {
                FailAsItDied(process_.End(Farewell));
            }
            RequireWork();
            if (heard == platform::HelperProcess::Heard::Message) {
                const auto message = DecodingMessageFrom(bytes);
                if (!message) {
                    FailAsItLies();
                }
                if (auto decoded =
                        std::visit([&](const auto& said) { return Take(said); }, *message)) {
                    return std::move(*decoded);
                }
            }
            AskWhetherToGoOn();
        }
    }

 private:
    using Decoded = std::optional<DecodedImage>;

    void Begin(const Pixels& preview) {
        if (!hasBegun_) {
            progress_->Begin(preview);
        }
        hasBegun_ = true;
    }

    void AskWhetherToGoOn() {
        if (progress_ == nullptr) {
            return;
        }
        if (sinceStart_.elapsed() > PatienceMilliseconds) {
            Begin({});
        }
        if (hasBegun_ && !progress_->GoOn(part_)) {
            throw ReadCancelled();
        }
    }

    /// The file is copied: a disk or a share may let whoever reads it wait, which is told of here.
    void Ask() {
        QIODevice& device = task_.Device();
        const qint64 size = task_.RequireReadableWhole();
        // A byte more, which is 0: some libraries take what they read for text.
        const auto bytes = file_.Bound(size + 1) ? file_.Resize(size + 1) : nullptr;
        if (!bytes || !preview_.Bound(DecodingRequest::MostPreviewBytes)) {
            ThrowOutOfMemory();
        }
        device.seek(0);
        const qint64 read = device.read(reinterpret_cast<char*>(bytes->Bytes()), size);
        ReadOptions options = task_.Options();
        options.progress = nullptr;
        process_.Send(Packed(DecodingRequest{.format = format_,
                                             .name = task_.Name(),
                                             .fileBytes = std::max<qint64>(read, 0),
                                             .options = options,
                                             .tellsProgress = progress_ != nullptr}));
        sinceStart_.start();
    }

    void RequireWork() {
        const std::chrono::nanoseconds passed(sinceLook_.nsecsElapsed());
        sinceLook_.start();
        const int patience = task_.Options().patienceMilliseconds;
        if (patience > 0 && sinceStart_.elapsed() > patience) {
            task_.FailAsTooLong();
        }
        if (!watch_.IsAllowed(process_.TimeUsed(), passed)) {
            task_.Fail(u"Sie ist beschädigt: Der Leser für %1 kommt mit ihr nicht zu Ende."_s.arg(
                NameOf(format_)));
        }
    }

    Decoded Take(const decoding::Expectation& said) {
        watch_.Expect(std::min(said.pixels, task_.MaximumPixels()));
        return {};
    }

    Decoded Take(const decoding::Beginning& said) {
        if (part_ >= 0 || progress_ == nullptr) {
            FailAsItLies();
        }
        part_ = 0;
        Pixels preview;
        if (!hasBegun_ && !said.preview.isEmpty()) {
            task_.RequireAllowedSize(said.preview.width(), said.preview.height());
            // A copy: the process still has it.
            preview = Pixels(
                RequireAllocated(Shown(preview_, said.preview, QImage::Format_RGB32).copy()));
        }
        Begin(preview);
        return {};
    }

    Decoded Take(const decoding::Progress& said) {
        part_ = said.part;
        return {};
    }

    static Decoded Take(const decoding::Failure& said) {
        if (said.isTooLong) {
            throw ReadTooLong(said.text);
        }
        throw ReadError(said.text);
    }

    Decoded Take(const decoding::Picture& said) {
        process_.End();
        task_.RequireAllowedSize(said.size.width(), said.size.height());
        DecodedImage decoded;
        decoded.image =
            Shown(picture_, said.size, said.hasAlpha ? QImage::Format_ARGB32 : QImage::Format_RGB32,
                  said.profileBytes);
        const qint64 pixelBytes = decoded.image.sizeInBytes();
        decoded.profile =
            QByteArray(reinterpret_cast<const char*>(decoded.image.constBits() + pixelBytes),
                       said.profileBytes);
        decoded.model = said.model;
        decoded.metadata.orientation = said.orientation;
        decoded.metadata.resolution = said.resolution;
        return decoded;
    }

    QImage Shown(const platform::SharedMemory& memory, QSize size, QImage::Format format,
                 qint64 bytesBehind = 0) const {
        errno = 0;
        auto view = memory.Fixed(SharedPictureBytes(size) + bytesBehind);
        if (!view && errno == ENOMEM) {
            ThrowOutOfMemory();
        }
        if (!view) {
            FailAsItLies();
        }
        return SharedPicture(std::move(view), size, format);
    }

    [[noreturn]] void FailAsItLies() const {
        task_.Fail(u"Sie ist beschädigt: Was der Leser für %1 aus ihr macht, ist kein Bild."_s.arg(
            NameOf(format_)));
    }

    [[noreturn]] void FailAsItDied(int signal) const {
        if (signal == SIGKILL) {  // by a system that is short of it
            ThrowOutOfMemory();
        }
        const QString how = signal != 0 ? u" (Signal %1)"_s.arg(signal) : QString();
        task_.Fail(u"Sie ist beschädigt: Der Leser für %1 ist an ihr gescheitert%2."_s.arg(
            NameOf(format_), how));
    }

    CameraFormat format_;
    const ReadTask& task_;
    ReadProgress* progress_;
    platform::SharedMemory file_;
    platform::SharedMemory preview_;
    platform::SharedMemory picture_;
    platform::HelperProcess process_;
    QElapsedTimer sinceStart_;
    QElapsedTimer sinceLook_;
    WorkWatch watch_;
    bool hasBegun_ = false;
    double part_ = ReadProgress::Unknown;
};

}  // namespace

DecodedImage DecodeByProcess(const QString& program, CameraFormat format, const ReadTask& task) {
    task.RequireReadableWhole();
    const auto decoding = [&] {
        try {
            return std::make_unique<Decoding>(program, format, task);
        } catch (const platform::Error& error) {
            task.Fail(u"Der Leser für %1 lässt sich nicht starten: %2."_s.arg(NameOf(format),
                                                                              error.Text()));
        }
    }();
    return decoding->Run();
}

}  // namespace kadrona::imaging
