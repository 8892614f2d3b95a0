#include "core/check/PhotoCheck.h"

#include <QStringList>
#include <algorithm>
#include <array>
#include <cmath>

#include "core/check/FacePlacement.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

namespace {

const QString Millimetres = u"mm"_s;
const QString IcaoSource = u"ISO/IEC 39794-5, D.1 (zweite Hand)"_s;
const QString OwnSource = u"eigener Richtwert; Maß nach OFIQ (ISO/IEC 29794-5)"_s;

/// A rule that no document of the catalogue publishes: where its figure is found, its band, and who
/// says so.
struct GuidanceRule {
    const char16_t* name;
    const char16_t* label;
    std::optional<double> (*value)(const CheckedPhoto&);
    std::optional<double> minimum;
    std::optional<double> maximum;
    const char16_t* unit;
    int decimals;
    const char16_t* source;
};

double MillimetresPerPixel(const CheckedPhoto& photo) {
    return photo.printedWidth.value / 10.0 / std::max(1, photo.rectangle.width());
}

std::optional<double> Resolution(const CheckedPhoto& photo) {
    const int dots = PrintResolution(photo.rectangle.width(), photo.printedWidth).value;
    return dots > 0 ? std::optional<double>(dots) : std::nullopt;
}

std::optional<double> Tilt(const CheckedPhoto& photo) {
    return photo.face ? std::optional(photo.face->tiltDegrees) : std::nullopt;
}

std::optional<double> EyeDistancePixels(const CheckedPhoto& photo) {
    return photo.face ? std::optional(photo.face->EyeDistance()) : std::nullopt;
}

template <std::optional<double> imaging::PortraitMeasures::*Measure>
std::optional<double> Measured(const CheckedPhoto& photo) {
    return photo.measures.*Measure;
}

using Measures = imaging::PortraitMeasures;

/// The rules that hold for every document, each with its source.
const std::vector<GuidanceRule>& GuidanceRules() {
    static const char16_t* const own = u"eigener Richtwert; Maß nach OFIQ (ISO/IEC 29794-5)";
    static const std::vector<GuidanceRule> rules{
        {u"resolution",
         u"Auflösung im Druck",
         Resolution,
         300,
         {},
         u"dpi",
         0,
         u"ICAO Doc 9303-3 (zweite Hand); in Deutschland 600 dpi empfohlen"},
        {u"tilt", u"Neigung der Augenlinie", Tilt, -8, 8, u"°", 1,
         u"ISO/IEC 19794-5:2011, 7.2.2 (zweite Hand)"},
        {u"eyeDistancePixels",
         u"Augenabstand im Foto",
         EyeDistancePixels,
         90,
         {},
         u"px",
         0,
         u"mehrere, zweite Hand"},
        {u"exposure", u"Helligkeit der Haut", Measured<&Measures::skinLightness>, 35, 88, u"L*", 0,
         own},
        {u"clipping",
         u"Haut ausgefressen oder schwarz",
         Measured<&Measures::skinClipped>,
         {},
         5,
         u"%",
         1,
         own},
        {u"evenLight",
         u"Licht links gegen rechts",
         Measured<&Measures::lightDifference>,
         {},
         12,
         u"L*",
         1,
         own},
        {u"sharpness", u"Schärfe an den Augen", Measured<&Measures::sharpness>, 2, {}, u"", 1, own},
        {u"backgroundUniform",
         u"Hintergrund einfarbig",
         Measured<&Measures::backgroundSpread>,
         {},
         14,
         u"ΔE",
         1,
         u"öffentliches Prüfprogramm: 14 bis 26 Einheiten CIE Lab"},
        {u"backgroundLightness",
         u"Hintergrund hell genug",
         Measured<&Measures::backgroundLightness>,
         60,
         {},
         u"L*",
         0,
         own},
        {u"backgroundShadow",
         u"Schatten im Hintergrund",
         Measured<&Measures::backgroundShadow>,
         {},
         12,
         u"L*",
         1,
         own},
        {u"redEyes", u"Rote Augen", Measured<&Measures::redEye>, {}, 15, u"%", 0, own},
    };
    return rules;
}

/// Lines of one photo.
class Checker {
 public:
    explicit Checker(const CheckedPhoto& photo)
        : photo_(photo), scale_(MillimetresPerPixel(photo)) {}

