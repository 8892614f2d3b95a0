#include "core/check/PhotoCheck.h"

#include <cmath>

#include "core/check/CheckRules.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

namespace {

double LengthOf(Guidance::Of part, const TemplateRow& row) {
    return (part == Guidance::Of::Height ? row.height : row.width).value / 10.0;
}

/// Lines of one photo.
class Checker {
 public:
    explicit Checker(const CheckedPhoto& photo) : photo_(photo) {}

    std::vector<CheckLine> Check() {
        for (const CheckRule& rule : CheckRules()) {
            AddRule(rule);
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

    static Source SourceOf(const TemplateRow& row, const PublishedBand& band) {
        const QString letters = row.EvidenceOf(QString::fromUtf16(band.subject));
        const QString evidence = letters.isEmpty() ? QString() : u", Beleg "_s + letters;
        return {letters.isEmpty() ? u"Vorgabe, "_s + row.readOn
                                  : u"Beleg %1, %2"_s.arg(letters, row.readOn),
                u"Vorgaben „%1“%2, gelesen am %3"_s.arg(row.name, evidence, row.readOn) +
                    QString::fromUtf16(band.remark)};
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
                              own.IsEmpty() ? SourceOf(guidance.source) : SourceOf(row, own));
        line.decimals = rule.decimals;
        line.value = rule.value ? rule.value(photo_) : std::nullopt;
        line.note = rule.note ? rule.note(photo_, row) : QString();
        SetBand(line, own, guidance, row);
        if (rule.finish) {
            rule.finish(line, photo_, row);
        }
        if (rule.fault) {
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

    const CheckedPhoto& photo_;
    std::vector<CheckLine> lines_;
};

}  // namespace

std::vector<CheckLine> CheckPhoto(const CheckedPhoto& photo) {
    return Checker(photo).Check();
}

}  // namespace kadrona::core
