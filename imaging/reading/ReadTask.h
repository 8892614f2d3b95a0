#pragma once

#include <QIODevice>
#include <QImage>
#include <QString>

#include "imaging/metadata/FileMetadata.h"
#include "imaging/reading/ColourConversion.h"
#include "imaging/reading/ReadError.h"

namespace kadrona::imaging {

/// What the reader of one format hands back: the pixels as stored and what has yet to be done to
/// them.
struct DecodedImage {
    /// 32 bits a pixel, or 64 bits a pixel (QImage::Format_RGBA64, only with ColourModel::Rgb or
    /// Grey). With a CMYK model the 32 bits are the four inks, in this order.
    QImage image;
    ColourModel model = ColourModel::Rgb;
    /// The embedded ICC profile as found; empty where there is none.
    QByteArray profile;
    FileMetadata metadata;
};

/// In pixels. Drawing takes memory for each row and column of a picture, however narrow it is.
inline constexpr qint64 LongestSide = 100'000;

/// What reading may take beside four bytes a pixel of the picture: 300 million bytes, less what the
/// program itself takes with its window.
inline constexpr qint64 MostBytesBeside = 240'000'000;

/// The same for what telephones and cameras write, whose libraries take more for each pixel: to
/// open a customer's photo of 50 megapixels weighs more than the memory.
inline constexpr qint64 MostBytesBesideOfCameras = 800'000'000;

/// For a decoder that runs in a process of its own: where its bytes come from and its picture goes.
class DecoderHost {
 public:
    virtual ~DecoderHost() = default;
    /// The whole file, which is in memory already.
    virtual QByteArray File() const = 0;
    /// Nobody needs these bytes any more, nor the device.
    virtual void LetFileGo() = 0;
    /// An image for the picture itself, of 32 bits a pixel. Throws platform::Error where memory is
    /// short.
    virtual QImage NewPicture(QSize size, QImage::Format format) = 0;
    /// The picture is going to have so many pixels.
    virtual void Expect(qint64 pixels) = 0;
    /// Reading takes at most so many bytes beside four for each of them, where its format might
    /// take `most`. Throws std::bad_alloc where it has taken more already.
    virtual void ExpectBeside(qint64 bytes, qint64 most) = 0;
};

/// The reading of one file: where its bytes come from, what is allowed and how to complain. Does
/// not own what it refers to. The device is open, random access, and at its start.
class ReadTask {
 public:
    ReadTask(QIODevice& device, QString name, const ReadOptions& options,
             DecoderHost* host = nullptr)
        : device_(device), name_(std::move(name)), options_(options), host_(host) {}

    QIODevice& Device() const { return device_; }
    const QString& Name() const { return name_; }
    qint64 MaximumPixels() const { return options_.maximumPixels; }
    int Shrink() const { return options_.shrink; }
    const ReadOptions& Options() const { return options_; }

    /// The same task for a picture that lies inside the file, as `device`.
    ReadTask Within(QIODevice& device) const { return Within(device, options_); }
    /// With other options, which outlive it.
    ReadTask Within(QIODevice& device, const ReadOptions& options) const {
        return {device, name_, options};
    }

    /// Throws the ReadError that names the file and `reason`, a German sentence.
    [[noreturn]] void Fail(const QString& reason) const;

    /// Throws the ReadTooLong that names the file.
    [[noreturn]] void FailAsTooLong() const;

    /// The whole file, from its start. Throws as RequireReadableWhole().
    QByteArray ReadWhole() const;
    /// What ReadWhole() gave is not needed any more, and nothing else is read.
    void LetFileGo() const;
    /// The size of the file in bytes. Throws a ReadError where it is larger than any picture of a
    /// format that is read as a whole.
    qint64 RequireReadableWhole() const;

    /// An image with undefined content for the picture. Throws platform::Error where memory is
    /// short.
    QImage NewPicture(QSize size, QImage::Format format) const;

    /// Throws a ReadError where a picture of that size is empty, has a side longer than
    /// LongestSide, or more than `most` pixels, or than maximumPixels where that is more.
    void RequireAllowedSize(qint64 width, qint64 height, qint64 most = 0) const;

    /// Throws a ReadError where reading would take so many bytes beside the picture's 32 bits a
    /// pixel, the file itself included where it is kept meanwhile. A decoder in a process of its
    /// own gets hardly more from then on.
    void RequireMemoryBeside(qint64 bytes, qint64 most = MostBytesBeside) const;

 private:
    QIODevice& device_;
    QString name_;
    const ReadOptions& options_;
    DecoderHost* host_;
};

/// Reasons that several formats share.
QString IncompleteFileReason();
QString DamagedFileReason();
QString DamagedOrIncompleteFileReason();
/// `most` in bytes.
QString TooLargeFileReason(qint64 most);
QString OutOfMemoryReason();
/// A picture that would take far more memory than its pixels.
QString TooMuchMemoryReason();

/// The text of a ReadError: which file, and why.
QString ReadErrorText(const QString& name, const QString& reason);

}  // namespace kadrona::imaging
