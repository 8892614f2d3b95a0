#pragma once

#include <QString>
#include <optional>
#include <span>

#include "core/check/PhotoCheck.h"

namespace kadrona::core {

/// Who says what a rule demands: a name for a narrow column, and the whole of it.
struct RuleSource {
    const char16_t* name = nullptr;
    const char16_t* text = nullptr;
};

/// What counts where a document publishes nothing. Never judged.
struct Guidance {
    std::optional<double> minimum = {};
    std::optional<double> maximum = {};
    RuleSource source = {};
    /// What the limits are parts of; else they have the rule's unit.
    enum class Of { Unit, Width, Height } of = Of::Unit;
    /// Whether a document can be held against it; null for all of them.
    bool (*concerns)(const TemplateRow&) = nullptr;
};

/// What a document's row of the template table says of a rule.
struct PublishedBand {
    std::optional<double> minimum = {};
    std::optional<double> maximum = {};
    /// By its limits: no advice, and measured surely enough. What is in words judges itself.
    bool isJudged = true;
    /// Of the column, where its evidence may be another than the row's.
    const char16_t* subject = u"";
    bool isInWords = false;        ///< something is said, without limits
    const char16_t* remark = u"";  ///< what the source adds, German

    bool IsEmpty() const { return !minimum && !maximum && !isInWords; }
};

/// A rule of the check: where its figure is found, and what it is held against.
struct CheckRule {
    const char16_t* name = nullptr;
    const char16_t* label = nullptr;
    const char16_t* unit = u"";
    int decimals = 0;
    /// Null where a rule has no figure.
    std::optional<double> (*value)(const CheckedPhoto&) = nullptr;
    /// Null where no document says anything.
    PublishedBand (*published)(const TemplateRow&) = nullptr;
    /// Without a source there is no line where nothing is published.
    Guidance guidance = {};
    /// What the figures cannot say; null where there is nothing.
    QString (*note)(const CheckedPhoto&, const TemplateRow&) = nullptr;
    /// What makes the line missed whatever its figure, where the document judges the head; null
    /// where there is nothing.
    QString (*fault)(const CheckedPhoto&, const TemplateRow&) = nullptr;
    /// Says and judges what is no figure between limits; null where there is nothing.
    void (*finish)(CheckLine&, const CheckedPhoto&, const TemplateRow&) = nullptr;
};

/// All rules, in the order of the report.
std::span<const CheckRule> CheckRules();

}  // namespace kadrona::core
