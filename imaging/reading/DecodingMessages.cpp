#include "imaging/reading/DecodingMessages.h"

#include <QDataStream>
#include <algorithm>
#include <cmath>

#include "platform/HarmlessText.h"

namespace kadrona::imaging {

namespace {

/// A program and a decoder of different versions do not understand each other.
constexpr quint32 Mark = 0x4b443032;
constexpr auto Version = QDataStream::Qt_6_0;

template <typename Fill>
QByteArray Written(Fill fill) {
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setVersion(Version);
    stream << Mark;
    fill(stream);
    return bytes;
}

QDataStream& operator<<(QDataStream& stream, const decoding::Expectation& said) {
    return stream << said.pixels;
}
QDataStream& operator<<(QDataStream& stream, const decoding::Beginning& said) {
    return stream << said.preview;
}
QDataStream& operator<<(QDataStream& stream, const decoding::Progress& said) {
    return stream << said.part;
}
QDataStream& operator<<(QDataStream& stream, const decoding::Failure& said) {
    return stream << said.text << said.isTooLong;
}
QDataStream& operator<<(QDataStream& stream, const decoding::Picture& said) {
    return stream << said.size << said.hasAlpha << static_cast<qint32>(said.model)
                  << said.profileBytes << static_cast<qint32>(said.orientation)
                  << said.resolution.value;
}

bool Read(QDataStream& stream, decoding::Expectation& said) {
    stream >> said.pixels;
    return said.pixels >= 0;
}

/// 32 bits a pixel.
bool IsCountable(QSize size) {
    constexpr qint64 MostPixels = qint64{1} << 40;
    constexpr int LongestSide = 1 << 29;
    return size.width() > 0 && size.height() > 0 && size.width() <= LongestSide &&
           size.height() <= MostPixels / size.width();
}

bool Read(QDataStream& stream, decoding::Beginning& said) {
    stream >> said.preview;
    return said.preview == QSize(0, 0) || IsCountable(said.preview);
}

bool Read(QDataStream& stream, decoding::Progress& said) {
    stream >> said.part;
    return std::isfinite(said.part) && said.part >= 0 && said.part <= 1;
}

bool Read(QDataStream& stream, decoding::Failure& said) {
    constexpr qsizetype Longest = 1000;
    stream >> said.text >> said.isTooLong;
    said.text = platform::HarmlessLine(said.text.left(Longest));
    return !said.text.isEmpty();
}

bool Read(QDataStream& stream, decoding::Picture& said) {
    constexpr qint64 LargestProfile = 1 << 24;
    qint32 model = 0;
    qint32 orientation = 0;
    stream >> said.size >> said.hasAlpha >> model >> said.profileBytes >> orientation >>
        said.resolution.value;
    said.model = static_cast<ColourModel>(model);
    said.orientation = OrientationFrom(orientation);
    said.resolution = ResolutionFrom(said.resolution.value);
    return IsCountable(said.size) && model >= static_cast<qint32>(ColourModel::Rgb) &&
           model <= static_cast<qint32>(ColourModel::InvertedCmyk) && said.profileBytes >= 0 &&
           said.profileBytes <= LargestProfile;
}

/// The kind number `index` of DecodingMessage, and of those behind it.
template <size_t index = 0>
std::optional<DecodingMessage> MessageOfKind(quint8 kind, QDataStream& stream) {
    if constexpr (index < std::variant_size_v<DecodingMessage>) {
        if (kind != index) {
            return MessageOfKind<index + 1>(kind, stream);
        }
        std::variant_alternative_t<index, DecodingMessage> said;
        if (Read(stream, said)) {
            return said;
        }
    }
    return {};
}

bool IsReadWhole(const QDataStream& stream) {
    return stream.status() == QDataStream::Ok && stream.atEnd();
}

}  // namespace

QByteArray Packed(const DecodingRequest& request) {
    return Written([&request](QDataStream& stream) {
        stream << static_cast<qint32>(request.format) << request.name << request.fileBytes
               << request.options.applyOrientation << request.options.maximumPixels
               << request.options.maximumShrunkPixels << request.options.shrink
               << request.options.patienceMilliseconds << request.tellsProgress;
    });
}

QByteArray Packed(const DecodingMessage& message) {
    return Written([&message](QDataStream& stream) {
        stream << static_cast<quint8>(message.index());
        std::visit([&stream](const auto& said) { stream << said; }, message);
    });
}

std::optional<DecodingRequest> DecodingRequestFrom(const QByteArray& bytes) {
    QDataStream stream(bytes);
    stream.setVersion(Version);
    quint32 mark = 0;
    qint32 format = 0;
    DecodingRequest request;
    stream >> mark >> format >> request.name >> request.fileBytes >>
        request.options.applyOrientation >> request.options.maximumPixels >>
        request.options.maximumShrunkPixels >> request.options.shrink >>
        request.options.patienceMilliseconds >> request.tellsProgress;
    request.format = static_cast<CameraFormat>(format);
    return mark == Mark && IsReadWhole(stream) ? std::optional(request) : std::nullopt;
}

std::optional<DecodingMessage> DecodingMessageFrom(const QByteArray& bytes) {
    QDataStream stream(bytes);
    stream.setVersion(Version);
    quint32 mark = 0;
    quint8 kind = 0;
    stream >> mark >> kind;
    std::optional<DecodingMessage> message;
    if (mark == Mark) {
        message = MessageOfKind(kind, stream);
    }
    return IsReadWhole(stream) ? message : std::nullopt;
}

}  // namespace kadrona::imaging
