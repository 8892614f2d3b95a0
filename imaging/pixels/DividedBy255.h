#pragma once

namespace kadrona::imaging {

/// A product of two numbers from 0 to 255, or a sum of such, on their scale again; rounded.
constexpr int DividedBy255(int product) {
    return (product + 127) / 255;
}

}  // namespace kadrona::imaging
