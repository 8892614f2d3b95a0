#pragma once

#include <QImage>
#include <array>
#include <cstdint>

namespace kadrona::imaging {

/// Draws a picture turned about its middle onto a canvas, which has the same middle. Bicubic; the
/// picture's edges blend into the background over the width of a pixel.
class RotationSampler {
 public:
    /// `source` is of 32 bits a pixel, as Pixels holds it, and `background` opaque.
    RotationSampler(const QImage& source, QSize canvas, double degreesCounterClockwise,
                    QRgb background);

    /// Draws a part of the canvas; `bits` is the canvas's first pixel. Safe to call from several
    /// threads at once for parts that do not overlap.
    void Draw(const QRect& part, uchar* bits, qsizetype bytesPerLine) const;

 private:
    static constexpr int PhaseBits = 9;
    static constexpr int PhaseCount = 1 << PhaseBits;

    /// The weights of four neighbouring pixels for a position between the middle two.
    struct Phase {
        std::array<float, 4> weights;
        /// Two and two, times 2^14, in the halves of a word.
        std::array<std::int32_t, 2> pairs;
    };

    /// A range of columns, end exclusive.
    struct Span {
        int begin;
        int end;
    };

    /// Where a canvas pixel's middle lies in the source, in pixels.
    struct Position {
        double x;
        double y;
    };

    Position SourceOf(int x, int y) const;
    Span ColumnsWithin(double margin, Span columns, int y) const;
    void DrawInside(Span columns, int y, QRgb* row) const;
    double PartBeyond(double distance) const;
    /// The part of a canvas pixel between 0 and `length` in a direction of the source.
    double Covered(double position, int length) const;
    QRgb Edge(Position position) const;

    QImage source_;
    QSize canvas_;
    double cosine_;
    double sine_;
    QRgb background_;
    QRgb opacity_;
    std::array<Phase, PhaseCount> phases_;
};

}  // namespace kadrona::imaging