    std::vector<CheckLine> Check() {
        AddFace();
        if (photo_.figures) {
            AddHead(*photo_.figures);
            AddEyes(*photo_.figures);
            AddPlaces(*photo_.figures);
            AddFaceWidth(*photo_.figures);
            AddEyeDistance(*photo_.figures);
        }
        for (const GuidanceRule& rule : GuidanceRules()) {
            CheckLine& line = Add(rule.name, rule.label, rule.unit, rule.source);
            line.value = rule.value(photo_);
            line.minimum = rule.minimum;
            line.maximum = rule.maximum;
            line.decimals = rule.decimals;
        }
        AddWhiteCorners();
        if (photo_.figures) {
            AddBackgroundColour(*photo_.figures);
            AddEditing(*photo_.figures);
            AddPaper(*photo_.figures);
        }
        return std::move(lines_);
    }

 private:
    CheckLine& Add(const char16_t* name, const char16_t* label, const char16_t* unit,
                   const char16_t* source) {
        return Add(QString::fromUtf16(name), QString::fromUtf16(label), QString::fromUtf16(unit),
                   QString::fromUtf16(source));
    }

    CheckLine& Add(const QString& name, const QString& label, const QString& unit,
                   const QString& source) {
        lines_.push_back({});
        lines_.back().name = name;
        lines_.back().label = label;
        lines_.back().unit = unit;
        lines_.back().source = source;
        return lines_.back();
    }

    static QString SourceOf(const TemplateRow& row) {
        return u"Vorgaben „%1“, Beleg %2, gelesen am %3"_s.arg(row.name, row.evidence, row.readOn);
    }

    /// Met or missed by the band; a line without a value says nothing.
    static void Judge(CheckLine& line) {
        if (!line.value) {
            return;
        }
        // What is shown rounded is judged rounded.
        const double grain = std::pow(10.0, line.decimals);
        const double shown = std::round(*line.value * grain) / grain;
        const bool inside =
            (!line.minimum || shown >= *line.minimum) && (!line.maximum || shown <= *line.maximum);
        line.state = inside ? CheckState::Met : CheckState::Missed;
    }

    static void SetBand(CheckLine& line, const Band& band) {
        line.minimum = InMillimetres(band.from);
        line.maximum = InMillimetres(band.to);
    }

    static std::optional<double> InMillimetres(std::optional<TenthsOfMillimetre> length) {
        return length ? std::optional(length->value / 10.0) : std::nullopt;
    }

    /// The template's own band, or where it publishes none a guidance in parts of its side.
    CheckLine& AddBand(const QString& name, const QString& label, const TemplateRow& row,
                       const Band& band, bool isAdvice, double side, double from, double to) {
        const bool published = band.from || band.to;
        CheckLine& line = Add(name, label, Millimetres, published ? SourceOf(row) : IcaoSource);
        if (published) {
            SetBand(line, band);
        } else {
            line.minimum = std::round(from * side * 10) / 10;
            line.maximum = std::round(to * side * 10) / 10;
        }
        judged_ = published && !isAdvice;
        return line;
    }

    void SetValue(CheckLine& line, double pixels) const {
        line.value = pixels * scale_;
        if (judged_) {
            Judge(line);
        }
    }

    void AddFace() {
        CheckLine& line = Add(u"face"_s, u"Gesicht"_s, {}, u"Suche im Foto"_s);
        line.state = photo_.face ? CheckState::Met : CheckState::Missed;
        line.note = photo_.face ? u"gefunden"_s : u"kein Gesicht gefunden"_s;
    }

    void AddHead(const TemplateRow& row) {
        const double height = row.height.value / 10.0;
        CheckLine& line =
            AddBand(u"headHeight"_s, u"Kopf"_s, row, row.head, row.headIsAdvice, height, 0.6, 0.9);
        line.note = row.crown == Crown::Skull ? u"Kinn bis Schädel, ohne Frisur"_s
                                              : u"Kinn bis Scheitel, mit Haar"_s;
        if (photo_.face) {
            SetValue(line, photo_.face->chin.position.y() - CrownFor(*photo_.face, row).y());
        }
    }

