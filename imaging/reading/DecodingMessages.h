#pragma once

#include <QByteArray>
#include <QSize>
#include <QString>
#include <optional>
#include <variant>

#include "imaging/reading/CamerasPart.h"

namespace kadrona::imaging {

/// What the process that decodes a file is asked for. The memory that it is given has the file,
/// room for a preview and room for the picture, in this order.
struct DecodingRequest {
    enum Memory { File, Preview, Picture };
    /// 25 megapixels: as previews of raw files are shrunk, more than any takes.
    static constexpr qint64 MostPreviewBytes = 100'000'000;

    CameraFormat format = CameraFormat::Heif;
    /// Of the file, for texts.
    QString name;
    qint64 fileBytes = 0;
    /// All but its progress.
    ReadOptions options;
    /// Whoever asks shows progress.
    bool tellsProgress = false;
};

/// What it says meanwhile and in the end.
namespace decoding {

/// The header is read: so many pixels.
struct Expectation {
    qint64 pixels = 0;
};
/// It is going to take long. The preview is in its memory, four bytes a pixel
/// (QImage::Format_RGB32); 0 by 0 where there is none.
struct Beginning {
    QSize preview;
};
/// So much is done, 0 to 1.
struct Progress {
    double part = 0;
};
/// The text of a ReadError.
struct Failure {
    QString text;
    bool isTooLong = false;  ///< as ReadTooLong
};
/// The picture's memory has its pixels, 32 bits each, and behind them the profile.
struct Picture {
    QSize size;
    /// QImage::Format_ARGB32 and not QImage::Format_RGB32.
    bool hasAlpha = false;
    ColourModel model = ColourModel::Rgb;
    qint64 profileBytes = 0;
    Orientation orientation = Orientation::Upright;
    DotsPerInch resolution;
};

}  // namespace decoding

using DecodingMessage = std::variant<decoding::Expectation, decoding::Beginning, decoding::Progress,
                                     decoding::Failure, decoding::Picture>;

QByteArray Packed(const DecodingRequest& request);
QByteArray Packed(const DecodingMessage& message);

/// Nothing where the bytes are no request.
std::optional<DecodingRequest> DecodingRequestFrom(const QByteArray& bytes);

/// What a process says that may have been taken over by the file that it decodes: nothing where it
/// makes no sense. A picture or preview that is returned has sides of at least 1 whose bytes can be
/// counted, a profile of at most 16 MiB and sensible values; whether its memory agrees and it is
/// not too large is for the receiver to see. Texts are one harmless line of at most 1000
/// characters.
std::optional<DecodingMessage> DecodingMessageFrom(const QByteArray& bytes);

}  // namespace kadrona::imaging
