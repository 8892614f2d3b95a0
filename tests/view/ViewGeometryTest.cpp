#include <gtest/gtest.h>

#include "imaging/view/ViewGeometry.h"

namespace kadrona::imaging::view {
namespace {

ViewGeometry Geometry(QSize view, QSize image, double zoom) {
    ViewGeometry geometry;
    geometry.SetView(view, 10);
    geometry.SetImageSize(image);
    geometry.SetZoom(zoom, geometry.ViewCentre());
    return geometry;
}

TEST(ViewGeometry, FitShrinksAndEnlargesUpToTheMargin) {
    ViewGeometry geometry = Geometry({420, 320}, {4000, 1000}, 1.0);
    geometry.Fit();
    EXPECT_EQ(geometry.ImageRectangle(), QRect(10, 110, 400, 100));

    geometry.SetImageSize({20, 30});
    geometry.Fit();
    EXPECT_EQ(geometry.ImageRectangle(), QRect(110, 10, 200, 300));
}

TEST(ViewGeometry, ZoomStaysBetweenAnEighthOfTheFitAnd3200Percent) {
    ViewGeometry geometry = Geometry({420, 320}, {4000, 1000}, 1.0);
    geometry.SetZoom(1e-9, {0, 0});
    EXPECT_DOUBLE_EQ(geometry.Zoom(), 0.1 / 8);
    geometry.SetZoom(1e9, {0, 0});
    EXPECT_DOUBLE_EQ(geometry.Zoom(), 32.0);

    // A picture whose fit is enlarged as far as it goes can still be seen at 100 %.
    geometry = Geometry({420, 320}, {1, 1}, 1.0);
    EXPECT_EQ(geometry.ImageRectangle().size(), QSize(1, 1));
}

TEST(ViewGeometry, ManySmallZoomStepsDoNotDriftFromThePoint) {
    ViewGeometry geometry = Geometry({1000, 800}, {6000, 4000}, 0.3);
    const QPointF fixed(333, 444);
    const QPointF before = geometry.ToImage(fixed);
    for (int i = 0; i < 400; ++i) {
        geometry.SetZoom(geometry.Zoom() * 1.01, fixed);
    }
    // Half a device pixel of rounding at the start and at the end.
    EXPECT_NEAR(geometry.ToImage(fixed).x(), before.x(), 0.5 / 0.3 + 0.5 / geometry.Zoom());
    EXPECT_NEAR(geometry.ToImage(fixed).y(), before.y(), 0.5 / 0.3 + 0.5 / geometry.Zoom());
}

TEST(ViewGeometry, PanningKeepsAQuarterOfTheView) {
    ViewGeometry geometry = Geometry({400, 200}, {4000, 100}, 1.0);
    geometry.Place({0, 0}, {9999, 9999});
    EXPECT_EQ(geometry.ImageRectangle(), QRect(100, 50, 4000, 100)) << "lower axis centred";
    geometry.Place({0, 0}, {-9999, -9999});
    EXPECT_EQ(geometry.ImageRectangle().right() + 1, 300);
}

TEST(ViewGeometry, ZoomingThroughTheViewsSizeDoesNotJump) {
    ViewGeometry geometry = Geometry({400, 400}, {1000, 1000}, 0.399);
    int previous = geometry.Origin().x();
    for (int step = 0; step < 22; ++step) {
        const double zoom = 0.399 + 0.0005 * step;
        geometry.SetZoom(zoom, {0, 0});
        EXPECT_LE(std::abs(geometry.Origin().x() - previous), 1) << zoom;
        previous = geometry.Origin().x();
    }
}

TEST(ViewGeometry, ANewViewSizeKeepsTheMiddle) {
    ViewGeometry geometry = Geometry({400, 400}, {6000, 6000}, 1.0);
    geometry.Place({1234, 2345}, geometry.ViewCentre());
    geometry.SetView({900, 700}, 10);
    EXPECT_EQ(geometry.ToImage(geometry.ViewCentre()), QPointF(1234, 2345));
}

TEST(ViewGeometry, AMovedRectangleKeepsItsDeviceSize) {
    const ViewGeometry geometry = Geometry({400, 400}, {6000, 6000}, 0.37);
    for (int x = 0; x < 100; ++x) {
        EXPECT_EQ(geometry.ToDevice(QRect(x, 0, 350, 450)).size(), QSize(130, 167)) << x;
    }
}

TEST(SteppedZoom, ThreeNotchesDoubleAndAStepAcross100PercentStopsThere) {
    EXPECT_DOUBLE_EQ(SteppedZoom(SteppedZoom(2.0, 1.5), 1.5), 4.0);
    EXPECT_DOUBLE_EQ(SteppedZoom(0.9, 1), 1.0);
    EXPECT_DOUBLE_EQ(SteppedZoom(1.1, -1), 1.0);
    EXPECT_GT(SteppedZoom(1.0, 0.1), 1.0);
    EXPECT_LT(SteppedZoom(1.0 + 1e-9, -0.1), 1.0 - 1e-3);
}

}  // namespace
}  // namespace kadrona::imaging::view
