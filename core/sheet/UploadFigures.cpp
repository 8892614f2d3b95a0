#include "core/sheet/UploadFigures.h"

#include <QLocale>
#include <QStringList>

#include "core/settings/Settings.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

namespace {

QString PixelText(const UploadFigures& figures) {
    const auto pair = [](std::optional<int> width, std::optional<int> height) {
        const auto side = [](std::optional<int> length) {
            return length ? QString::number(*length) : u"beliebig"_s;
        };
        return width || height ? side(width) + u" x "_s + side(height) : QString();
    };
    const QString least = pair(figures.width.least, figures.height.least);
    const QString most = pair(figures.width.most, figures.height.most);
    if (least.isEmpty() && most.isEmpty()) {
        return {};
    }
    if (least == most) {
        return u"genau %1 Pixel"_s.arg(least);
    }
    return least.isEmpty()  ? u"höchstens %1 Pixel"_s.arg(most)
           : most.isEmpty() ? u"mindestens %1 Pixel"_s.arg(least)
                            : u"%1 bis %2 Pixel"_s.arg(least, most);
}

QString KilobyteText(const imaging::ByteRange& bytes) {
    const auto kilobytes = [](qint64 count) {
        return QLocale(QLocale::German).toString(count / BytesPerKilobyte);
    };
    const bool open = bytes.most == imaging::ByteRange::NoEnd;
    if (bytes.least <= 0) {
        return open ? QString() : u"höchstens %1 kB"_s.arg(kilobytes(bytes.most));
    }
    return open ? u"mindestens %1 kB"_s.arg(kilobytes(bytes.least))
                : u"%1 bis %2 kB"_s.arg(kilobytes(bytes.least), kilobytes(bytes.most));
}

std::optional<int> End(int number) {
    return number > 0 ? std::optional(number) : std::nullopt;
}

}  // namespace

imaging::ByteRange KilobyteRange(int least, int most) {
    imaging::ByteRange bytes;
    bytes.least = least * BytesPerKilobyte;
    if (most > 0) {
        bytes.most = most * BytesPerKilobyte;
    }
    return bytes;
}

UploadFigures OwnUploadFigures(const Settings& settings) {
    return {{End(settings.UploadWidthFrom()), End(settings.UploadWidthTo())},
            {End(settings.UploadHeightFrom()), End(settings.UploadHeightTo())},
            KilobyteRange(settings.UploadKilobytesFrom(), settings.UploadKilobytesTo()),
            {}};
}

QString CrossedRange(const UploadFigures& figures) {
    const auto crossed = [](const PixelRange& pixels) {
        return pixels.least && pixels.most && *pixels.least > *pixels.most;
    };
    return crossed(figures.width)                     ? u"Breite"_s
           : crossed(figures.height)                  ? u"Höhe"_s
           : figures.bytes.least > figures.bytes.most ? u"Größe"_s
                                                      : QString();
}

QString UploadFiguresText(const UploadFigures& figures) {
    QStringList parts{PixelText(figures), KilobyteText(figures.bytes)};
    parts.removeAll({});
    return parts.isEmpty() ? u"keine Vorgaben"_s : parts.join(u", "_s);
}

}  // namespace kadrona::core