    void AddEyes(const TemplateRow& row) {
        const double height = row.height.value / 10.0;
        CheckLine& line = AddBand(u"eyeLine"_s, u"Augen über dem unteren Rand"_s, row, row.eyes,
                                  row.eyesAreAdvice, height, 0.5, 0.7);
        if (photo_.face) {
            SetValue(line, LowerEdge() - photo_.face->EyeMiddle().y());
        }
    }

    void AddPlaces(const TemplateRow& row) {
        const double width = row.width.value / 10.0;
        CheckLine& axis = AddBand(u"faceAxis"_s, u"Gesichtsachse vom linken Rand"_s, row, row.axis,
                                  false, width, 0.45, 0.55);
        if (photo_.face) {
            SetValue(axis, FaceAxis(*photo_.face) - photo_.rectangle.left());
        }
        if (row.chin.IsComplete()) {
            CheckLine& chin =
                AddBand(u"chin"_s, u"Kinn über dem unteren Rand"_s, row, row.chin, false, 0, 0, 0);
            if (photo_.face) {
                SetValue(chin, LowerEdge() - photo_.face->chin.position.y());
            }
        }
        if (row.top.IsComplete()) {
            CheckLine& top = AddBand(u"topGap"_s, u"Scheitel bis zum oberen Rand"_s, row, row.top,
                                     false, 0, 0, 0);
            if (photo_.face) {
                SetValue(top, CrownFor(*photo_.face, row).y() - photo_.rectangle.top());
            }
        }
    }

    /// The width is no measured point: it is guessed from the pupils' distance, so it is never
    /// judged. The factor is the mean width of a face over the mean distance of the pupils.
    void AddFaceWidth(const TemplateRow& row) {
        constexpr double FaceByEyes = 2.17;
        if (!row.face.from && !row.face.to) {
            return;
        }
        CheckLine& line = Add(u"faceWidth"_s, u"Breite des Gesichts"_s, Millimetres, SourceOf(row));
        SetBand(line, row.face);
        line.note = u"aus dem Augenabstand geschätzt"_s;
        if (photo_.face) {
            line.value = FaceByEyes * photo_.face->EyeDistance() * scale_;
        }
    }

    void AddEyeDistance(const TemplateRow& row) {
        CheckLine& line = Add(u"eyeDistance"_s, u"Augenabstand im Druck"_s, Millimetres,
                              row.eyeDistance ? SourceOf(row) : u"ICAO Doc 9303-3 (zweite Hand)"_s);
        line.minimum = row.eyeDistance ? InMillimetres(row.eyeDistance) : 10.0;
        judged_ = row.eyeDistance.has_value();
        if (photo_.face) {
            SetValue(line, photo_.face->EyeDistance());
        }
    }

    void AddWhiteCorners() {
        CheckLine& line = Add(u"whiteCorners"_s, u"Weiße Ecken nach dem Drehen"_s, {}, OwnSource);
        line.note = photo_.whiteCorners ? u"vorhanden"_s : u"keine"_s;
    }

    void AddBackgroundColour(const TemplateRow& row) {
        if (!row.whiteBackgroundForbidden) {
            return;
        }
        // White to the eye: nearly the lightest, and without a hue.
        constexpr double WhiteLightness = 95;
        constexpr double WhiteChroma = 4;
        CheckLine& line =
            Add(u"backgroundNotWhite"_s, u"Hintergrund nicht weiß"_s, u"L*"_s, SourceOf(row));
        line.decimals = 0;
        line.value = photo_.measures.backgroundLightness;
        line.maximum = WhiteLightness;
        if (photo_.measures.backgroundChroma.value_or(0) > WhiteChroma) {
            line.maximum.reset();
            line.note = u"farbig"_s;
        }
        Judge(line);
    }

