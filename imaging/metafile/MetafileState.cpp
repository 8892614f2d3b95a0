#include "imaging/metafile/MetafileState.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace kadrona::imaging {

namespace {

/// Millimetres of one unit in the modes that count in lengths, from LOMETRIC (2) on.
constexpr std::array<double, 5> UnitLength = {0.1, 0.01, 0.254, 0.0254, 25.4 / 1440};

double Quotient(double dividend, double divisor) {
    return divisor == 0 ? 1 : dividend / divisor;
}

QSizeF PageScale(const MetafileMapping& mapping, QSizeF dotsPerMillimetre) {
    if (mapping.mode > MetafileMapping::Text && mapping.mode <= MetafileMapping::Twips) {
        const double unit = UnitLength.at(static_cast<size_t>(mapping.mode - 2));
        return {unit * dotsPerMillimetre.width(), -unit * dotsPerMillimetre.height()};
    }
    if (mapping.mode != MetafileMapping::Isotropic &&
        mapping.mode != MetafileMapping::Anisotropic) {
        return {1, 1};
    }
    QSizeF scale(Quotient(mapping.viewportExtent.width(), mapping.windowExtent.width()),
                 Quotient(mapping.viewportExtent.height(), mapping.windowExtent.height()));
    if (mapping.mode == MetafileMapping::Isotropic) {
        const double smaller = std::min(std::abs(scale.width()), std::abs(scale.height()));
        scale = {std::copysign(smaller, scale.width()), std::copysign(smaller, scale.height())};
    }
    return scale;
}

Qt::PenStyle LineStyle(quint32 style) {
    switch (style & 0xf) {
        case 1:
            return Qt::DashLine;
        case 2:
            return Qt::DotLine;
        case 3:
            return Qt::DashDotLine;
        case 4:
            return Qt::DashDotDotLine;
        case 5:
            return Qt::NoPen;
        default:
            return Qt::SolidLine;
    }
}

}  // namespace

QTransform MetafileMapping::LogicalToDevice(QSizeF dotsPerMillimetre) const {
    const QSizeF scale = PageScale(*this, dotsPerMillimetre);
    const QTransform page(scale.width(), 0, 0, scale.height(),
                          viewportOrigin.x() - windowOrigin.x() * scale.width(),
                          viewportOrigin.y() - windowOrigin.y() * scale.height());
    return world * page;
}

QColor ColourFrom(quint32 colourReference) {
    return QColor::fromRgb(colourReference & 0xff, colourReference >> 8 & 0xff,
                           colourReference >> 16 & 0xff);
}

QPen PenFrom(quint32 style, double width, const QColor& colour) {
    constexpr quint32 SquareCap = 0x100;
    constexpr quint32 FlatCap = 0x200;
    constexpr quint32 BevelJoin = 0x1000;
    constexpr quint32 MiterJoin = 0x2000;
    QPen pen(colour, std::max(0.0, width), LineStyle(style));
    pen.setCapStyle((style & SquareCap) ? Qt::SquareCap
                    : (style & FlatCap) ? Qt::FlatCap
                                        : Qt::RoundCap);
    pen.setJoinStyle((style & BevelJoin)   ? Qt::BevelJoin
                     : (style & MiterJoin) ? Qt::SvgMiterJoin
                                           : Qt::RoundJoin);
    return pen;
}

QBrush BrushFrom(quint32 style, const QColor& colour, quint32 hatch) {
    constexpr quint32 Solid = 0;
    constexpr quint32 Hatched = 2;
    // GDI's numbering: horizontal, vertical, down, up, cross, diagonal cross.
    constexpr std::array Patterns = {Qt::HorPattern,   Qt::VerPattern,   Qt::FDiagPattern,
                                     Qt::BDiagPattern, Qt::CrossPattern, Qt::DiagCrossPattern};
    if (style == Solid) {
        return {colour};
    }
    if (style == Hatched) {
        return {colour, hatch < Patterns.size() ? Patterns.at(hatch) : Qt::SolidPattern};
    }
    return {Qt::NoBrush};
}

}  // namespace kadrona::imaging
