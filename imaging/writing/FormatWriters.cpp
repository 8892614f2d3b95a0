#include "imaging/writing/FormatWriters.h"

#include <QColorSpace>
#include <cmath>

#include "platform/Error.h"

namespace kadrona::imaging {

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
