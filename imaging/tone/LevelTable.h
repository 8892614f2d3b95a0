#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

namespace kadrona::imaging {

/// What becomes of each level, 0 ... 255.
using LevelTable = std::array<std::uint8_t, 256>;

/// A level that a formula gives, rounded and brought into 0 ... 255.
inline std::uint8_t ToLevel(double value) {
    return static_cast<std::uint8_t>(std::lround(std::clamp(value, 0.0, 255.0)));
}

/// The table of a function from level to level, both doubles; rounded, brought into 0 ... 255.
template <typename Function>
LevelTable MakeTable(const Function& function) {
    LevelTable table;
    for (size_t level = 0; level < table.size(); ++level) {
        table[level] = ToLevel(function(static_cast<double>(level)));
    }
    return table;
}

}  // namespace kadrona::imaging
