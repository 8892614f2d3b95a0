#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "core/templates/LayerPosition.h"
#include "tests/core/GeometryPrinting.h"

namespace kadrona::core {
namespace {

using namespace Qt::StringLiterals;

TEST(LayerPosition, SectionNamesTemplateAndPhotoSize) {
    EXPECT_EQ(LayerSection(u"T"_s, {1200, 1600}), u"T 1200x1600"_s);
    EXPECT_EQ(LayerSection(u"50 %1 x%2"_s, {3, 4}), u"50 %1 x%2 3x4"_s);
}

TEST(LayerPosition, RestoredWidthCarriesItsHeight) {
    const QSize canvas(400, 500);
    const QSize drawn(400, 500);
    struct Case {
        const char* name;
        QRect saved;
        QSize canvas;
        QRect restored;
    };
    const std::vector<Case> table = {
        {"saved height is not used", {10, 20, 300, 999}, canvas, {10, 20, 300, 375}},
        {"negative place", {-30, -40, 800, 1}, canvas, {-30, -40, 800, 1000}},
        {"nothing saved", {0, 0, 0, 0}, canvas, {0, 0, 400, 500}},
        {"no width", {5, 6, 0, 375}, canvas, {5, 6, 400, 500}},
        {"no height", {5, 6, 300, 0}, canvas, {5, 6, 400, 500}},
        {"negative width", {5, 6, -300, 375}, canvas, {5, 6, 400, 500}},
        {"half to the even neighbour below", {0, 0, 5, 1}, {2, 1}, {0, 0, 5, 2}},
        {"half to the even neighbour above", {0, 0, 7, 1}, {2, 1}, {0, 0, 7, 4}},
        {"below the half", {0, 0, 4, 1}, {3, 1}, {0, 0, 4, 1}},
        {"above the half", {0, 0, 5, 1}, {3, 1}, {0, 0, 5, 2}},
        {"no canvas", {1, 2, 300, 300}, {0, 500}, {1, 2, 400, 500}},
    };
    for (const auto& row : table) {
        EXPECT_EQ(RestoredLayerRectangle(row.saved, drawn, row.canvas), row.restored) << row.name;
    }
}

TEST(LayerPosition, RestoredRectangleStaysRepresentable) {
    constexpr int Largest = std::numeric_limits<int>::max();
    QRect saved;
    saved.setCoords(-Largest, Largest - 10, Largest - 1, Largest);
    const QRect restored = RestoredLayerRectangle(saved, {400, 500}, {1, 10000});
    EXPECT_EQ(restored.topLeft(), saved.topLeft());
    EXPECT_EQ(restored.width(), Largest);
    EXPECT_EQ(restored.height(), 10);
}

TEST(LayerPosition, MovedLayerIsPushedBackInsideThePhoto) {
    const QSize photo(1000, 1500);
    struct Case {
        const char* name;
        QRect moved;
        QPoint kept;
    };
    const std::vector<Case> table = {
        {"inside", {10, 20, 350, 450}, {10, 20}},
        {"touching all edges", {0, 0, 1000, 1500}, {0, 0}},
        {"past the left", {-1, 20, 350, 450}, {0, 20}},
        {"past the top", {10, -700, 350, 450}, {10, 0}},
        {"right edge on the photo's", {650, 20, 350, 450}, {650, 20}},
        {"past the right", {651, 20, 350, 450}, {650, 20}},
        {"past the bottom", {10, 1051, 350, 450}, {10, 1050}},
        {"past the lower right corner", {5000, 5000, 350, 450}, {650, 1050}},
        {"wider than the photo", {50, 20, 1200, 450}, {-200, 20}},
        {"wider, moved to the left", {-300, 20, 1200, 450}, {-200, 20}},
        {"higher than the photo", {10, 20, 350, 1600}, {10, -100}},
    };
    for (const auto& row : table) {
        EXPECT_EQ(KeptInsidePhoto(row.moved, photo), QRect(row.kept, row.moved.size())) << row.name;
    }
}

}  // namespace
}  // namespace kadrona::core
