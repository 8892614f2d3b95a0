// Any bytes as a curve preset: it is read or refused by its own error. What was read gives tables
// and, where it fits into a preset, is the same after it was written and read again.
#include <QFile>
#include <QTemporaryDir>
#include <cstdlib>

#include "imaging/tone/CurveFile.h"

using namespace Qt::StringLiterals;
using namespace kadrona::imaging;

namespace {

void Require(bool condition) {
    if (!condition) {
        std::abort();
    }
}

void CheckCurve(const Curve& curve) {
    const LevelTable table = curve.Table();
    Require(curve.Points().size() >= 2);
    for (const CurvePoint& point : curve.Points()) {
        Require(table.at(static_cast<size_t>(point.input)) == point.output);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const QTemporaryDir folder(u"/dev/shm/curve_fuzzer-XXXXXX"_s);
    const QString path = folder.filePath(u"a.acv"_s);
    QFile file(path);
    Require(file.open(QIODevice::WriteOnly));
    file.write(reinterpret_cast<const char*>(data), static_cast<qint64>(size));
    file.close();
    CurveSet curves;
    try {
        curves = ReadCurveFile(path);
    } catch (const CurveFileError&) {
        return 0;
    }
    for (const Curve& curve : curves.curves) {
        CheckCurve(curve);
    }
    if (curves.PointCount() <= MaximumCurvePoints) {
        WriteCurveFile(path, curves);
        Require(ReadCurveFile(path) == curves);
    }
    return 0;
}
