#include "imaging/writing/FormatWriting.h"

#include <QColorSpace>
#include <cmath>
#include <new>

#include "platform/Error.h"

using namespace Qt::StringLiterals;

namespace kadrona::imaging {

bool CodecTarget::Write(const void* bytes, qint64 count) {
    if (device.write(static_cast<const char*>(bytes), count) == count) {
        return true;
    }
    KeepReason(FailureOf(device));
    return false;
}

void CodecTarget::KeepReason(const QString& failure) {
    if (reason.isEmpty()) {
        reason = failure;
    }
}

void CodecTarget::KeepMessage(const QString& library, const QString& message) {
    outOfMemory = outOfMemory || message.contains(u"memory"_s, Qt::CaseInsensitive) ||
                  message.contains(u"no space for"_s, Qt::CaseInsensitive);
    KeepReason(u"Das %1-Verfahren meldet „%2“."_s.arg(library, message.trimmed()));
}

void CodecTarget::Fail() const {
    if (outOfMemory || reason.isEmpty()) {
        throw std::bad_alloc();
    }
    throw platform::Error(reason);
}

void WriteBytes(QIODevice& device, const void* bytes, qint64 count) {
    if (device.write(static_cast<const char*>(bytes), count) != count) {
        throw platform::Error(FailureOf(device));
    }
}

QString FailureOf(const QIODevice& device) {
    return device.errorString() + u'.';
}

int DotsPerMetre(DotsPerInch resolution) {
    constexpr double InchesPerMetre = 1 / 0.0254;
    return static_cast<int>(std::lround(resolution.value * InchesPerMetre));
}

QByteArray SrgbProfile() {
    return QColorSpace(QColorSpace::SRgb).iccProfile();
}

}  // namespace kadrona::imaging
