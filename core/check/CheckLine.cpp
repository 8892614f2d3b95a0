#include "core/check/CheckLine.h"

#include <QStringList>
#include <cmath>

using namespace Qt::StringLiterals;

namespace kadrona::core {

namespace {

double Rounded(double value, int decimals) {
    const double grain = std::pow(10.0, decimals);
    // Adding nothing makes a nothing below zero one without a sign.
    return std::round(value * grain) / grain + 0.0;
}

QString Number(double value, int decimals) {
    QString text = QString::number(Rounded(value, decimals), 'f', decimals);
    return text.replace(u'.', u',');
}

/// The sign of a degree stands at its number.
QString UnitText(const QString& unit) {
    return unit.isEmpty() || unit == u"°" ? unit : u' ' + unit;
}

/// A limit as short as it can be: "32" rather than "32,0".
QString Limit(double value) {
    return Number(value, value == std::round(value) ? 0 : 1);
}

}  // namespace

QString StateText(CheckState state) {
    switch (state) {
        case CheckState::Met:
            return u"erfüllt"_s;
        case CheckState::Missed:
            return u"nicht erfüllt"_s;
        case CheckState::Unmeasured:
            return u"nicht gemessen"_s;
        case CheckState::Guidance:
            break;
    }
    return u"nur Richtwert"_s;
}

QString StateSign(const CheckLine& line) {
    switch (line.state) {
        case CheckState::Met:
            return u"✓"_s;
        case CheckState::Missed:
            return u"✗"_s;
        case CheckState::Unmeasured:
        case CheckState::Guidance:
            break;
    }
    return IsOutside(line) ? u"!"_s : u"·"_s;
}

QString SourcesText(const std::vector<CheckLine>& lines) {
    QStringList sources;
    for (const CheckLine& line : lines) {
        if (line.source != line.sourceName && !sources.contains(line.source)) {
            sources << line.source;
        }
    }
    return u"Quellen: "_s + sources.join(u" · "_s) +
           u". Beleg O: Seite der Behörde, T: datierte Abschrift davon, S: andere Quelle."_s;
}

QString BandText(const CheckLine& line) {
    const QString unit = UnitText(line.unit);
    if (line.minimum && line.maximum) {
        return u"%1 bis %2"_s.arg(Limit(*line.minimum), Limit(*line.maximum)) + unit;
    }
    if (line.minimum) {
        return u"mindestens "_s + Limit(*line.minimum) + unit;
    }
    return line.maximum ? u"höchstens "_s + Limit(*line.maximum) + unit : QString();
}

bool IsOutside(const CheckLine& line) {
    const std::optional<double> shown = ShownValue(line);
    if (!shown) {
        return line.found.value_or(line.isWanted) != line.isWanted;
    }
    return (line.minimum && *shown < *line.minimum) || (line.maximum && *shown > *line.maximum);
}

std::optional<double> ShownValue(const CheckLine& line) {
    return line.value ? std::optional(Rounded(*line.value, line.decimals)) : std::nullopt;
}

QString NumberText(const CheckLine& line) {
    return line.value ? Number(*line.value, line.decimals) : QString();
}

QString ValueText(const CheckLine& line) {
    const QString number = NumberText(line);
    return number.isEmpty() ? number : number + UnitText(line.unit);
}

QString FigureText(const CheckLine& line) {
    if (!line.fault.isEmpty()) {
        return line.fault;
    }
    const QString value = ValueText(line);
    if (value.isEmpty()) {
        return line.note;
    }
    const QString band = BandText(line);
    return band.isEmpty() ? value : value + u" statt "_s + band;
}

}  // namespace kadrona::core