    void AddEditing(const TemplateRow& row) {
        CheckLine& line = Add(u"editing"_s, u"Bearbeitung"_s, {}, SourceOf(row));
        QStringList done;
        if (photo_.edits.tone) {
            done << u"Töne"_s;
        }
        if (photo_.edits.colours) {
            done << u"Farben"_s;
        }
        if (photo_.edits.retouched) {
            done << u"Retusche"_s;
        }
        line.note = done.isEmpty() ? u"keine"_s : done.join(u", "_s);
        if (row.editing == AllowedEditing::GeometryOnly) {
            line.state = photo_.edits.Any() ? CheckState::Missed : CheckState::Met;
            line.note += u"; erlaubt sind nur Ausschnitt und Drehung"_s;
        } else if (row.editing == AllowedEditing::BackgroundUnmade) {
            line.state = photo_.edits.retouched ? CheckState::Missed : CheckState::Met;
            line.note += u"; der Hintergrund darf nicht ersetzt werden"_s;
        }
    }

    void AddPaper(const TemplateRow& row) {
        if (!row.paper.isEmpty()) {
            Add(u"paper"_s, u"Bild auf Papier"_s, {}, SourceOf(row)).note =
                u"wird nicht mehr angenommen: "_s + row.paper;
        }
    }

    double LowerEdge() const { return photo_.rectangle.top() + photo_.rectangle.height(); }

    const CheckedPhoto& photo_;
    const double scale_;
    bool judged_ = false;
    std::vector<CheckLine> lines_;
};

QString Number(double value, int decimals) {
    QString text = QString::number(value, 'f', decimals);
    return text.replace(u'.', u',');
}

/// A limit as short as it can be: "32" rather than "32,0".
QString Limit(double value) {
    return Number(value, value == std::round(value) ? 0 : 1);
}

}  // namespace

std::vector<CheckLine> CheckPhoto(const CheckedPhoto& photo) {
    return Checker(photo).Check();
}

bool HasWhiteCorners(const imaging::Pixels& photo, const QRect& rectangle) {
    constexpr int Side = 6;
    const QRect inside = rectangle & QRect({0, 0}, photo.Size());
    if (inside.width() < 2 * Side || inside.height() < 2 * Side) {
        return false;
    }
    const auto isWhite = [&](const QPoint& corner) {
        const QImage part = photo.Region({corner, QSize(Side, Side)}, qRgb(0, 0, 0));
        for (int y = 0; y < Side; ++y) {
            for (int x = 0; x < Side; ++x) {
                if ((part.pixel(x, y) & RGB_MASK) != RGB_MASK) {
                    return false;
                }
            }
        }
        return true;
    };
    const int right = inside.x() + inside.width() - Side;
    const int bottom = inside.y() + inside.height() - Side;
    const std::array corners{inside.topLeft(), QPoint(right, inside.y()),
                             QPoint(inside.x(), bottom), QPoint(right, bottom)};
    const auto white = std::ranges::count_if(corners, isWhite);
    // A white wall fills both upper corners alike; a rotation leaves white opposite to it too.
    return white > 0 && !(white == 2 && isWhite(corners[0]) && isWhite(corners[1]));
}

QString StateText(CheckState state) {
    switch (state) {
        case CheckState::Met:
            return u"erfüllt"_s;
        case CheckState::Missed:
            return u"nicht erfüllt"_s;
        case CheckState::Guidance:
            break;
    }
    return u"nur Richtwert"_s;
}

QString BandText(const CheckLine& line) {
    const QString unit = line.unit.isEmpty() ? QString() : u' ' + line.unit;
    if (line.minimum && line.maximum) {
        return u"%1 bis %2"_s.arg(Limit(*line.minimum), Limit(*line.maximum)) + unit;
    }
    if (line.minimum) {
        return u"mindestens "_s + Limit(*line.minimum) + unit;
    }
    return line.maximum ? u"höchstens "_s + Limit(*line.maximum) + unit : QString();
}

QString ValueText(const CheckLine& line) {
    if (!line.value) {
        return {};
    }
    const QString unit = line.unit.isEmpty() ? QString() : u' ' + line.unit;
    return Number(*line.value, line.decimals) + unit;
}

QString FigureText(const CheckLine& line) {
    const QString value = ValueText(line);
    if (value.isEmpty()) {
        return line.note;
    }
    const QString band = BandText(line);
    return band.isEmpty() ? value : value + u" statt "_s + band;
}

}  // namespace kadrona::core
