#include "imaging/reading/decoder/DecodingHost.h"

#include <QThread>
#include <algorithm>
#include <new>

#include "imaging/pixels/NewImage.h"
#include "imaging/reading/SharedPicture.h"
#include "platform/HelperProcess.h"
#include "platform/confinement/Confinement.h"

namespace kadrona::imaging {

namespace {

constexpr int HandleOf(DecodingRequest::Memory memory) {
    return platform::HelperProcess::FirstMemory + memory;
}

void Tell(const DecodingMessage& message) {
    platform::TellStarter(Packed(message));
}

QImage ImageIn(const platform::SharedMemory& memory, QSize size, QImage::Format format) {
    auto view = memory.Resize(SharedPictureBytes(size));
    if (!view) {
        ThrowOutOfMemory();
    }
    return SharedPicture(std::move(view), size, format);
}

void CopyPixels(const QImage& from, QImage& to) {
    for (int y = 0; y < from.height(); ++y) {
        std::copy_n(from.constScanLine(y), to.bytesPerLine(), to.scanLine(y));
    }
}

}  // namespace

DecodingHost::DecodingHost(DecodingRequest request)
    : request_(std::move(request)),
      file_(HandleOf(DecodingRequest::File)),
      preview_(HandleOf(DecodingRequest::Preview)),
      picture_(HandleOf(DecodingRequest::Picture)),
      // With the byte behind it.
      fileView_(file_.Resize(request_.fileBytes + 1)),
      bytesBeside_(request_.fileBytes) {
    request_.options.progress = request_.tellsProgress ? this : nullptr;
}

QByteArray DecodingHost::File() const {
    return QByteArray::fromRawData(reinterpret_cast<const char*>(fileView_->Bytes()),
                                   request_.fileBytes);
}

void DecodingHost::LetFileGo() {
    fileView_.reset();
    file_.Resize(0);
}

QImage DecodingHost::NewPicture(QSize size, QImage::Format format) {
    pixels_ = std::max(pixels_, qint64{size.width()} * size.height());
    Bound();
    QImage picture = ImageIn(picture_, size, format);
    inPlace_ = picture.constBits();
    return picture;
}

void DecodingHost::Expect(qint64 pixels) {
    pixels_ = pixels;
    Bound();
    Tell(decoding::Expectation{pixels});
}

void DecodingHost::ExpectBeside(qint64 bytes, qint64 most) {
    bytesBeside_ = bytes;
    reservesMuch_ = most >= MostBytesBesideOfCameras;
    Bound();
}

/// A file may be another thing than its header says, but never larger.
void DecodingHost::Bound() const {
    /// What heaps reserve, and each thread: address space alone, as a rule. The decoders of
    /// cameras' formats reserve pictures that they do not touch, too.
    const qint64 reserved = reservesMuch_ ? bytesBeside_ + 200'000'000 : 100'000'000;
    constexpr qint64 BytesAThread = 10'000'000;
    /// With what the process has from its beginning, and the program itself, 300 million.
    constexpr qint64 Least = 200'000'000;
    platform::BoundMemory(4 * pixels_ + std::max(bytesBeside_ + reserved, Least) +
                          QThread::idealThreadCount() * BytesAThread);
}

void DecodingHost::Begin(const Pixels& preview) {
    const bool hasRoom = SharedPictureBytes(preview.Size()) <= DecodingRequest::MostPreviewBytes;
    if (hasRoom && !preview.IsEmpty()) {
        QImage shown = ImageIn(preview_, preview.Size(), QImage::Format_RGB32);
        CopyPixels(preview.ToImage(), shown);
    }
    Tell(decoding::Beginning{hasRoom ? preview.Size() : QSize(0, 0)});
}

/// Who gives it up ends the process.
bool DecodingHost::GoOn(double part) {
    Tell(decoding::Progress{part});
    return true;
}

void DecodingHost::Answer(decltype(kadrona_decode_camera_file)& decode) {
    QByteArray bytes = fileView_ ? File() : QByteArray();
    QBuffer device(&bytes);
    device.open(QIODevice::ReadOnly);
    const ReadTask task(device, request_.name, request_.options, this);
    const auto failAsOutOfMemory = [&] {
        Tell(decoding::Failure{ReadErrorText(request_.name, OutOfMemoryReason())});
    };
    try {
        if (!fileView_) {
            throw std::bad_alloc();
        }
        Bound();  // the header itself may hold more than any picture needs
        DecodedImage decoded;
        decode(request_.format, task, decoded);
        Give(std::move(decoded));
    } catch (const ReadTooLong& error) {
        Tell(decoding::Failure{error.Text(), true});
    } catch (const ReadError& error) {
        Tell(decoding::Failure{error.Text()});
    } catch (const platform::Error&) {  // a picture that does not fit into memory
        failAsOutOfMemory();
    } catch (const std::bad_alloc&) {
        failAsOutOfMemory();
    }
}

/// The picture is in its place already where its reader had asked for it.
void DecodingHost::Give(DecodedImage decoded) {
    const QSize size = decoded.image.size();
    const qint64 pixelBytes = SharedPictureBytes(size);
    const bool hasAlpha = decoded.image.hasAlphaChannel();
    if (decoded.image.constBits() == inPlace_) {
        decoded.image = {};  // not twice in the address space, which has a limit
    } else {
        QImage shown =
            ImageIn(picture_, size, hasAlpha ? QImage::Format_ARGB32 : QImage::Format_RGB32);
        decoded.image.convertTo(shown.format());
        CopyPixels(RequireAllocated(std::move(decoded.image)), shown);
    }
    const auto view = picture_.Resize(pixelBytes + decoded.profile.size());
    if (!view) {
        ThrowOutOfMemory();
    }
    std::copy(decoded.profile.begin(), decoded.profile.end(), view->Bytes() + pixelBytes);
    Tell(decoding::Picture{.size = size,
                           .hasAlpha = hasAlpha,
                           .model = decoded.model,
                           .profileBytes = decoded.profile.size(),
                           .orientation = decoded.metadata.orientation,
                           .resolution = decoded.metadata.resolution});
}

}  // namespace kadrona::imaging
