#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "core/sheet/SheetLayout.h"
#include "tests/core/GeometryPrinting.h"

namespace kadrona::core {
namespace {

using namespace Qt::StringLiterals;

constexpr int LargestInteger = std::numeric_limits<int>::max();

TEST(SheetLayout, EveryIndexHasItsNameAndGrid) {
    const struct {
        QString name;
        int columns, rows;
    } table[] = {{u"2 x 4"_s, 4, 2}, {u"2 x 3"_s, 3, 2}, {u"2 x 2"_s, 2, 2}, {u"1 x 4"_s, 4, 1},
                 {u"1 x 3"_s, 3, 1}, {u"1 x 2"_s, 2, 1}, {u"1 x 1"_s, 1, 1}, {u"3 x 3"_s, 3, 3}};
    int index = 0;
    for (const auto& row : table) {
        SCOPED_TRACE(row.name.toStdString());
        const auto layout = SheetLayoutAt(index);
        ASSERT_TRUE(layout);
        EXPECT_EQ(QString(layout->name), row.name);
        EXPECT_EQ(layout->columns, row.columns);
        EXPECT_EQ(layout->rows, row.rows);
        EXPECT_EQ(SheetLayoutIndexOf(row.name), index);
        ++index;
    }
    EXPECT_FALSE(SheetLayoutAt(index));
    EXPECT_FALSE(SheetLayoutAt(-1));
    EXPECT_EQ(SheetLayoutIndexOf(u"4 x 2"), -1);
    EXPECT_EQ(SheetLayoutIndexOf(u""), -1);
}

TEST(SheetLayout, PrintResolutionMakesThePhotoAsWideAsItsTemplate) {
    struct Case {
        const char* name;
        int pixels;
        int tenthsOfMillimetre;
        int dotsPerInch;
    };
    const std::vector<Case> table = {
        {"35 mm at 300 dpi", 413, 350, 300},
        {"35 mm at 600 dpi", 827, 350, 600},
        {"2 inches at 300 dpi", 600, 508, 300},
        {"2 inches, one pixel more is half a dot more", 601, 508, 301},
        {"403.497", 556, 350, 403},
        {"358.503", 494, 350, 359},
        {"less than one dot per inch", 1, 350, 1},
        {"rounded to nothing", 1, 509, 0},
        {"no photo", 0, 350, 0},
        {"no template", 413, 0, 0},
        {"inverted template", 413, -350, 0},
        {"largest integer", LargestInteger, 254, LargestInteger},
        {"beyond every integer", LargestInteger, 253, 0},
    };
    for (const auto& row : table) {
        EXPECT_EQ(PrintResolution(row.pixels, {row.tenthsOfMillimetre}).value, row.dotsPerInch)
            << row.name;
    }
}

TEST(SheetLayout, BorderSurroundsEveryCopyButTheSinglePhoto) {
    const QSize photo(413, 531);
    const QSize bordered(438, 556);
    for (const int layout : {0, 1, 2, 3, 4, 5, 7, -1, 8}) {
        EXPECT_EQ(BorderedSize(photo, 25, layout), bordered) << "layout " << layout;
    }
    EXPECT_EQ(BorderedSize(photo, 0, 0), photo);
    EXPECT_EQ(BorderedSize(photo, -25, 0), photo);
    EXPECT_EQ(BorderedSize(photo, 25, SinglePhotoLayout), photo);
    EXPECT_EQ(BorderedSize(photo, LargestInteger, 0), QSize(LargestInteger, LargestInteger));
}

}  // namespace
}  // namespace kadrona::core
