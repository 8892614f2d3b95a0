#include "core/check/PhotoCheck.h"

#include <QStringList>
#include <cmath>

#include "core/check/CheckRules.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

namespace {

double LengthOf(Guidance::Of part, const TemplateRow& row) {
    return (part == Guidance::Of::Height ? row.height : row.width).value / 10.0;
}

/// Whether a document's figures say that there is a head in the picture.
bool JudgesTheHead(const TemplateRow& row) {
    const auto isJudged = [](const Band& band, bool isAdvice) {
        return (band.from || band.to) && !isAdvice;
    };
    return isJudged(row.head, row.headIsAdvice) || isJudged(row.eyes, row.eyesAreAdvice);
}

/// Lines of one photo.
class Checker {
 public:
    explicit Checker(const CheckedPhoto& photo) : photo_(photo) {}

    std::vector<CheckLine> Check() {
        AddFace();
        for (const CheckRule& rule : CheckRules()) {
            AddRule(rule);
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
    struct Source {
        QString name;
        QString text;
    };

    CheckLine& Add(const QString& name, const QString& label, const QString& unit,
                   const Source& source) {
        lines_.push_back({});
        lines_.back().name = name;
        lines_.back().label = label;
        lines_.back().unit = unit;
        lines_.back().source = source.text;
        lines_.back().sourceName = source.name;
        return lines_.back();
    }

    static Source SourceOf(const TemplateRow& row, const QString& subject = {}) {
        const QString letters = row.EvidenceOf(subject);
        const QString evidence = letters.isEmpty() ? QString() : u", Beleg "_s + letters;
        return {u"Vorgabe, "_s + row.readOn,
                u"Vorgaben „%1“%2, gelesen am %3"_s.arg(row.name, evidence, row.readOn)};
    }

    static Source SourceOf(const RuleSource& source) {
        return {QString::fromUtf16(source.name), QString::fromUtf16(source.text)};
    }

    /// Met or missed by the band.
    static void JudgePublished(CheckLine& line) {
        if (line.value) {
            line.state =
                IsOutside(line) || !line.fault.isEmpty() ? CheckState::Missed : CheckState::Met;
        } else {
            line.state = CheckState::Unmeasured;
        }
    }

    static void AddFault(CheckLine& line, const QString& fault) {
        if (!fault.isEmpty()) {
            line.state = CheckState::Missed;
            line.fault = fault;
            line.note = line.note.isEmpty() ? fault : fault + u"; "_s + line.note;
        }
    }

    /// Against the template's own band, or where it publishes none against the guidance.
    void AddRule(const CheckRule& rule) {
        const TemplateRow row = photo_.figures.value_or(TemplateRow());
        const PublishedBand own = rule.published ? rule.published(row) : PublishedBand();
        const Guidance& guidance = rule.guidance;
        const bool isPart = guidance.of != Guidance::Of::Unit;
        const bool hasGuidance = guidance.source.text && !(isPart && !photo_.figures) &&
                                 (!guidance.concerns || guidance.concerns(row));
        if (own.IsEmpty() && !hasGuidance) {
            return;
        }
        CheckLine& line = Add(QString::fromUtf16(rule.name), QString::fromUtf16(rule.label),
                              QString::fromUtf16(rule.unit),
                              own.IsEmpty() ? SourceOf(guidance.source)
                                            : SourceOf(row, QString::fromUtf16(own.subject)));
        line.decimals = rule.decimals;
        line.value = rule.value(photo_);
        line.note = rule.note ? rule.note(photo_, row) : QString();
        SetBand(line, own, guidance, row);
        if (rule.fault && JudgesTheHead(row)) {
            AddFault(line, rule.fault(photo_, row));
        }
        if (!own.IsEmpty() && own.isJudged) {
            JudgePublished(line);
        }
    }

    static void SetBand(CheckLine& line, const PublishedBand& own, const Guidance& guidance,
                        const TemplateRow& row) {
        const bool isPart = guidance.of != Guidance::Of::Unit;
        const double whole = isPart ? LengthOf(guidance.of, row) : 1;
        const auto limit = [whole](std::optional<double> part) {
            return part ? std::optional(std::round(*part * whole * 10) / 10) : std::nullopt;
        };
        line.minimum = own.IsEmpty() ? limit(guidance.minimum) : own.minimum;
        line.maximum = own.IsEmpty() ? limit(guidance.maximum) : own.maximum;
        if (isPart && row.IsFileOnly()) {
            InPercent(line, whole);
        }
    }

    /// Parts of a picture whose millimetres are nobody's; the table's are rounded, whole percents
    /// are published.
    static void InPercent(CheckLine& line, double whole) {
        line.unit = u"%"_s;
        if (line.value) {
            line.value = *line.value / whole * 100;
        }
        for (auto* limit : {&line.minimum, &line.maximum}) {
            if (*limit) {
                *limit = std::round(**limit / whole * 100);
            }
        }
    }

    /// Who publishes where a head has to be wants one; of other documents nothing is judged.
    void AddFace() {
        const bool isJudged = photo_.figures && JudgesTheHead(*photo_.figures);
        CheckLine& line = Add(
            u"face"_s, u"Gesicht"_s, {},
            isJudged ? SourceOf(*photo_.figures) : Source{u"Suche im Foto"_s, u"Suche im Foto"_s});
        if (!photo_.wasFaceLookedFor) {
            line.note = u"nicht gesucht"_s;
            line.state = isJudged ? CheckState::Unmeasured : CheckState::Guidance;
            return;
        }
        line.found = photo_.face.has_value();
        line.note = photo_.face ? u"gefunden"_s : u"nicht gefunden"_s;
        if (isJudged) {
            line.state = photo_.face ? CheckState::Met : CheckState::Missed;
        }
    }

    void AddWhiteCorners() {
        CheckLine& line = Add(u"whiteCorners"_s, u"Weiße Ecken nach dem Drehen"_s, {},
                              {u"eigene Prüfung"_s, u"eigene Prüfung"_s});
        line.found = photo_.whiteCorners;
        line.isWanted = false;
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
            Add(u"backgroundNotWhite"_s, u"Hintergrund nicht weiß"_s, u"L*"_s, SourceOf(row));
        line.source += u"; verboten ist „weiß“, die Zahl dazu ist eigene Lesart"_s;
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
        const bool isPublished = row.editing != AllowedEditing::Unregulated;
        CheckLine& line =
            Add(u"editing"_s, u"Bearbeitung"_s, {},
                isPublished ? SourceOf(row, u"Bearbeitung"_s)
                            : Source{u"keine Vorgabe bekannt"_s, u"keine Vorgabe bekannt"_s});
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
        JudgeEditing(line, row.editing);
    }

    void JudgeEditing(CheckLine& line, AllowedEditing allowed) {
        switch (allowed) {
            case AllowedEditing::Unregulated:
                break;
            case AllowedEditing::GeometryOnly:
                line.state = photo_.edits.Any() ? CheckState::Missed : CheckState::Met;
                line.note += u"; erlaubt sind nur Ausschnitt und Drehung"_s;
                break;
            case AllowedEditing::BackgroundUnmade:
                // Other tones and colours are those of the background too, yet none replaces it.
                if (photo_.edits.retouched) {
                    line.state = CheckState::Missed;
                } else if (!photo_.edits.Any()) {
                    line.state = CheckState::Met;
                }
                line.note += u"; der Hintergrund darf nicht ersetzt werden"_s;
                break;
            case AllowedEditing::ShapeKept:
                line.state = CheckState::Met;
                line.note +=
                    u"; Spiegeln und Verzerren sind verboten, dieses Programm tut beides nie"_s;
                break;
        }
    }

    /// Published, yet never missed: the rule is about what is handed in, and the same cut may go to
    /// the authority as a file. A question before every cut for the commonest document would be
    /// answered unread, and each strict check of a good picture would fail.
    void AddPaper(const TemplateRow& row) {
        if (!row.paper.isEmpty()) {
            Add(u"paper"_s, u"Bild auf Papier"_s, {}, SourceOf(row, u"Papier"_s)).note =
                u"wird nicht mehr angenommen: %1; für die Datei gilt das nicht"_s.arg(row.paper);
        }
    }

    const CheckedPhoto& photo_;
    std::vector<CheckLine> lines_;
};

}  // namespace

std::vector<CheckLine> CheckPhoto(const CheckedPhoto& photo) {
    return Checker(photo).Check();
}

}  // namespace kadrona::core
