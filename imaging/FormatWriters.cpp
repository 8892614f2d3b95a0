#include "imaging/FormatWriters.h"

#include <QColorSpace>
#include <QFileDevice>
#include <cmath>

#include "platform/Error.h"
#include "platform/SystemReason.h"

namespace kadrona::imaging {

void WriteBytes(QIODevice& device, const void* bytes, qint64 count) {
    if (device.write(static_cast<const char*>(bytes), count) != count) {
        throw platform::Error(FailureOf(device));
    }
}

QString FailureOf(QIODevice& device) {
    auto* file = qobject_cast<QFileDevice*>(&device);
    if (!file) {
        return device.errorString();
    }
    // A write that the system cut short names no reason; the one that tries the rest does.
    file->flush();
    return platform::SystemReason(*file) + u'.';
}

int DotsPerMetre(DotsPerInch resolution) {
    constexpr double InchesPerMetre = 1 / 0.0254;
    return static_cast<int>(std::lround(resolution.value * InchesPerMetre));
}

QByteArray SrgbProfile() {
    return QColorSpace(QColorSpace::SRgb).iccProfile();
}

}  // namespace kadrona::imaging
