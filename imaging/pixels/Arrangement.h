#pragma once

#include <QImage>
#include <QPoint>
#include <QRect>
#include <QSize>
#include <vector>

namespace kadrona::imaging {

/// Pictures and plain rectangles on a white canvas: a sheet that is no grid. Each picture is kept
/// once, however often it stands on the canvas.
struct Arrangement {
    struct Placed {
        /// Index of `pictures`.
        size_t picture;
        /// Its upper left corner. None reaches beyond the canvas; a later one covers an earlier.
        QPoint at;
    };
    struct Mark {
        QRect area;
        QRgb colour;
    };

    QSize size;
    /// Opaque, QImage::Format_RGB32.
    std::vector<QImage> pictures;
    std::vector<Placed> placed;
    /// Over the pictures.
    std::vector<Mark> marks;
    /// The first so many of `placed` are photos, the others texts.
    int photos = 0;

    QRect RectangleOf(const Placed& one) const { return {one.at, pictures.at(one.picture).size()}; }
};

}  // namespace kadrona::imaging
