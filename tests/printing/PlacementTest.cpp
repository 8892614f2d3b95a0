#include <gtest/gtest.h>

#include "printing/Placement.h"
#include "printing/PrinterLayer.h"

using namespace kadrona::printing;

namespace {

TEST(PlacementTest, CentresWithoutScaling) {
    struct Row {
        const char* name;
        QSizeF paper;
        QSizeF picture;
        QRectF place;
    };
    const Row rows[] = {
        {"A6, 2 x 4 of 35 x 45", {105, 148}, {140, 90}, {-17.5, 29, 140, 90}},
        {"A6 landscape", {148, 105}, {140, 90}, {4, 7.5, 140, 90}},
        {"as large as the paper", {148, 105}, {148, 105}, {0, 0, 148, 105}},
        {"too high", {148, 105}, {10, 105.1}, {69, -0.05, 10, 105.1}},
    };
    for (const Row& row : rows) {
        const QRectF place = CentredOnPaper(row.paper, row.picture);
        EXPECT_NEAR(place.x(), row.place.x(), 1e-9) << row.name;
        EXPECT_NEAR(place.y(), row.place.y(), 1e-9) << row.name;
        EXPECT_EQ(place.size(), row.place.size()) << row.name;
    }
}

TEST(PlacementTest, APictureMeasuresItsPixelsDividedByTheResolution) {
    PrintImage image;
    image.tile = QImage(413, 531, QImage::Format_RGB32);
    image.columns = 4;
    image.rows = 2;
    image.dotsPerInch = 300;
    EXPECT_NEAR(image.Millimetres().width(), 139.8693, 1e-4);
    EXPECT_NEAR(image.Millimetres().height(), 89.916, 1e-4);
}

}  // namespace
