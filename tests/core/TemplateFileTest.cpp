#include <gtest/gtest.h>

#include <QtEndian>
#include <limits>
#include <tuple>

#include "core/templates/TemplateFile.h"
#include "tests/core/GeometryPrinting.h"

namespace kadrona::core {
namespace {

using namespace Qt::StringLiterals;

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

TMask OneMask() {
    TMask mask;
    mask.reserved = -7;
    mask.colour = 0x123456;
    mask.brushStyle = 6;
    mask.penWidth = -1;
    mask.right = 350;
    mask.left = 10;
    mask.bottom = 450;
    mask.top = -20;
    mask.shape = TMask::Ellipse;
    mask.name = u"Größ€"_s;
    return mask;
}

QByteArray WithCount(qint32 count, QByteArray bytes) {
    qToLittleEndian(count, bytes.data());
    return bytes;
}

TEST(TemplateFile, ElementsLieAsLaidDown) {
    ASSERT_EQ(OneElement().size(), 4 + 59);
    const auto elements = ParseTemplate(OneElement());
    ASSERT_EQ(elements.size(), 1U);
    const auto fields = [](const TMask& mask) {
        return std::tuple(mask.reserved, mask.colour, mask.brushStyle, mask.penWidth, mask.right,
                          mask.left, mask.bottom, mask.top, mask.shape, mask.name);
    };
    EXPECT_EQ(fields(elements.front()), fields(OneMask()));
    EXPECT_EQ(SerializeTemplate({OneMask()}).toHex(), OneElement().toHex());
}

TEST(TemplateFile, EveryTruncationIsRefused) {
    const QByteArray whole = SerializeTemplate({OneMask(), OneMask()});
    for (qsizetype length = 0; length < whole.size(); ++length) {
        EXPECT_THROW(ParseTemplate(QByteArrayView(whole).first(length)), TemplateFileError)
            << length << " bytes";
    }
    EXPECT_EQ(ParseTemplate(whole).size(), 2U);
    EXPECT_EQ(ParseTemplate(whole + "appended").size(), 2U);
}

TEST(TemplateFile, ImpossibleCountsAreRefused) {
    for (const qint32 count : {-1, std::numeric_limits<qint32>::min(), 2, 72796056,
                               std::numeric_limits<qint32>::max()}) {
        EXPECT_THROW(ParseTemplate(WithCount(count, OneElement())), TemplateFileError) << count;
    }
    EXPECT_TRUE(ParseTemplate(WithCount(0, OneElement())).empty());
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

    TMask mask = OneMask();
    mask.name = u"Ω„“–Š ÿabcdefghijklmnopqrstuvwxyz"_s;
    const auto written = ParseTemplate(SerializeTemplate({mask, OneMask()}));
    EXPECT_EQ(written[0].name, u"?„“–Š ÿabcdefghijklmnopqr"_s);
    EXPECT_EQ(written[1].name, OneMask().name);
}

}  // namespace
}  // namespace kadrona::core
