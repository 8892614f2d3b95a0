#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "core/TemplateDrawing.h"
#include "tests/core/GeometryPrinting.h"

namespace kadrona::core {
namespace {

using Rows = std::vector<std::string>;

constexpr qint32 White = 0xffffff;
constexpr qint32 Red = 0x0000ff;
constexpr qint32 Blue = 0xff0000;
constexpr qint32 Solid = 0;
constexpr qint32 Clear = 1;

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
    const QImage image = DrawTemplate(elements);
    Rows rows;
    for (int y = 0; y < image.height(); ++y) {
        std::string& row = rows.emplace_back();
        for (int x = 0; x < image.width(); ++x) {
            switch (image.pixel(x, y)) {
                case 0x00000000:
                    row += '.';
                    break;
                case 0xffff0000:
                    row += 'R';
                    break;
                case 0xff0000ff:
                    row += 'B';
                    break;
                case 0xffffffff:
                    row += 'W';
                    break;
                default:
                    row += '?';
            }
        }
    }
    return rows;
}

TEST(TemplateDrawing, CanvasIsTheFirstElement) {
    constexpr qint32 Least = std::numeric_limits<qint32>::min();
    constexpr qint32 Largest = std::numeric_limits<qint32>::max();
    EXPECT_EQ(TemplateCanvas({Canvas(350, 450), Canvas(1, 1)}), QSize(350, 450));
    EXPECT_EQ(TemplateCanvas({Element(2, 100, 200, 450, 650)}), QSize(350, 450));
    EXPECT_EQ(TemplateCanvas({Element(0, 350, 450, 0, 0)}), QSize(350, 450));
    EXPECT_EQ(TemplateCanvas({Canvas(10000, 1)}), QSize(10000, 1));
    EXPECT_THROW(TemplateCanvas({}), TemplateFileError);
    EXPECT_THROW(TemplateCanvas({Canvas(0, 450)}), TemplateFileError);
    EXPECT_THROW(TemplateCanvas({Canvas(350, 0)}), TemplateFileError);
    EXPECT_THROW(TemplateCanvas({Canvas(10001, 450)}), TemplateFileError);
    EXPECT_THROW(TemplateCanvas({Element(0, Least, 0, Largest, 450)}), TemplateFileError);
    EXPECT_THROW(DrawTemplate({Element(0, 0, Largest, 350, Least)}), TemplateFileError);
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
    // What a brush of each ordinal paints inside a 24 by 24 outline: its rows, columns or
    // diagonals.
    const auto inside = [](qint32 brushStyle) {
        return DrawTemplate({Canvas(24, 24), Element(0, 0, 0, 24, 24, Red, brushStyle)})
            .copy(1, 1, 22, 22);
    };
    const auto painted = [](const QImage& image, int x, int y) {
        return qAlpha(image.pixel(x, y));
    };
    const auto repeats = [&painted](const QImage& image, int dx, int dy) {
        for (int y = 0; y < 21; ++y) {
            for (int x = 1; x < 21; ++x) {
                if (painted(image, x, y) != painted(image, x + dx, y + dy)) {
                    return false;
                }
            }
        }
        return true;
    };
    struct Case {
        const char* name;
        qint32 style;
        bool alongRow, alongColumn, alongFalling, alongRising;
    };
    const std::vector<Case> table = {
        {"horizontal", 2, true, false, false, false},
        {"vertical", 3, false, true, false, false},
        {"forward diagonal", 4, false, false, true, false},
        {"backward diagonal", 5, false, false, false, true},
        {"cross", 6, false, false, false, false},
        {"diagonal cross", 7, false, false, false, false},
        {"solid", 0, true, true, true, true},
        {"clear", 1, true, true, true, true},
    };
    for (const auto& row : table) {
        const QImage image = inside(row.style);
        EXPECT_EQ(repeats(image, 1, 0), row.alongRow) << row.name;
        EXPECT_EQ(repeats(image, 0, 1), row.alongColumn) << row.name;
        EXPECT_EQ(repeats(image, 1, 1), row.alongFalling) << row.name;
        EXPECT_EQ(repeats(image, -1, 1), row.alongRising) << row.name;
    }
    EXPECT_EQ(painted(inside(0), 5, 5), 255);
    for (const qint32 noFill : {1, 8, -1}) {
        EXPECT_EQ(painted(inside(noFill), 5, 5), 0) << "style " << noFill;
    }
}

TEST(TemplateDrawing, HostileCoordinatesAreDrawnAsFarAsVisible) {
    constexpr qint32 Least = std::numeric_limits<qint32>::min();
    constexpr qint32 Largest = std::numeric_limits<qint32>::max();
    EXPECT_EQ(Picture({Canvas(3, 2), Element(0, Least, Least, Largest, Largest)}),
              (Rows{"RRR", "RRR"}));
    EXPECT_EQ(Picture({Canvas(3, 2), Element(0, Least, 1, Largest, 2, Red, Solid, Largest)}),
              (Rows{"RRR", "RRR"}));
    EXPECT_EQ(Picture({Canvas(3, 2), Element(1, Least, Least, Largest, Largest, Red, Clear)}),
              (Rows{"...", "..."}));
}

}  // namespace
}  // namespace kadrona::core
