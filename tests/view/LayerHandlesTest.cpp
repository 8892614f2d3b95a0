#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "imaging/view/LayerHandles.h"

namespace kadrona::imaging::view {
namespace {

constexpr QSize Photo(3000, 2000);

TEST(HandleLayout, FindsEachHandleAtItsPlaceAndTheBodyNowhere) {
    const HandleLayout layout(QRect(100, 200, 300, 400), 16);
    const std::vector<std::pair<QPointF, Handle>> cases = {
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
    struct Case {
        const char* name;
        Handle handle;
        QPointF move;
        QRect expected;
    };
    const std::vector<Case> cases = {
        {"body", {}, {9.7, -5}, {110, 95, 350, 450}},
        {"bottom right", {1, 1}, {350, 450}, {100, 100, 700, 900}},
        {"top left", {-1, -1}, {-350, -450}, {-250, -350, 700, 900}},
        {"top right", {1, -1}, {-70, 90}, {100, 190, 280, 360}},
        {"bottom left", {-1, 1}, {70, -90}, {170, 100, 280, 360}},
        {"right", {1, 0}, {350, 77}, {100, -125, 700, 900}},
        {"left", {-1, 0}, {70, 0}, {170, 145, 280, 360}},
        {"bottom", {0, 1}, {-5, 90}, {65, 100, 420, 540}},
        {"top", {0, -1}, {0, 90}, {135, 190, 280, 360}},
    };
    for (const auto& [name, handle, move, expected] : cases) {
        const LayerDrag drag(start, handle, {50, 60}, Photo);
        EXPECT_EQ(drag.RectangleAt(QPointF(50, 60) + move), expected) << name;
        EXPECT_EQ(drag.RectangleAt({50, 60}), start) << name;
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
