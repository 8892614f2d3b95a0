#include "core/check/PhotoCheck.h"

#include <QStringList>
#include <algorithm>
#include <cmath>

#include "core/check/FacePlacement.h"
#include "core/check/GuidanceRules.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

namespace {

const QString Millimetres = u"mm"_s;
const QString IcaoSource = u"ISO/IEC 39794-5, D.1 (zweite Hand)"_s;
const QString OwnSource = u"eigener Richtwert; Maß nach OFIQ (ISO/IEC 29794-5)"_s;

double MillimetresPerPixel(const CheckedPhoto& photo) {
    return photo.printedWidth.value / 10.0 / std::max(1, photo.rectangle.width());
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
        if (line.value) {
            line.state = IsOutside(line) ? CheckState::Missed : CheckState::Met;
        }
    }

    /// That a published band was neither kept nor missed must not read as if nobody published it.
    static void JudgePublished(CheckLine& line) {
        Judge(line);
        if (!line.value) {
            line.note += line.note.isEmpty() ? u"nicht gemessen"_s : u"; nicht gemessen"_s;
        }
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

    /// Takes the length that `pixelsOf` finds in the face, and judges it where a band is published.
    template <typename Length>
    void Measure(CheckLine& line, const Length& pixelsOf) const {
        if (photo_.face) {
            line.value = pixelsOf(*photo_.face) * scale_;
        }
        if (judged_) {
            JudgePublished(line);
        }
    }

    void AddFace() {
        CheckLine& line = Add(u"face"_s, u"Gesicht"_s, {}, u"Suche im Foto"_s);
        if (!photo_.wasFaceLookedFor) {
            line.note = u"nicht gesucht"_s;
            return;
        }
        line.state = photo_.face ? CheckState::Met : CheckState::Missed;
        line.note = photo_.face ? u"gefunden"_s : u"nicht gefunden"_s;
    }

    void AddHead(const TemplateRow& row) {
        const double height = row.height.value / 10.0;
        CheckLine& line =
            AddBand(u"headHeight"_s, u"Kopf"_s, row, row.head, row.headIsAdvice, height, 0.6, 0.9);
        line.note = row.crown == Crown::Skull ? u"Kinn bis Schädel, ohne Frisur"_s
                                              : u"Kinn bis Scheitel, mit Haar"_s;
        Measure(line, [&](const imaging::Face& face) {
            return face.chin.position.y() - CrownFor(face, row).y();
        });
    }

    void AddEyes(const TemplateRow& row) {
        const double height = row.height.value / 10.0;
        CheckLine& line = AddBand(u"eyeLine"_s, u"Augen über dem unteren Rand"_s, row, row.eyes,
                                  row.eyesAreAdvice, height, 0.5, 0.7);
        Measure(line,
                [&](const imaging::Face& face) { return LowerEdge() - face.EyeMiddle().y(); });
    }

    void AddPlaces(const TemplateRow& row) {
        const double width = row.width.value / 10.0;
        CheckLine& axis = AddBand(u"faceAxis"_s, u"Gesichtsachse vom linken Rand"_s, row, row.axis,
                                  false, width, 0.45, 0.55);
        Measure(axis, [&](const imaging::Face& face) {
            return FaceAxis(face) - photo_.rectangle.left();
        });
        if (row.chin.IsComplete()) {
            CheckLine& chin =
                AddBand(u"chin"_s, u"Kinn über dem unteren Rand"_s, row, row.chin, false, 0, 0, 0);
            Measure(chin, [&](const imaging::Face& face) {
                return LowerEdge() - face.chin.position.y();
            });
        }
        if (row.top.IsComplete()) {
            CheckLine& top = AddBand(u"topGap"_s, u"Scheitel bis zum oberen Rand"_s, row, row.top,
                                     false, 0, 0, 0);
            Measure(top, [&](const imaging::Face& face) {
                return CrownFor(face, row).y() - photo_.rectangle.top();
            });
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
        Measure(line, [](const imaging::Face& face) { return face.EyeDistance(); });
    }

    void AddWhiteCorners() {
        CheckLine& line = Add(u"whiteCorners"_s, u"Weiße Ecken nach dem Drehen"_s, {}, OwnSource);
        line.found = photo_.whiteCorners;
        line.note = photo_.whiteCorners ? u"vorhanden"_s : u"keine"_s;
    }

    void AddBackgroundColour(const TemplateRow& row) {
        if (!row.whiteBackgroundForbidden) {
            return;
        }
        // The authority forbids it in words; white to the eye is nearly the lightest, without a
        // hue.
        constexpr double WhiteLightness = 95;
        constexpr double WhiteChroma = 4;
        CheckLine& line =
            Add(u"backgroundNotWhite"_s, u"Hintergrund nicht weiß"_s, u"L*"_s,
                SourceOf(row) + u"; verboten ist „weiß“, die Zahl dazu ist eigene Lesart"_s);
        line.decimals = 0;
        line.value = photo_.background.lightness;
        line.maximum = WhiteLightness;
        if (photo_.background.chroma.value_or(0) > WhiteChroma) {
            line.maximum.reset();
            line.note = u"farbig"_s;
        }
        JudgePublished(line);
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

    /// Published, yet never missed: the rule is about what is handed in, and the same cut may go to
    /// the authority as a file. A question before every cut for the commonest document would be
    /// answered unread, and each strict check of a good picture would fail.
    void AddPaper(const TemplateRow& row) {
        if (!row.paper.isEmpty()) {
            Add(u"paper"_s, u"Bild auf Papier"_s, {}, SourceOf(row)).note =
                u"wird nicht mehr angenommen: %1; für die Datei gilt das nicht"_s.arg(row.paper);
        }
    }

    double LowerEdge() const { return photo_.rectangle.top() + photo_.rectangle.height(); }

    const CheckedPhoto& photo_;
    const double scale_;
    bool judged_ = false;
    std::vector<CheckLine> lines_;
};

}  // namespace

std::vector<CheckLine> CheckPhoto(const CheckedPhoto& photo) {
    return Checker(photo).Check();
}

}  // namespace kadrona::core
