#pragma once

namespace kadrona::imaging {

/// Print resolution: dots per inch, the same in both directions. 0 means unknown.
struct DotsPerInch {
    int value = 0;
    bool operator==(const DotsPerInch&) const = default;
};

}  // namespace kadrona::imaging
