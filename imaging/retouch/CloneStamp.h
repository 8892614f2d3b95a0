#pragma once

#include <QPointF>
#include <memory>
#include <optional>

#include "imaging/document/LayeredImage.h"

namespace kadrona::imaging {

/// A round brush.
struct Brush {
    double diameter = 40;   ///< photo pixels, 1 ... 2000
    double softness = 0.5;  ///< 0 hard edge ... 1 falls off from the middle on
    bool operator==(const Brush&) const = default;
};

/// How much the brush covers at `distance` photo pixels from its middle, 0 ... 1.
double Coverage(const Brush& brush, double distance);

/// The retouch stamp on the photo of a layered image: copies from where the source was taken. The
/// distance between source and target is set by the first stroke after the source was taken and
/// kept for the strokes that follow (an aligned source). A stroke copies the photo as it was when
/// the stroke began, so that overlapping source and target repeat no pattern. Each stroke is one
/// undo step of what it touched; one that changes nothing is none.
///
/// A stroke covers what the brush sweeps over, each pixel as much as where the brush's middle came
/// nearest to it: neither the speed nor going over a place again makes a difference. Distances
/// between source and target are whole pixels, so that what is copied stays sharp.
class CloneStamp {
 public:
    explicit CloneStamp(LayeredImage& image);
    ~CloneStamp();
    CloneStamp(const CloneStamp&) = delete;
    CloneStamp& operator=(const CloneStamp&) = delete;

    /// Positions are photo pixels; (0.5, 0.5) is the middle of the first. A source outside the
    /// photo is not taken.
    void TakeSource(QPointF position);
    bool HasSource() const;
    /// Forgets source and stroke, as for a new photo.
    void Reset();
    /// Where the next dab at `target` copies from; nothing without a source.
    std::optional<QPointF> SourceFor(QPointF target) const;

    /// Begins a stroke with a first dab, where the position may lie outside the photo; false, with
    /// nothing done, where no source was taken or there is no photo. Sizes of a brush beyond their
    /// range are brought into it. Throws platform::Error where memory is short.
    bool BeginStroke(QPointF position, const Brush& brush);
    /// Draws along the way from the last position. What lies outside the photo is left out, as is
    /// what would be copied from there. Does nothing outside a stroke. A photo that was changed
    /// otherwise meanwhile, as by an undo, ends the stroke. Throws platform::Error where memory is
    /// short.
    void ContinueStroke(QPointF position);
    void EndStroke();
    bool IsStroking() const;

 private:
    class Stroke;
    LayeredImage& image_;
    std::optional<QPointF> source_;
    std::optional<QPointF> offset_;
    std::unique_ptr<Stroke> stroke_;
};

}  // namespace kadrona::imaging
