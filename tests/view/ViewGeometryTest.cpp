#include <gtest/gtest.h>

#include <algorithm>

#include "imaging/view/LayerHandles.h"
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

constexpr QSize Photo(3000, 2000);

TEST(HandleLayout, FindsEachHandleAtItsPlaceAndTheBodyNowhere) {
    const HandleLayout layout(QRect(100, 200, 300, 400), 16);
    const std::pair<QPointF, Handle> cases[] = {
        {{100, 200}, {-1, -1}}, {{250, 200}, {0, -1}}, {{400, 200}, {1, -1}},
        {{100, 400}, {-1, 0}},  {{400, 400}, {1, 0}},  {{100, 600}, {-1, 1}},
        {{250, 600}, {0, 1}},   {{400, 600}, {1, 1}},  {{407, 607}, {1, 1}},
    };
    for (const auto& [point, handle] : cases) {
        EXPECT_EQ(layout.HandleAt(point), handle) << point.x() << ", " << point.y();
    }
    EXPECT_FALSE(layout.HandleAt({250, 400}));
    EXPECT_FALSE(layout.HandleAt({409, 609}));
}

TEST(HandleLayout, TheMiddleOfATinyFrameStaysFree) {
    const HandleLayout layout(QRect(100, 100, 4, 4), 16);
    EXPECT_EQ(layout.Places().size(), 4U);
    EXPECT_FALSE(layout.HandleAt({102, 102}));
    EXPECT_TRUE(layout.HandleAt({126, 126}));
}

TEST(LayerDrag, HandlesKeepTheOppositeSideAndTheBodyMovesByWholePixels) {
    const QRect start(100, 100, 350, 450);
    const std::tuple<Handle, QPointF, QRect> cases[] = {
        {{}, {9.7, -5}, {110, 95, 350, 450}},
        {{1, 1}, {350, 450}, {100, 100, 700, 900}},
        {{-1, -1}, {-350, -450}, {-250, -350, 700, 900}},
        {{1, -1}, {-70, 90}, {100, 190, 280, 360}},
        {{-1, 1}, {70, -90}, {170, 100, 280, 360}},
        {{1, 0}, {350, 77}, {100, -125, 700, 900}},
        {{-1, 0}, {70, 0}, {170, 145, 280, 360}},
        {{0, 1}, {-5, 90}, {65, 100, 420, 540}},
        {{0, -1}, {0, 90}, {135, 190, 280, 360}},
    };
    for (const auto& [handle, move, expected] : cases) {
        const LayerDrag drag(start, handle, {50, 60}, Photo);
        EXPECT_EQ(drag.RectangleAt(QPointF(50, 60) + move), expected)
            << handle.x << ", " << handle.y;
        EXPECT_EQ(drag.RectangleAt({50, 60}), start);
    }
}

TEST(LayerDrag, KeepsTheAspectRatioWithinAPixelAndItsBounds) {
    for (const QRect& start : {QRect(0, 0, 350, 450), QRect(5, 5, 413, 171)}) {
        const double ratio = static_cast<double>(start.width()) / start.height();
        for (const Handle handle : {Handle{1, 1}, Handle{-1, 0}, Handle{0, -1}}) {
            const LayerDrag drag(start, handle, {0, 0}, Photo);
            for (int step = -500; step < 500; ++step) {
                const double way = step * 37.3;
                const QSize size = drag.RectangleAt({way, way * 0.8}).size();
                ASSERT_NEAR(size.width(), size.height() * ratio, std::max(1.0, ratio)) << way;
                ASSERT_GE(std::min(size.width(), size.height()), LayerDrag::MinimumSide) << way;
                ASSERT_LE(std::max(size.width(), size.height()), 4 * 3000) << way;
            }
        }
    }
}

TEST(LayerDrag, ARectangleBelowTheMinimumGrowsButDoesNotJump) {
    const LayerDrag drag({0, 0, 8, 8}, {1, 1}, {8, 8}, Photo);
    EXPECT_EQ(drag.RectangleAt({8, 8}), QRect(0, 0, 8, 8));
    EXPECT_EQ(drag.RectangleAt({-100, -100}), QRect(0, 0, 8, 8));
    EXPECT_EQ(drag.RectangleAt({20, 20}), QRect(0, 0, 20, 20));
}

}  // namespace
}  // namespace kadrona::imaging::view
