#pragma once

#include <QColor>
#include <QPainter>
#include <QRect>
#include <vector>

#include "imaging/document/LayeredImage.h"
#include "imaging/tone/PixelFilter.h"
#include "imaging/view/ScaledPixels.h"
#include "imaging/view/Shadow.h"
#include "imaging/view/ViewGeometry.h"

namespace kadrona::imaging::view {

/// What the drawing of one layer depends on besides the view's geometry.
struct LayerAppearance {
    /// All that drawing the layer and its selection frame may touch, in device pixels.
    QRect area;
    bool visible = false;
    bool framed = false;
    int transparency = 255;
    qint64 pixels = 0;
    bool operator==(const LayerAppearance&) const = default;
};

/// One entry per layer. Where two differ, both their areas have to be painted anew.
std::vector<LayerAppearance> AppearancesOf(const LayeredImage& image, const ViewGeometry& geometry,
                                           double deviceScale);

/// True where the layer shows its selection frame: visible, current and above the photo.
bool IsFramed(const LayeredImage& image, int layer);

/// Draws a layered image: shadow, photo, layers and the current layer's selection frame. Keeps
/// scaled drawings of what was visible last. All in device pixels.
class LayerPainter {
 public:
    struct Request {
        const ViewGeometry& geometry;
        /// All of it is drawn, and what lies outside may be.
        QRect dirty;
        Quality quality = Quality::Smooth;
        QColor background;
        QColor accent;
        /// Device pixels per logical pixel.
        double deviceScale = 1.0;
        /// Changes what is visible of the photo; null leaves it as it is.
        const PixelFilter* filter = nullptr;
    };

    /// Throws platform::Error where memory is short.
    void Paint(QPainter& painter, const LayeredImage& image, const Request& request);

    /// True where something was painted as well as was possible at once; Prepare makes it better.
    bool IsProvisional() const;
    /// Works on that for a few milliseconds; true when it is done and everything can be painted
    /// anew. Throws platform::Error where memory is short.
    bool Prepare(const LayeredImage& image);

    /// The photo painted last was changed in place inside `area` alone.
    void TakePhotoEdit(const Pixels& photo, const QRect& area) { photo_.TakeEdit(photo, area); }
    /// Nothing is known of the photo any more.
    void ForgetPhoto() { photo_.Forget(); }

 private:
    void PaintPhoto(QPainter& painter, const Pixels& photo, const QRect& place,
                    const Request& request);
    Shadow shadow_;
    ScaledPixels photo_{Enlargement::Crisp};
    /// Of the layers above the photo.
    std::vector<ScaledPixels> layers_;
    /// What the filter made of the part painted last; its memory is kept from frame to frame.
    QImage filtered_;
};

}  // namespace kadrona::imaging::view
