#include "imaging/tone/CurveFile.h"

#include <QtEndian>

#include "platform/AtomicFile.h"
#include "platform/ByteReader.h"

using namespace Qt::StringLiterals;

namespace kadrona::imaging {

namespace {

using Word = quint16;

constexpr Word WrittenVersion = 4;
constexpr Word OlderVersion = 1;
constexpr Word WrittenCurveCount = 5;
/// A curve has one output for each input level.
constexpr Word MostPointsOfCurve = 256;
/// Far more than any preset takes.
constexpr qint64 LargestFile = qint64{64} * 1024;

[[noreturn]] void ThrowDamaged(const QString& path, const QString& reason) {
    throw CurveFileError(
        u"Die Kurvenvorlage „%1“ konnte nicht gelesen werden: %2."_s.arg(path, reason));
}

[[noreturn]] void ThrowTooManyPoints(const QString& path, int count) {
    const int excess = count - MaximumCurvePoints;
    const QString removal = excess == 1 ? u"einen Punkt"_s : u"%1 Punkte"_s.arg(excess);
    throw CurveFileError(
        u"Die Kurvenvorlage „%1“ konnte nicht gespeichert werden: Die Kurven haben zusammen %2 "
        "Punkte, in eine Vorlage passen höchstens %3. Bitte entfernen Sie mindestens %4 und "
        "speichern Sie noch einmal."_s.arg(path, QString::number(count),
                                           QString::number(MaximumCurvePoints), removal));
}

/// The stored words of one preset file. Throws platform::OutOfBytes where they end early.
class CurveReader {
 public:
    CurveReader(QString path, QByteArrayView bytes)
        : path_(std::move(path)), reader_(bytes, platform::ByteOrder::BigEndian) {}

    CurveSet Read() {
        const Word version = reader_.Read<Word>();
        if (version != WrittenVersion && version != OlderVersion) {
            ThrowDamaged(path_, u"Sie ist keine Kurvenvorlage der Version 1 oder 4"_s);
        }
        const Word count = reader_.Read<Word>();
        if (count == 0) {
            ThrowDamaged(path_, u"Sie enthält keine Kurve"_s);
        }
        CurveSet set;
        for (size_t i = 0; i < count; ++i) {
            // Curves beyond those of red, green and blue are of other colour models, but the file
            // is whole only with them.
            Curve curve(ReadPoints());
            if (i < set.curves.size()) {
                set.curves[i] = std::move(curve);
            }
        }
        return set;
    }

 private:
    std::vector<CurvePoint> ReadPoints() {
        const Word count = reader_.Read<Word>();
        if (count > MostPointsOfCurve) {
            ThrowDamaged(path_, u"Eine Kurve hätte %1 Punkte"_s.arg(count));
        }
        std::vector<CurvePoint> points;
        for (Word i = 0; i < count; ++i) {
            const Word output = reader_.Read<Word>();
            const Word input = reader_.Read<Word>();
            if (output > HighestCurveLevel || input > HighestCurveLevel) {
                ThrowDamaged(
                    path_,
                    u"Der Punkt %1, %2 liegt außerhalb von 0 bis 255"_s.arg(input).arg(output));
            }
            points.push_back({input, output});
        }
        return points;
    }

    QString path_;
    platform::ByteReader reader_;
};

void Append(int value, QByteArray& bytes) {
    const Word word = qToBigEndian(static_cast<Word>(value));
    bytes.append(reinterpret_cast<const char*>(&word), sizeof word);
}

void Append(const Curve& curve, QByteArray& bytes) {
    Append(static_cast<int>(curve.Points().size()), bytes);
    for (const CurvePoint& point : curve.Points()) {
        Append(point.output, bytes);
        Append(point.input, bytes);
    }
}

}  // namespace

CurveSet ReadCurveFile(const QString& path) {
    try {
        const QByteArray bytes = platform::ReadWholeFile(path, LargestFile, platform::Links::Own);
        return CurveReader(path, bytes).Read();
    } catch (const platform::OutOfBytes&) {
        ThrowDamaged(path, u"Die Datei ist unvollständig"_s);
    } catch (const CurveFileError&) {
        throw;
    } catch (const platform::FileError& error) {
        throw CurveFileError(error.Text());
    }
}

void WriteCurveFile(const QString& path, const CurveSet& curves) {
    const int count = curves.PointCount();
    if (count > MaximumCurvePoints) {
        ThrowTooManyPoints(path, count);
    }
    QByteArray bytes;
    Append(WrittenVersion, bytes);
    Append(WrittenCurveCount, bytes);
    for (const Curve& curve : curves.curves) {
        Append(curve, bytes);
    }
    Append(Curve(), bytes);
    try {
        platform::WriteFileAtomically(path, bytes, platform::Links::Own);
    } catch (const platform::FileError& error) {
        throw CurveFileError(error.Text());
    }
}

}  // namespace kadrona::imaging
