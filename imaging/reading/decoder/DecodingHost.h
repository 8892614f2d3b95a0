#pragma once

#include <QBuffer>
#include <memory>

#include "imaging/reading/DecodingMessages.h"
#include "imaging/reading/ReadProgress.h"
#include "platform/SharedMemory.h"

namespace kadrona::imaging {

/// The side of DecodingProcess that decodes: answers the request that this process was started for,
/// with the memory that it was given.
class DecodingHost : public DecoderHost, public ReadProgress {
 public:
    explicit DecodingHost(DecodingRequest request);

    /// `decode` is the function of the part. Tells the starter what came of it.
    void Answer(decltype(kadrona_decode_camera_file)& decode);

    QByteArray File() const override;
    void LetFileGo() override;
    QImage NewPicture(QSize size, QImage::Format format) override;
    void Expect(qint64 pixels) override;
    void ExpectBeside(qint64 bytes, qint64 most) override;
    void Begin(const Pixels& preview) override;
    bool GoOn(double part) override;

 private:
    void Bound() const;
    void Give(DecodedImage decoded);

    DecodingRequest request_;
    platform::SharedMemory file_;
    platform::SharedMemory preview_;
    platform::SharedMemory picture_;
    std::unique_ptr<platform::SharedMemory::View> fileView_;
    /// Of the picture, as far as it is known.
    qint64 pixels_ = 0;
    /// What its reader says that it takes; before, the file.
    qint64 bytesBeside_;
    /// Its library works in several threads, each with a heap.
    bool reservesMuch_ = false;
    /// Of the image that stands in picture_; null while there is none.
    const uchar* inPlace_ = nullptr;
};

}  // namespace kadrona::imaging
