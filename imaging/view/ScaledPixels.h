#pragma once

#include <QImage>
#include <QRect>
#include <QRegion>
#include <QSize>
#include <optional>
#include <vector>

#include "imaging/pixels/Pixels.h"
#include "imaging/pixels/Resampling.h"
#include "imaging/view/Pyramid.h"

namespace kadrona::imaging::view {

/// Fast while something moves, smooth at rest.
enum class Quality { Fast, Smooth };

/// How pixels look that are drawn much larger than they are.
enum class Enlargement {
    /// Always smooth.
    Smooth,
    /// Above 300 % every pixel is a crisp square.
    Crisp
};

/// Pixels drawn at a size in device pixels. Keeps the part drawn last, so that a part that overlaps
/// it only costs what is new, and the same part costs nothing.
///
/// A grid is drawn tile by tile from its one tile, an arrangement picture by picture. Each begins
/// and ends on whole device pixels, edge(x) = round(x * drawn width / width), so that a tile ends
/// where its neighbour begins. Marks of an arrangement are at least one device pixel wide.
class ScaledPixels {
 public:
    explicit ScaledPixels(Enlargement enlargement) : enlargement_(enlargement) {}

    /// Draws `part` of the pixels scaled to `size`. Afterwards Drawing() holds `part`, at least in
    /// this quality, unless IsProvisional(). `part` is not empty and lies within `size`. The pixels
    /// are not kept, but other ones than at the last call are noticed. Throws platform::Error where
    /// memory is short.
    void Draw(const Pixels& pixels, QSize size, const QRect& part, Quality quality);

    /// True where what was drawn last would have taken too long in its quality, so that it was
    /// drawn as well as what is there allows.
    bool IsProvisional() const { return pending_.has_value(); }
    /// Prepares the drawing of `pixels`, the same as at the last Draw, for a few milliseconds; true
    /// when it is no longer provisional if it is drawn anew. Throws platform::Error where memory is
    /// short.
    bool Prepare(const Pixels& pixels);

    /// The pixels, the same as at the last Draw, were changed in place inside `area` (in their own
    /// pixels) alone: only what shows it is drawn anew.
    void TakeEdit(const Pixels& pixels, const QRect& area);
    /// Nothing is known of the pixels drawn last any more.
    void Forget();

    const QImage& Drawing() const { return drawing_; }
    /// What of the scaled pixels Drawing() shows; contains the part last asked for.
    const QRect& DrawnPart() const { return drawnPart_; }

 private:
    /// Tells pictures apart without holding them.
    struct Identity {
        qint64 key = 0;
        int columns = 0;
        int rows = 0;
        bool operator==(const Identity&) const = default;
    };

    void Notice(const Pixels& pixels);
    void DrawStale(const Pixels& pixels);
    void DrawPart(const Pixels& pixels, const QRect& part);
    QRect Scaled(const QRect& rectangle, QSize whole) const;
    void DrawPlaced(const Pixels& pixels, size_t picture, const QRect& place, const QRect& part);
    void DrawPicture(size_t index, const QImage& picture, QSize size, const QRect& part, QPoint at);
    void Fill(const QRect& area, const QRect& part, QRgb colour);
    struct Steps;
    /// A level of the pyramid and how it is drawn from.
    struct Source {
        int level;
        bool isProvisional;
    };
    Source SourceFor(size_t index, const QImage& picture, const Steps& full, const QRect& part);
    void Await(size_t picture, int level, const QRect& part);
    Filter FilterFor(double step) const;
    bool IsReusable(QSize size, Quality quality);

    Enlargement enlargement_;
    Identity identity_;
    /// Of the tile, or of each picture of an arrangement.
    std::vector<Pyramid> pyramids_;
    QSize size_;
    Quality quality_ = Quality::Fast;
    QImage drawing_;
    /// The drawing before, whose memory the next one takes.
    QImage spare_;
    QRect drawnPart_;
    /// What of the drawn part shows edited pixels as they were.
    QRegion stale_;
    /// What has to be built before the drawn part can be drawn in its quality.
    struct Pending {
        size_t picture;
        int level;
        QRect part;
    };
    std::optional<Pending> pending_;
};

}  // namespace kadrona::imaging::view
