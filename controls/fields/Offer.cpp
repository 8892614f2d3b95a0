#include "controls/fields/Offer.h"

#include <QBuffer>
#include <QElapsedTimer>
#include <QImage>
#include <QMimeData>
#include <QUrl>
#include <algorithm>
#include <functional>

using namespace Qt::StringLiterals;

namespace kadrona::controls {

namespace {

/// A path of the system has 4096 bytes, each of which an address may write as three.
constexpr qsizetype LongestAddress = 3 * 4096 + 100;

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
    constexpr qsizetype LongestText = 100'000'000;
    if (text.size() > LongestText) {
        return {};
    }
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

/// Not all at once as the toolkit does it: a million addresses take it seconds and half a gigabyte.
QStringList LocalFilesOf(const QByteArray& addresses) {
    QStringList files;
    for (qsizetype at = 0; at < addresses.size() && files.size() < MostOfferedFiles;) {
        const qsizetype end = addresses.indexOf('\n', at);
        const qsizetype length = (end < 0 ? addresses.size() : end) - at;
        if (const QByteArray line = addresses.sliced(at, length).trimmed();
            line.size() <= LongestAddress) {
            if (const QUrl url = QUrl::fromEncoded(line); url.isLocalFile()) {
                files.append(url.toLocalFile());
            }
        }
        at += length + 1;
    }
    return files;
}

/// Asks one question of whoever offers, unless he has left one without an answer before.
template <typename Answer>
Answer Ask(Offer& offer, const std::function<Answer()>& question) {
    constexpr qint64 Patience = 3000;  // milliseconds, less than the toolkit's
    if (offer.isSilent) {
        return {};
    }
    QElapsedTimer asked;
    asked.start();
    Answer answer = question();
    offer.isSilent = answer.isEmpty() && asked.elapsed() > Patience;
    return answer;
}

}  // namespace

Offer ReadOffer(const QMimeData& data) {
    Offer offer;
    const auto addresses = Ask<QByteArray>(offer, [&] { return data.data(u"text/uri-list"_s); });
    offer.files = LocalFilesOf(addresses);
    if (!offer.files.isEmpty()) {
        return offer;
    }
    if (!BestFormat(data).isEmpty() || HasOwnPicture(data)) {
        offer.hasPicture = !offer.isSilent;
        return offer;
    }
    offer.pictureInText = PictureInText(Ask<QString>(offer, [&] { return data.html(); }));
    if (offer.pictureInText.isEmpty()) {
        const qsizetype line = addresses.indexOf('\n');
        offer.pictureInText =
            PictureInText(QString::fromLatin1(line < 0 ? addresses : addresses.first(line)));
    }
    offer.hasPicture = !offer.pictureInText.isEmpty();
    return offer;
}

QByteArray PictureIn(const Offer& offer, const QMimeData& data) {
    if (!offer.pictureInText.isEmpty() || !offer.hasPicture) {
        return offer.pictureInText;
    }
    if (const QString format = BestFormat(data); !format.isEmpty()) {
        return data.data(format);
    }
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    qvariant_cast<QImage>(data.imageData()).save(&buffer, "png");
    return buffer.data();
}

}  // namespace kadrona::controls
