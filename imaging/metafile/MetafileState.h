#pragma once

#include <QBrush>
#include <QColor>
#include <QPen>
#include <QPointF>
#include <QSizeF>
#include <QTransform>

namespace kadrona::imaging {

/// How a metafile's numbers become pixels of the device that it was recorded on:
///
///     logical --world--> page --window and viewport--> device
struct MetafileMapping {
    // The values of SetMapMode that get a treatment of their own.
    static constexpr int Text = 1;
    static constexpr int Twips = 6;
    static constexpr int Isotropic = 7;
    static constexpr int Anisotropic = 8;

    int mode = Text;
    QPointF windowOrigin;
    QSizeF windowExtent{1, 1};
    QPointF viewportOrigin;
    QSizeF viewportExtent{1, 1};
    QTransform world;

    /// `dotsPerMillimetre` is the device's, for the modes that count in lengths.
    QTransform LogicalToDevice(QSizeF dotsPerMillimetre) const;
};

/// What SaveDC keeps, beside the clipping that the painter keeps.
struct MetafileState {
    MetafileMapping mapping;
    /// The width is in logical units; a cosmetic pen is one pixel wide.
    QPen pen{Qt::black, 0};
    QBrush brush{Qt::white};
    Qt::FillRule fillRule = Qt::OddEvenFill;
    QPointF position;
    /// How many rectangles the clipping is the common part of.
    int clippings = 0;
};

/// Of SetROP2: the pen paints over what is there.
constexpr quint32 CopyPen = 13;

/// GDI's 0x00bbggrr.
QColor ColourFrom(quint32 colourReference);

/// A pen of LOGPEN's or EXTLOGPEN's style bits and logical width.
QPen PenFrom(quint32 style, double width, const QColor& colour);

/// A brush of LOGBRUSH's style and hatch.
QBrush BrushFrom(quint32 style, const QColor& colour, quint32 hatch);

}  // namespace kadrona::imaging
