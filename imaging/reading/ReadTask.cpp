#include "imaging/reading/ReadTask.h"

#include <QLocale>
#include <algorithm>
#include <cmath>

#include "imaging/pixels/NewImage.h"

using namespace Qt::StringLiterals;

namespace kadrona::imaging {

void ReadTask::Fail(const QString& reason) const {
    throw ReadError(ReadErrorText(name_, reason));
}

void ReadTask::FailAsTooLong() const {
    throw ReadTooLong(ReadErrorText(name_, u"Es dauert zu lange."_s));
}

void ReadTask::RequireAllowedSize(qint64 width, qint64 height, qint64 most) const {
    constexpr qint64 Mega = 1'000'000;
    if (width <= 0 || height <= 0) {
        Fail(u"Das Bild hat keine Pixel."_s);
    }
    const QLocale german(QLocale::German);
    if (const qint64 side = std::max(width, height); side > LongestSide) {
        Fail(u"Das Bild ist auf einer Seite %1 Pixel lang; es werden höchstens %2 unterstützt."_s
                 .arg(german.toString(side), german.toString(LongestSide)));
    }
    const qint64 allowed = std::max(options_.maximumPixels, most);
    if (width <= allowed / height) {
        if (host_ != nullptr) {
            host_->Expect(width * height);
        }
        return;
    }
    // Rounded away from each other, so that the text never says "200 of 200".
    const auto megapixels = static_cast<qint64>(std::ceil(double(width) * double(height) / Mega));
    const QString text =
        u"Das Bild „%1“ hat %2 Megapixel; es werden höchstens %3 Megapixel unterstützt."_s.arg(
            name_, german.toString(megapixels), german.toString(allowed / Mega));
    if (options_.patienceMilliseconds > 0) {
        throw ReadTooLong(text);
    }
    throw ReadError(text);
}

void ReadTask::RequireMemoryBeside(qint64 bytes, qint64 most) const {
    if (bytes > most) {
        Fail(TooMuchMemoryReason());
    }
    if (host_ != nullptr) {
        host_->ExpectBeside(bytes, most);
    }
}

qint64 ReadTask::RequireReadableWhole() const {
    constexpr qint64 MaximumSize = 200'000'000;
    if (device_.size() > MaximumSize) {
        Fail(TooLargeFileReason(MaximumSize));
    }
    return device_.size();
}

QByteArray ReadTask::ReadWhole() const {
    RequireReadableWhole();
    if (host_ != nullptr) {
        return host_->File();
    }
    device_.seek(0);
    return device_.readAll();
}

void ReadTask::LetFileGo() const {
    if (host_ != nullptr) {
        host_->LetFileGo();
    }
}

QImage ReadTask::NewPicture(QSize size, QImage::Format format) const {
    return host_ != nullptr ? host_->NewPicture(size, format) : NewImage(size, format);
}

QString IncompleteFileReason() {
    return u"Die Datei ist unvollständig."_s;
}

QString DamagedFileReason() {
    return u"Die Datei ist beschädigt."_s;
}

QString DamagedOrIncompleteFileReason() {
    return u"Die Datei ist beschädigt oder unvollständig."_s;
}

QString TooLargeFileReason(qint64 most) {
    constexpr qint64 Megabyte = 1'000'000;
    return u"Sie ist zu groß; es werden höchstens %1 MB gelesen."_s.arg(most / Megabyte);
}

QString OutOfMemoryReason() {
    return u"Der Arbeitsspeicher reicht nicht aus."_s;
}

QString TooMuchMemoryReason() {
    return u"Das Bild braucht in diesem Format zu viel Arbeitsspeicher."_s;
}

QString ReadErrorText(const QString& name, const QString& reason) {
    return u"Die Datei „%1“ konnte nicht gelesen werden: %2"_s.arg(name, reason);
}

}  // namespace kadrona::imaging
