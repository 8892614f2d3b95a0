#pragma once

#include <optional>
#include <vector>

#include "core/check/PhotoCheck.h"

namespace kadrona::core {

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

/// The rules that hold for every document, in the order of the report, each with its source.
const std::vector<GuidanceRule>& GuidanceRules();

}  // namespace kadrona::core
