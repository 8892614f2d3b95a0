#pragma once

#include <QRgb>
#include <cstdint>

namespace kadrona::imaging {

/// 0.299 R + 0.587 G + 0.114 B (ITU-R BT.601), rounded, halves up.
inline int Luma(QRgb colour) {
    // The factors times 2^24, rounded so that their sum is exactly that. Their error is below a
    // tenth of the thousandths that the exact sums are apart, and so is what lifts an exact half
    // over the edge.
    constexpr std::uint32_t Red = 5016388;
    constexpr std::uint32_t Green = 9848226;
    constexpr std::uint32_t Blue = 1912602;
    constexpr std::uint32_t Half = (1U << 23) + (1U << 12);
    static_assert(Red + Green + Blue == 1U << 24);
    const std::uint32_t red = (colour >> 16) & 0xff;
    const std::uint32_t green = (colour >> 8) & 0xff;
    const std::uint32_t blue = colour & 0xff;
    return static_cast<int>((Red * red + Green * green + Blue * blue + Half) >> 24);
}

}  // namespace kadrona::imaging
