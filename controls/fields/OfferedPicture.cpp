#include "controls/fields/OfferedPicture.h"

#include <QBuffer>
#include <QImage>
#include <QMimeData>
#include <algorithm>

using namespace Qt::StringLiterals;

namespace kadrona::controls {

namespace {

/// The kind that says most of the picture; a program offers the same one in several.
QString BestFormat(const QMimeData& data) {
    const QStringList offered = data.formats();
    for (const QString& format :
         {u"image/jpeg"_s, u"image/heic"_s, u"image/heif"_s, u"image/avif"_s, u"image/webp"_s,
          u"image/jxl"_s, u"image/jp2"_s, u"image/png"_s, u"image/tiff"_s, u"image/bmp"_s,
          u"image/gif"_s}) {
        if (offered.contains(format)) {
            return format;
        }
    }
    return {};
}

/// A picture of this very program has no bytes yet. What others offer has, and the toolkit would
/// let any plug-in that claims them decode it.
bool HasOwnPicture(const QMimeData& data) {
    const QStringList offered = data.formats();
    return offered.contains(u"application/x-qt-image"_s) &&
           std::ranges::none_of(
               offered, [](const QString& format) { return format.startsWith(u"image/"_s); });
}

/// The first picture that a mail or a page carries in its own text (RFC 2397), or that is an
/// address of that kind itself. Whoever writes the text may be anyone: each letter is seen once.
QByteArray PictureInText(const QString& text) {
    const QString Start = u"data:image/"_s;
    const QString Coding = u";base64,"_s;
    constexpr int LongestKind = 40;
    for (qsizetype at = text.indexOf(Start); at >= 0; at = text.indexOf(Start, at + 1)) {
        QStringView before = QStringView(text).first(at);
        if (before.endsWith(u'"') || before.endsWith(u'\'')) {
            before.chop(1);
        }
        const qsizetype kind = at + Start.size();
        const qsizetype coding = QStringView(text).mid(kind, LongestKind).indexOf(Coding);
        if ((before.isEmpty() || before.endsWith(u"src="_s, Qt::CaseInsensitive)) && coding >= 0) {
            const qsizetype first = kind + coding + Coding.size();
            const auto* const end = std::find_if(
                text.cbegin() + first, text.cend(),
                [](QChar letter) { return letter == u'"' || letter == u'\'' || letter == u'>'; });
            return QByteArray::fromBase64(
                text.sliced(first, end - text.cbegin() - first).toLatin1());
        }
    }
    return {};
}

QByteArray PictureInTexts(const QMimeData& data) {
    const QByteArray picture = PictureInText(data.html());
    return picture.isEmpty()
               ? PictureInText(
                     QString::fromLatin1(data.data(u"text/uri-list"_s)).section(u'\n', 0, 0))
               : picture;
}

}  // namespace

bool HasPicture(const QMimeData& data) {
    return !BestFormat(data).isEmpty() || HasOwnPicture(data) || !PictureInTexts(data).isEmpty();
}

QByteArray PictureIn(const QMimeData& data) {
    if (const QString format = BestFormat(data); !format.isEmpty()) {
        return data.data(format);
    }
    if (!HasOwnPicture(data)) {
        return PictureInTexts(data);
    }
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    qvariant_cast<QImage>(data.imageData()).save(&buffer, "png");
    return buffer.data();
}

}  // namespace kadrona::controls
