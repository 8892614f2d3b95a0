#include "core/check/GuidanceRules.h"

namespace kadrona::core {

namespace {

std::optional<double> Resolution(const CheckedPhoto& photo) {
    const int dots = PrintResolution(photo.rectangle.width(), photo.printedWidth).value;
    return dots > 0 ? std::optional<double>(dots) : std::nullopt;
}

std::optional<double> Tilt(const CheckedPhoto& photo) {
    return photo.face ? std::optional(photo.face->tiltDegrees) : std::nullopt;
}

std::optional<double> EyeDistancePixels(const CheckedPhoto& photo) {
    return photo.face ? std::optional(photo.face->EyeDistance()) : std::nullopt;
}

template <std::optional<double> imaging::PortraitMeasures::*Measure>
std::optional<double> Measured(const CheckedPhoto& photo) {
    return photo.measures.*Measure;
}

template <std::optional<double> imaging::BackgroundMeasures::*Measure>
std::optional<double> Behind(const CheckedPhoto& photo) {
    return photo.background.*Measure;
}

using Background = imaging::BackgroundMeasures;
using Measures = imaging::PortraitMeasures;

}  // namespace

const std::vector<GuidanceRule>& GuidanceRules() {
    static const char16_t* const own = u"eigener Richtwert; Maß nach OFIQ (ISO/IEC 29794-5)";
    static const std::vector<GuidanceRule> rules{
        {u"resolution",
         u"Auflösung im Druck",
         Resolution,
         300,
         {},
         u"dpi",
         0,
         u"ICAO Doc 9303-3 (zweite Hand); in Deutschland 600 dpi empfohlen"},
        {u"tilt", u"Neigung der Augenlinie", Tilt, -8, 8, u"°", 1,
         u"ISO/IEC 19794-5:2011, 7.2.2 (zweite Hand)"},
        {u"eyeDistancePixels",
         u"Augenabstand im Foto",
         EyeDistancePixels,
         90,
         {},
         u"px",
         0,
         u"mehrere, zweite Hand"},
        {u"exposure", u"Helligkeit der Haut", Measured<&Measures::skinLightness>, 35, 88, u"L*", 0,
         own},
        {u"clipping",
         u"Haut ausgefressen oder schwarz",
         Measured<&Measures::skinClipped>,
         {},
         5,
         u"%",
         1,
         own},
        {u"evenLight",
         u"Licht links gegen rechts",
         Measured<&Measures::lightDifference>,
         {},
         12,
         u"L*",
         1,
         own},
        {u"sharpness", u"Schärfe an den Augen", Measured<&Measures::sharpness>, 2, {}, u"", 1, own},
        {u"backgroundUniform",
         u"Hintergrund einfarbig",
         Behind<&Background::spread>,
         {},
         14,
         u"ΔE",
         1,
         u"öffentliches Prüfprogramm: 14 bis 26 Einheiten CIE Lab"},
        {u"backgroundLightness",
         u"Hintergrund hell genug",
         Behind<&Background::lightness>,
         60,
         {},
         u"L*",
         0,
         own},
        {u"backgroundShadow",
         u"Schatten im Hintergrund",
         Behind<&Background::shadow>,
         {},
         12,
         u"L*",
         1,
         own},
        {u"redEyes", u"Rote Augen", Measured<&Measures::redEye>, {}, 15, u"%", 0, own},
    };
    return rules;
}

}  // namespace kadrona::core
