#pragma once

#include <QImage>
#include <QPainter>
#include <QRect>

namespace kadrona::imaging::view {

/// A soft shadow around a rectangle, drawn from one small picture: its corners as they are, its
/// sides stretched.
class Shadow {
 public:
    /// Draws what of the shadow lies outside of `rectangle`; both in device pixels.
    /// `deviceScale`: device pixels per logical pixel.
    void Draw(QPainter& painter, const QRect& rectangle, double deviceScale);

    /// How far the shadow reaches, in logical pixels.
    static constexpr int Reach = 12;

 private:
    void Prepare(double deviceScale);

    double deviceScale_ = 0;
    int reach_ = 0;
    /// A square with a side of 4 reaches + 1, in its middle the shadow's rectangle of 2 reaches + 1.
    QImage patch_;
};

}  // namespace kadrona::imaging::view
