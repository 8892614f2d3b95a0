#pragma once

#include <QImage>
#include <QRect>
#include <QRegion>
#include <QSize>
#include <optional>

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
/// A grid is drawn tile by tile from its one tile. A tile ends where its neighbour begins, on a
/// whole device pixel:  edge(column) = round(column * width / columns).
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
        qint64 tile = 0;
        int columns = 0;
        int rows = 0;
        bool operator==(const Identity&) const = default;
    };

    void Notice(const Pixels& pixels);
    void DrawStale(const Pixels& pixels);
    void DrawPart(const Pixels& pixels, const QRect& part);
    void DrawTile(const QImage& tile, QSize size, const QRect& part, QPoint at);
    struct Steps;
    /// A level of the pyramid and how it is drawn from.
    struct Source {
        int level;
        bool isProvisional;
    };
    Source SourceFor(const QImage& tile, const Steps& full, const QRect& part);
    Filter FilterFor(double step) const;
    bool IsReusable(QSize size, Quality quality);

    Enlargement enlargement_;
    Identity identity_;
    Pyramid pyramid_;
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
        int level;
        QRect part;
    };
    std::optional<Pending> pending_;
};

}  // namespace kadrona::imaging::view
