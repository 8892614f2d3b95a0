// Where a template lies on a photo, and what a sheet's measures are.

#include <gtest/gtest.h>

#include <limits>
#include <tuple>

#include "core/sheet/Rotation.h"
#include "core/sheet/SheetLayout.h"
#include "core/templates/LayerPosition.h"
#include "tests/support/PixelMatchers.h"

namespace kadrona::core {
namespace {

using namespace Qt::StringLiterals;

constexpr int LargestInt = std::numeric_limits<int>::max();

TEST(LayerPosition, RestoredWidthCarriesItsHeight) {
    struct Row {
        const char* name;
        QRect saved;
        QSize canvas;
        QRect restored;
    };
    for (const auto& row :
         {Row{"saved height is not used", {10, 20, 300, 999}, {4, 5}, {10, 20, 300, 375}},
          Row{"negative place", {-30, -40, 800, 1}, {4, 5}, {-30, -40, 800, 1000}},
          Row{"nothing saved", {0, 0, 0, 0}, {4, 5}, {0, 0, 400, 500}},
          Row{"no height", {5, 6, 300, 0}, {4, 5}, {5, 6, 400, 500}},
          Row{"negative width", {5, 6, -300, 375}, {4, 5}, {5, 6, 400, 500}},
          Row{"half to the even neighbour below", {0, 0, 5, 1}, {2, 1}, {0, 0, 5, 2}},
          Row{"half to the even neighbour above", {0, 0, 7, 1}, {2, 1}, {0, 0, 7, 4}},
          Row{"below the half", {0, 0, 4, 1}, {3, 1}, {0, 0, 4, 1}},
          Row{"above the half", {0, 0, 5, 1}, {3, 1}, {0, 0, 5, 2}},
          Row{"no canvas", {1, 2, 300, 300}, {0, 500}, {1, 2, 400, 500}},
          Row{"as wide and as low as can be held",
              {QPoint(-LargestInt, LargestInt - 10), QPoint(LargestInt - 1, LargestInt)},
              {1, 10000},
              {-LargestInt, LargestInt - 10, LargestInt, 10}}}) {
        EXPECT_EQ(RestoredLayerRectangle(row.saved, {400, 500}, row.canvas), row.restored)
            << row.name;
    }
}

TEST(LayerPosition, MovedLayerIsPushedBackInsideThePhoto) {
    for (const auto& [moved, kept] : {std::pair(QRect(10, 20, 350, 450), QPoint(10, 20)),
                                      {{0, 0, 1000, 1500}, {0, 0}},
                                      {{-1, 20, 350, 450}, {0, 20}},
                                      {{10, -700, 350, 450}, {10, 0}},
                                      {{650, 1050, 350, 450}, {650, 1050}},
                                      {{651, 1051, 350, 450}, {650, 1050}},
                                      {{50, 20, 1200, 450}, {-200, 20}},  // wider than the photo
                                      {{-300, 20, 1200, 450}, {-200, 20}},
                                      {{10, 20, 350, 1600}, {10, -100}}}) {
        EXPECT_EQ(KeptInsidePhoto(moved, {1000, 1500}), QRect(kept, moved.size()));
    }
}

TEST(SheetLayout, NamesAreRowsByColumns) {
    QStringList names;
    for (int index = 0; index < 8; ++index) {
        const auto layout = SheetLayoutAt(index).value();
        names += QString(layout.name);
        EXPECT_EQ(names.last(), u"%1 x %2"_s.arg(layout.rows).arg(layout.columns));
        EXPECT_EQ(SheetLayoutIndexOf(names.last()), index);
    }
    EXPECT_EQ(names.join(u','), u"2 x 4,2 x 3,2 x 2,1 x 4,1 x 3,1 x 2,1 x 1,3 x 3"_s);
    EXPECT_EQ(SheetLayoutIndexOf(u"4 x 2"), -1);
    EXPECT_FALSE(SheetLayoutAt(8) || SheetLayoutAt(-1));
}

TEST(SheetLayout, PrintResolutionMakesThePhotoAsWideAsItsTemplate) {
    using Row = std::tuple<int, int, int>;
    for (const auto& [pixels, tenthsOfMillimetre, dotsPerInch] :
         {Row{413, 350, 300}, Row{827, 350, 600}, Row{600, 508, 300}, Row{601, 508, 301},
          Row{556, 350, 403}, Row{494, 350, 359}, Row{1, 350, 1}, Row{1, 509, 0}, Row{0, 350, 0},
          Row{413, 0, 0}, Row{413, -350, 0}, Row{LargestInt, 254, LargestInt},
          Row{LargestInt, 253, 0}}) {  // beyond every integer
        EXPECT_EQ(PrintResolution(pixels, {tenthsOfMillimetre}).value, dotsPerInch)
            << pixels << " on " << tenthsOfMillimetre;
    }
}

TEST(SheetLayout, BorderSurroundsEveryCopyButTheSinglePhoto) {
    const QSize photo(413, 531);
    for (const auto& [frame, layout, bordered] : {std::tuple(25, 0, QSize(438, 556)),
                                                  {1, 7, {414, 532}},
                                                  {25, -1, {438, 556}},
                                                  {25, SinglePhotoLayout, photo},
                                                  {0, 0, photo},
                                                  {-25, 0, photo},
                                                  {LargestInt, 0, {LargestInt, LargestInt}}}) {
        EXPECT_EQ(BorderedSize(photo, frame, layout), bordered) << frame << ' ' << layout;
    }
}

TEST(RotationPreview, HasALongSideOf300AndATruncatedShortOne) {
    for (const auto& [photo, preview] : {std::pair(QSize(1000, 1500), QSize(200, 300)),
                                         {{1500, 1000}, {300, 200}},
                                         {{999, 1000}, {299, 300}},
                                         {{700, 700}, {300, 300}},
                                         {{1, 100000}, {1, 300}},
                                         {{100000, 1}, {300, 1}}}) {
        EXPECT_EQ(RotationPreviewSize(photo), preview);
    }
}

}  // namespace
}  // namespace kadrona::core
