#include "printing/Calibration.h"

#include <QLocale>
#include <cmath>

#include "platform/IniFile.h"
#include "platform/Paths.h"
#include "printing/PrinterLayer.h"
#include "printing/RulerSheet.h"

using namespace Qt::StringLiterals;

namespace kadrona::printing {

namespace {

/// No printer that prints photos at all is further off.
constexpr double MostScaleError = 0.1;
constexpr double MostOffset = 20;

/// One of the readings and what it must be near.
struct Expected {
    const RulerReadings& readings;
    double RulerReadings::*reading;
    double nominal;

    double Measured() const { return readings.*reading; }
    void RequireNumber(const QString& name) const {
        if (!std::isfinite(Measured())) {
            throw ReadingError(u"%1 fehlt oder ist keine Zahl."_s.arg(name), reading);
        }
    }
};

void RequireLength(const QString& line, const Expected& expected) {
    expected.RequireNumber(u"Das Maß von Linie %1"_s.arg(line));
    if (std::abs(expected.Measured() - expected.nominal) > expected.nominal * MostScaleError) {
        const QLocale german(QLocale::German);
        throw ReadingError(
            u"Das Maß von Linie %1 kann nicht stimmen: Sie ist auf dem Blatt %2 mm lang, gemessen wären %3 mm."_s
                .arg(line, german.toString(expected.nominal), german.toString(expected.Measured())),
            expected.reading);
    }
}

void RequirePlace(const QString& edge, const Expected& expected) {
    expected.RequireNumber(u"Der Abstand des Kreuzes vom %1 Rand"_s.arg(edge));
    if (std::abs(expected.Measured() - expected.nominal) > MostOffset) {
        const QLocale german(QLocale::German);
        throw ReadingError(
            u"Der Abstand des Kreuzes vom %1 Rand kann nicht stimmen: Es sind auf dem Blatt %2 mm, gemessen wären %3 mm."_s
                .arg(edge, german.toString(expected.nominal, 'f', 1),
                     german.toString(expected.Measured())),
            expected.reading);
    }
}

double Thousandths(double factor) {
    return std::round(factor * 1000) / 1000;
}

double Tenths(double millimetres) {
    return std::round(millimetres * 10) / 10;
}

/// Thousandths or tenths as the file has them, within what a calibration can be.
double Within(int stored, double unit, double middle, double most) {
    const double value = stored / unit;
    return std::abs(value - middle) <= most ? value : middle;
}

QString CalibrationFile(const QString& dataFolder) {
    return platform::JoinPath(dataFolder, u"PrinterCalibration.ini"_s);
}

}  // namespace

Calibration Calibrated(const PaperGeometry& paper, const Calibration& printedWith,
                       const RulerReadings& readings) {
    const RulerLines lines = RulerLinesFor(paper);
    const QPointF middle(paper.paper.width() / 2, paper.paper.height() / 2);
    RequireLength(u"A"_s, {readings, &RulerReadings::across, lines.across});
    RequireLength(u"B"_s, {readings, &RulerReadings::along, lines.along});
    RequirePlace(u"linken"_s, {readings, &RulerReadings::left, middle.x()});
    RequirePlace(u"oberen"_s, {readings, &RulerReadings::top, middle.y()});
    Calibration calibration;
    calibration.across = Thousandths(printedWith.across * lines.across / readings.across);
    calibration.along = Thousandths(printedWith.along * lines.along / readings.along);
    // Only the middle is moved, which scaling leaves in its place, but the printer's own scaling
    // enlarges the move.
    calibration.offset = {
        Tenths(printedWith.offset.x() + (middle.x() - readings.left) * calibration.across),
        Tenths(printedWith.offset.y() + (middle.y() - readings.top) * calibration.along)};
    return calibration;
}

QString CalibrationText(const Calibration& calibration) {
    const QLocale german(QLocale::German);
    QString text = u"quer %1 %, längs %2 %"_s.arg(german.toString(calibration.across * 100, 'f', 1),
                                                  german.toString(calibration.along * 100, 'f', 1));
    const auto add = [&](double millimetres, const QString& forwards, const QString& backwards) {
        if (std::abs(millimetres) >= 0.05) {
            text += u", %1 mm nach %2"_s.arg(german.toString(std::abs(millimetres), 'f', 1),
                                             millimetres > 0 ? forwards : backwards);
        }
    };
    add(calibration.offset.x(), u"rechts"_s, u"links"_s);
    add(calibration.offset.y(), u"unten"_s, u"oben"_s);
    return text;
}

Calibration StoredCalibration(const QString& dataFolder, const QString& profile) {
    const platform::IniFile file(CalibrationFile(dataFolder));
    // A second calibration may add to a first one.
    constexpr double MostStored = 2 * MostScaleError;
    return {Within(file.ReadInteger(profile, u"AcrossThousandths"_s, 1000), 1000, 1, MostStored),
            Within(file.ReadInteger(profile, u"AlongThousandths"_s, 1000), 1000, 1, MostStored),
            {Within(file.ReadInteger(profile, u"RightTenths"_s), 10, 0, 2 * MostOffset),
             Within(file.ReadInteger(profile, u"DownTenths"_s), 10, 0, 2 * MostOffset)}};
}

void StoreCalibration(const QString& dataFolder, const QString& profile,
                      const Calibration& calibration) {
    platform::IniFile::Change(CalibrationFile(dataFolder), [&](platform::IniFile& file) {
        const auto write = [&](const QString& key, double value) {
            file.WriteInteger(profile, key, static_cast<int>(std::lround(value)));
        };
        write(u"AcrossThousandths"_s, calibration.across * 1000);
        write(u"AlongThousandths"_s, calibration.along * 1000);
        write(u"RightTenths"_s, calibration.offset.x() * 10);
        write(u"DownTenths"_s, calibration.offset.y() * 10);
    });
}

void EraseCalibration(const QString& dataFolder, const QString& profile) {
    platform::IniFile::Change(CalibrationFile(dataFolder),
                              [&](platform::IniFile& file) { file.EraseSection(profile); });
}

}  // namespace kadrona::printing
