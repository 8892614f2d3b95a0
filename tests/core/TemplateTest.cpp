// Templates: their catalogue, their file and their drawing.

#include <gtest/gtest.h>

#include <QtEndian>
#include <limits>
#include <map>
#include <tuple>
#include <vector>

#include "core/templates/TemplateCatalogue.h"
#include "core/templates/TemplateDrawing.h"
#include "core/templates/TemplateFile.h"
#include "tests/support/PixelMatchers.h"

namespace kadrona::core {
namespace {

using namespace Qt::StringLiterals;

constexpr qint32 Least = std::numeric_limits<qint32>::min();
constexpr qint32 Largest = std::numeric_limits<qint32>::max();

TEST(TemplateCatalogue, LinesBecomeEntriesInFileOrder) {
    for (const auto& [text, entries] :
         {std::pair(u""_s, u""_s),
          {u"\r\n\n"_s, u""_s},
          {u"b=1\r\nPaß=2\nc=3\rd=4\r\n"_s, u"b|1 Paß|2 c|3 d|4"_s},
          {u"a=b=c"_s, u"a|b=c"_s},
          {u"a = b"_s, u"a | b"_s},
          {u"a=1\nVisum\n\nb=2\n\n\n"_s, u"a|1 | | b|2"_s},  // a faulty line keeps its place
          {u"=\nx=\n=y"_s, u"| x| |y"_s}}) {
        QStringList shown;
        for (const CatalogueEntry& entry : ParseCatalogue(text)) {
            shown << entry.name + u'|' + entry.file;
        }
        EXPECT_EQ(shown.join(u' '), entries);
    }
}

/// A file of one element, byte by byte as its layout says.
QByteArray OneElement() {
    return QByteArray::fromHex(
        "01000000"  // count
        "f9ffffff"  // reserved -7
        "56341200"  // colour
        "06000000"  // brush style
        "ffffffff"  // pen width -1
        "5e010000"  // right 350
        "0a000000"  // left 10
        "c2010000"  // bottom 450
        "ecffffff"  // top -20
        "01"        // shape
        "054772f6df80"
        "0000000000000000000000000000000000000000");  // "Größ" and the euro sign, padded
}

const TMask OneMask{.reserved = -7,
                    .colour = 0x123456,
                    .brushStyle = 6,
                    .penWidth = -1,
                    .right = 350,
                    .left = 10,
                    .bottom = 450,
                    .top = -20,
                    .shape = TMask::Ellipse,
                    .name = u"Größ€"_s};

TEST(TemplateFile, ElementsLieAsLaidDown) {
    const auto elements = ParseTemplate(OneElement());
    ASSERT_EQ(elements.size(), 1U);
    const auto fields = [](const TMask& mask) {
        return std::tuple(mask.reserved, mask.colour, mask.brushStyle, mask.penWidth, mask.right,
                          mask.left, mask.bottom, mask.top, mask.shape, mask.name);
    };
    EXPECT_EQ(fields(elements.front()), fields(OneMask));
    EXPECT_EQ(SerializeTemplate({OneMask}).toHex(), OneElement().toHex());
}

TEST(TemplateFile, TruncationsAndImpossibleCountsAreRefused) {
    const QByteArray whole = SerializeTemplate({OneMask, OneMask});
    for (qsizetype length = 0; length < whole.size(); ++length) {
        EXPECT_THROW(ParseTemplate(QByteArrayView(whole).first(length)), TemplateFileError)
            << length << " bytes";
    }
    EXPECT_EQ(ParseTemplate(whole + "appended").size(), 2U);
    QByteArray counted = OneElement();
    for (const qint32 count : {-1, Least, 2, 72796056, Largest}) {
        qToLittleEndian(count, counted.data());
        EXPECT_THROW(ParseTemplate(counted), TemplateFileError) << count;
    }
    qToLittleEndian(0, counted.data());
    EXPECT_TRUE(ParseTemplate(counted).empty());
}

TEST(TemplateFile, NamesKeepTheirField) {
    constexpr qsizetype NameOffset = 4 + 33;
    QByteArray bytes = OneElement();
    bytes[NameOffset] = char(0xff);
    bytes.replace(NameOffset + 1, 25, "abcdefghijklmnopqrstuvwxy");
    EXPECT_EQ(ParseTemplate(bytes).front().name, u"abcdefghijklmnopqrstuvwxy"_s);
    // Two bytes that would be one character in UTF-8 are two in the file's code page.
    bytes[NameOffset] = 2;
    bytes.replace(NameOffset + 1, 2, "\xc3\xa4");
    EXPECT_EQ(ParseTemplate(bytes).front().name, u"Ã¤"_s);

    TMask mask = OneMask;
    mask.name = u"Ω„“–Š ÿabcdefghijklmnopqrstuvwxyz"_s;
    const auto written = ParseTemplate(SerializeTemplate({mask, OneMask}));
    EXPECT_EQ(written[0].name, u"?„“–Š ÿabcdefghijklmnopqr"_s);
    EXPECT_EQ(written[1].name, OneMask.name);
}

using Rows = std::vector<std::string>;

constexpr qint32 White = 0xffffff;
constexpr qint32 Red = 0x0000ff;
constexpr qint32 Blue = 0xff0000;
constexpr qint32 Solid = 0;
constexpr qint32 Clear = 1;

TMask Element(quint8 shape, qint32 left, qint32 top, qint32 right, qint32 bottom,
              qint32 colour = Red, qint32 brushStyle = Solid, qint32 penWidth = 1) {
    return {.colour = colour,
            .brushStyle = brushStyle,
            .penWidth = penWidth,
            .right = right,
            .left = left,
            .bottom = bottom,
            .top = top,
            .shape = shape,
            .name = {}};
}

TMask Canvas(qint32 right, qint32 bottom, qint32 colour = White) {
    return Element(TMask::Rectangle, 0, 0, right, bottom, colour);
}

/// One character a pixel: "." transparent, "R", "B" and "W" the colours, "?" any other.
Rows Drawn(const std::vector<TMask>& elements) {
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

TEST(TemplateDrawing, RightAndBottomEdgeAreOutside) {
    const Rows rectangle{".......", "..RRR..", "..R.R..", "..RRR..", "......."};
    const Rows nothing(5, ".......");
    const auto drawn = [](const TMask& element) { return Drawn({Canvas(7, 5), element}); };
    EXPECT_EQ(drawn(Element(0, 2, 1, 5, 4, Red, Clear)), rectangle);
    EXPECT_EQ(drawn(Element(0, 5, 4, 2, 1, Red, Clear, 0)), rectangle) << "corners swapped";
    EXPECT_EQ(drawn(Element(0, 2, 1, 3, 2)),
              (Rows{".......", "..R....", ".......", ".......", "......."}));
    EXPECT_EQ(drawn(Element(TMask::Ellipse, 1, 0, 6, 5)),
              (Rows{"..RRR..", ".RRRRR.", ".RRRRR.", ".RRRRR.", "..RRR.."}));
    EXPECT_EQ(drawn(Element(2, 2, 1, 5, 4)), nothing) << "unknown shape";
    EXPECT_EQ(drawn(Element(0, 2, 1, 2, 4)), nothing) << "no width";
    EXPECT_EQ(drawn(Element(TMask::Ellipse, 2, 4, 5, 4)), nothing) << "no height";
}

TEST(TemplateDrawing, NegativePenWidthLeavesTheWidthBefore) {
    const Rows thin{".......", ".RRRRR.", ".R...R.", ".R...R.", ".R...R.", ".RRRRR.", "......."};
    const Rows thick{"RRRRRRR", "RRRRRRR", "RRRRRRR", "RRR.RRR", "RRRRRRR", "RRRRRRR", "RRRRRRR"};
    const Rows even{"RRRRRR.", "RRRRRR.", "RR..RR.", "RR..RR.", "RRRRRR.", "RRRRRR.", "......."};
    const auto square = [](qint32 penWidth) {
        return Element(TMask::Rectangle, 1, 1, 6, 6, Red, Clear, penWidth);
    };
    TMask canvas = Canvas(7, 7);
    canvas.penWidth = -1;
    const TMask outside = Element(TMask::Rectangle, 90, 90, 99, 99, Blue, Clear, 3);
    EXPECT_EQ(Drawn({canvas, square(-5)}), thin);
    EXPECT_EQ(Drawn({canvas, outside, square(-5)}), thick);
    EXPECT_EQ(Drawn({canvas, outside, square(1)}), thin);
    EXPECT_EQ(Drawn({canvas, square(2)}), even);
}

TEST(TemplateDrawing, WhiteIsTransparentWhereverItEndsUp) {
    EXPECT_EQ(Drawn({Canvas(4, 2, Red), Element(0, 1, 0, 3, 2, White), Element(0, 2, 0, 4, 1)}),
              (Rows{"R.RR", "R..R"}));
    EXPECT_EQ(DrawTemplate({Canvas(1, 1, 0xfeffff)}).pixel(0, 0), 0xfffffffeU);
    EXPECT_EQ(Drawn({Canvas(1, 1, 0x7f0000ff)}), Rows{"R"}) << "the highest byte is no colour";
}

TEST(TemplateDrawing, FirstElementFillsItsRectangleWhateverItsShape) {
    EXPECT_EQ(Drawn({Element(TMask::Ellipse, 0, 0, 3, 3, Blue)}), (Rows{"BBB", "BBB", "BBB"}));
    EXPECT_EQ(Drawn({Element(2, 0, 0, 2, 2, Blue, Clear)}), (Rows{"..", ".."}));
    EXPECT_EQ(Drawn({Element(0, 1, 1, 4, 3, Blue)}), (Rows{"...", ".BB"})) << "moved";
}

TEST(TemplateDrawing, BrushStylesHatchTheInside) {
    // In which directions a step further shows the same, and "=" where a whole row is drawn.
    for (const auto& [style, pattern] :
         {std::pair(2, "-="), {3, "|"}, {4, "\\"}, {5, "/"}, {6, "="}, {7, ""}, {0, "-|\\/="}}) {
        const QImage alpha = DrawTemplate({Canvas(24, 24), Element(0, 0, 0, 24, 24, Red, style)})
                                 .convertToFormat(QImage::Format_Alpha8);
        const auto repeats = [&](int dx, int dy) {
            return alpha.copy(2, 1, 20, 21) == alpha.copy(2 + dx, 1 + dy, 20, 21);
        };
        std::string found;
        found += repeats(1, 0) ? "-" : "";
        found += repeats(0, 1) ? "|" : "";
        found += repeats(1, 1) ? "\\" : "";
        found += repeats(-1, 1) ? "/" : "";
        const QByteArray whole(22, '\xff');
        for (int y = 1; y < 23 && !found.ends_with('='); ++y) {
            found += memcmp(alpha.constScanLine(y) + 1, whole.constData(), 22) == 0 ? "=" : "";
        }
        EXPECT_EQ(found, pattern) << style;
    }
    for (const qint32 clear : {1, 8, -1}) {
        EXPECT_EQ(Drawn({Canvas(3, 3), Element(0, 0, 0, 3, 3, Red, clear)}),
                  (Rows{"RRR", "R.R", "RRR"}))
            << clear;
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
    for (const auto& [element, row] :
         {std::pair(Element(0, Least, Least, Largest, Largest), "RRR"),
          {Element(0, Least, 1, Largest, 2, Red, Solid, Largest), "RRR"},
          {Element(1, Least, Least, Largest, Largest, Red, Clear), "..."}}) {
        EXPECT_EQ(Drawn({Canvas(3, 2), element}), Rows(2, row));
    }
}

}  // namespace
}  // namespace kadrona::core
