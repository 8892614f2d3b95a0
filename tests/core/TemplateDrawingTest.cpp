#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <vector>

#include "core/templates/TemplateDrawing.h"
#include "tests/core/GeometryPrinting.h"

namespace kadrona::core {
namespace {

using Rows = std::vector<std::string>;

constexpr qint32 White = 0xffffff;
constexpr qint32 Red = 0x0000ff;
constexpr qint32 Blue = 0xff0000;
constexpr qint32 Solid = 0;
constexpr qint32 Clear = 1;
constexpr qint32 Least = std::numeric_limits<qint32>::min();
constexpr qint32 Largest = std::numeric_limits<qint32>::max();

TMask Element(quint8 shape, qint32 left, qint32 top, qint32 right, qint32 bottom,
              qint32 colour = Red, qint32 brushStyle = Solid, qint32 penWidth = 1) {
    TMask element;
    element.shape = shape;
    element.left = left;
    element.top = top;
    element.right = right;
    element.bottom = bottom;
    element.colour = colour;
    element.brushStyle = brushStyle;
    element.penWidth = penWidth;
    return element;
}

TMask Canvas(qint32 right, qint32 bottom, qint32 colour = White) {
    return Element(TMask::Rectangle, 0, 0, right, bottom, colour);
}

/// One character a pixel: "." transparent, "R", "B" and "W" the colours, "?" any other.
Rows Picture(const std::vector<TMask>& elements) {
    const std::map<QRgb, char> letters{
        {0x00000000, '.'}, {0xffff0000, 'R'}, {0xff0000ff, 'B'}, {0xffffffff, 'W'}};
    const QImage image = DrawTemplate(elements);
    Rows rows;
    for (int y = 0; y < image.height(); ++y) {
        std::string& row = rows.emplace_back();
        for (int x = 0; x < image.width(); ++x) {
            const auto letter = letters.find(image.pixel(x, y));
            row += letter == letters.end() ? '?' : letter->second;
        }
    }
    return rows;
}

TEST(TemplateDrawing, CanvasIsTheFirstElement) {
    for (const TMask& first :
         {Canvas(350, 450), Element(2, 100, 200, 450, 650), Element(0, 350, 450, 0, 0)}) {
        EXPECT_EQ(TemplateCanvas({first, Canvas(1, 1)}), QSize(350, 450));
    }
    EXPECT_EQ(TemplateCanvas({Canvas(10000, 1)}), QSize(10000, 1));
    EXPECT_THROW(TemplateCanvas({}), TemplateFileError);
    for (const TMask& first :
         {Canvas(0, 450), Canvas(350, 0), Canvas(10001, 450), Element(0, Least, 0, Largest, 450),
          Element(0, 0, Largest, 350, Least)}) {
        EXPECT_THROW(DrawTemplate({first}), TemplateFileError)
            << first.right << 'x' << first.bottom;
    }
}

TEST(TemplateDrawing, FilledCanvasCoversExactlyItsSize) {
    const QImage image = DrawTemplate({Canvas(350, 450, Blue)});
    QImage expected(350, 450, QImage::Format_ARGB32_Premultiplied);
    expected.fill(0xff0000ff);
    EXPECT_EQ(image, expected);
}

TEST(TemplateDrawing, RightAndBottomEdgeAreOutside) {
    const Rows rectangle{".......", "..RRR..", "..R.R..", "..RRR..", "......."};
    const auto drawn = [](const TMask& element) { return Picture({Canvas(7, 5), element}); };
    EXPECT_EQ(drawn(Element(TMask::Rectangle, 2, 1, 5, 4, Red, Clear)), rectangle);
    EXPECT_EQ(drawn(Element(TMask::Rectangle, 2, 1, 5, 4, Red, Clear, 0)), rectangle);
    EXPECT_EQ(drawn(Element(TMask::Rectangle, 5, 4, 2, 1, Red, Clear)), rectangle)
        << "corners the other way round";
    EXPECT_EQ(drawn(Element(TMask::Rectangle, 2, 1, 3, 2)),
              (Rows{".......", "..R....", ".......", ".......", "......."}));
    EXPECT_EQ(drawn(Element(TMask::Ellipse, 1, 0, 6, 5)),
              (Rows{"..RRR..", ".RRRRR.", ".RRRRR.", ".RRRRR.", "..RRR.."}));
    const Rows nothing(5, ".......");
    EXPECT_EQ(drawn(Element(2, 2, 1, 5, 4)), nothing) << "unknown shape";
    EXPECT_EQ(drawn(Element(TMask::Rectangle, 2, 1, 2, 4)), nothing) << "no width";
    EXPECT_EQ(drawn(Element(TMask::Ellipse, 2, 4, 5, 4)), nothing) << "no height";
}

TEST(TemplateDrawing, NegativePenWidthLeavesTheWidthBefore) {
    const Rows thin{".......", ".RRRRR.", ".R...R.", ".R...R.", ".R...R.", ".RRRRR.", "......."};
    const Rows thick{"RRRRRRR", "RRRRRRR", "RRRRRRR", "RRR.RRR", "RRRRRRR", "RRRRRRR", "RRRRRRR"};
    const auto square = [](qint32 penWidth) {
        return Element(TMask::Rectangle, 1, 1, 6, 6, Red, Clear, penWidth);
    };
    TMask canvas = Canvas(7, 7);
    canvas.penWidth = -1;
    const TMask outside = Element(TMask::Rectangle, 90, 90, 99, 99, Blue, Clear, 3);
    EXPECT_EQ(Picture({canvas, square(-5)}), thin);
    EXPECT_EQ(Picture({canvas, outside, square(-5)}), thick);
    EXPECT_EQ(Picture({canvas, outside, square(1)}), thin);
    EXPECT_EQ(Picture({canvas, square(3)}), thick);
}

TEST(TemplateDrawing, WhiteIsTransparentWhereverItEndsUp) {
    EXPECT_EQ(Picture({Canvas(4, 2, Red), Element(0, 1, 0, 3, 2, White), Element(0, 2, 0, 4, 1)}),
              (Rows{"R.RR", "R..R"}));
    const QImage nearlyWhite = DrawTemplate({Canvas(1, 1, 0xfeffff)});
    EXPECT_EQ(nearlyWhite.pixel(0, 0), 0xfffffffeU);
    EXPECT_EQ(Picture({Canvas(1, 1, 0x7f0000ff)}), Rows{"R"}) << "the highest byte is no colour";
}

TEST(TemplateDrawing, FirstElementFillsItsRectangleWhateverItsShape) {
    EXPECT_EQ(Picture({Element(TMask::Ellipse, 0, 0, 3, 3, Blue)}), (Rows{"BBB", "BBB", "BBB"}));
    EXPECT_EQ(Picture({Element(2, 0, 0, 2, 2, Blue)}), (Rows{"BB", "BB"}));
    EXPECT_EQ(Picture({Element(2, 0, 0, 2, 2, Blue, Clear)}), (Rows{"..", ".."}));
    EXPECT_EQ(Picture({Element(0, 1, 1, 4, 3, Blue)}), (Rows{"...", ".BB"})) << "moved";
}

TEST(TemplateDrawing, BrushStylesHatchTheInside) {
    struct Case {
        const char* name;
        qint32 style;
        bool alongRow, alongColumn, alongFalling, alongRising;
        int alphaOfEven;
    };
    constexpr int Hatched = -1;
    const std::vector<Case> table = {
        {"horizontal", 2, true, false, false, false, Hatched},
        {"vertical", 3, false, true, false, false, Hatched},
        {"forward diagonal", 4, false, false, true, false, Hatched},
        {"backward diagonal", 5, false, false, false, true, Hatched},
        {"cross", 6, false, false, false, false, Hatched},
        {"diagonal cross", 7, false, false, false, false, Hatched},
        {"solid", 0, true, true, true, true, 255},
        {"clear", 1, true, true, true, true, 0},
        {"beyond the last", 8, true, true, true, true, 0},
        {"negative", -1, true, true, true, true, 0},
    };
    for (const auto& row : table) {
        SCOPED_TRACE(row.name);
        const QImage alpha =
            DrawTemplate({Canvas(24, 24), Element(0, 0, 0, 24, 24, Red, row.style)})
                .convertToFormat(QImage::Format_Alpha8);
        // Whether the inside of the outline is the same a step further.
        const auto repeats = [&alpha](int dx, int dy) {
            return alpha.copy(2, 1, 20, 21) == alpha.copy(2 + dx, 1 + dy, 20, 21);
        };
        EXPECT_EQ(repeats(1, 0), row.alongRow);
        EXPECT_EQ(repeats(0, 1), row.alongColumn);
        EXPECT_EQ(repeats(1, 1), row.alongFalling);
        EXPECT_EQ(repeats(-1, 1), row.alongRising);
        if (row.alphaOfEven != Hatched) {
            EXPECT_EQ(qAlpha(alpha.pixel(5, 5)), row.alphaOfEven);
        }
    }
}

TEST(TemplateDrawing, WhatWouldTakeLongIsRefused) {
    std::vector<TMask> elements(1000, Canvas(1000, 1000));
    EXPECT_NO_THROW(RequireQuickDrawing(elements, 1));
    elements.push_back(Element(TMask::Rectangle, 0, 0, 1, 1, Red, Solid, 30'000));
    EXPECT_THROW(RequireQuickDrawing(elements, 1), TemplateFileError) << "a wide pen counts";
    elements.assign(10'001, Canvas(1, 1));
    EXPECT_THROW(DrawTemplate(elements), TemplateFileError);
}

TEST(TemplateDrawing, HostileCoordinatesAreDrawnAsFarAsVisible) {
    EXPECT_EQ(Picture({Canvas(3, 2), Element(0, Least, Least, Largest, Largest)}),
              (Rows{"RRR", "RRR"}));
    EXPECT_EQ(Picture({Canvas(3, 2), Element(0, Least, 1, Largest, 2, Red, Solid, Largest)}),
              (Rows{"RRR", "RRR"}));
    EXPECT_EQ(Picture({Canvas(3, 2), Element(1, Least, Least, Largest, Largest, Red, Clear)}),
              (Rows{"...", "..."}));
}

}  // namespace
}  // namespace kadrona::core
