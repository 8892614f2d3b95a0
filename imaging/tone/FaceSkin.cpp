#include "imaging/tone/FaceSkin.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace kadrona::imaging {

std::optional<FaceSkin> FaceSkinIn(const QImage& image, const QRect& area) {
    constexpr int BrightestSkin = 250;  // what is brighter may be cut off
    constexpr size_t FewestPoints = 16;
    std::vector<double> red;
    std::vector<double> blue;
    std::vector<double> green;
    const QRect inside = area.intersected(image.rect());
    for (int y = inside.top(); y <= inside.bottom(); ++y) {
        const auto* row = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        for (int x = inside.left(); x <= inside.right(); ++x) {
            const auto [least, most] = std::minmax({qRed(row[x]), qGreen(row[x]), qBlue(row[x])});
            if (least >= DarkestTone && most <= BrightestSkin) {
                red.push_back(std::log(double(qRed(row[x])) / qGreen(row[x])));
                blue.push_back(std::log(double(qBlue(row[x])) / qGreen(row[x])));
                green.push_back(qGreen(row[x]));
            }
        }
    }
    if (red.size() < FewestPoints) {
        return std::nullopt;
    }
    const auto middle = [](std::vector<double>& values) {
        const auto half = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
        std::ranges::nth_element(values, half);
        return *half;
    };
    return FaceSkin{{middle(red), middle(blue)}, middle(green)};
}

/// Complexions spread about a middle one, which is the less red and the less yellow the brighter
/// the skin is.
double LikenessToFace(const FaceSkin& skin, const Chromaticity& light) {
    constexpr Chromaticity Middle{0.283, -0.125};  // of a green of 150
    constexpr Chromaticity Slope{-0.22, 0.14};     // for 100 more of it
    constexpr Chromaticity Spread{0.064, 0.12};
    const double brighter = (skin.green - 150) / 100;
    const double red = skin.colour.red - light.red - Middle.red - Slope.red * brighter;
    const double blue = skin.colour.blue - light.blue - Middle.blue - Slope.blue * brighter;
    return std::exp(-std::pow(red / Spread.red, 2) / 2 - std::pow(blue / Spread.blue, 2) / 2);
}

}  // namespace kadrona::imaging
