#include <gtest/gtest.h>

#include "controls/fields/PathShortening.h"

using namespace Qt::StringLiterals;

namespace kadrona::controls {
namespace {

// A font in which every character is as wide as the next, so that widths read as lengths.
int Length(const QString& text) {
    return static_cast<int>(text.size());
}

struct Row {
    const char* name;
    QString path;
    int width;
    QString expected;
};

void PrintTo(const Row& row, std::ostream* out) {
    *out << row.name;
}

class ShortenPath : public testing::TestWithParam<Row> {};

TEST_P(ShortenPath, GivesTheLongestFormThatFits) {
    EXPECT_EQ(controls::ShortenPath(GetParam().path, GetParam().width, Length),
              GetParam().expected);
}

const QString Path = u"/home/anna/fotos/kunden/bild.jpg"_s;  // 32 characters

INSTANTIATE_TEST_SUITE_P(
    Paths, ShortenPath,
    testing::Values(
        Row{"Fits", Path, 32, Path},
        Row{"OneTooShort", Path, 31, u"/home/…/fotos/kunden/bild.jpg"_s},
        Row{"TwoFoldersLeft", Path, 23, u"/home/…/kunden/bild.jpg"_s},
        Row{"NameBehindTheRoot", Path, 22, u"/home/…/bild.jpg"_s},
        Row{"WithoutTheRoot", Path, 15, u"…/bild.jpg"_s}, Row{"NameAlone", Path, 9, u"bild.jpg"_s},
        Row{"NameShortened", Path, 7, u"bil…jpg"_s}, Row{"Ellipsis", Path, 1, u"…"_s},
        Row{"NoRoom", Path, 0, u""_s},
        Row{"Drive", u"C:\\Users\\anna\\Bilder\\bild.jpg"_s, 22, u"C:\\…\\Bilder\\bild.jpg"_s},
        Row{"Share", u"\\\\server\\fotos\\kunden\\bild.jpg"_s, 20, u"\\\\server\\…\\bild.jpg"_s},
        Row{"NameInTheRoot", u"/ein-langer-name.jpg"_s, 10, u"ein-l….jpg"_s},
        Row{"BareName", u"ein-langer-name.jpg"_s, 10, u"ein-l….jpg"_s},
        Row{"Folder", u"/home/anna/fotos/"_s, 12, u"/home/…/"_s}, Row{"Empty", u""_s, 10, u""_s},
        // A character beyond 16 bits is two code units: never half of one.
        Row{"WholeCharacters", u"😀😀😀😀"_s, 4, u"😀…"_s}),
    [](const auto& info) { return info.param.name; });

TEST(ShortenPathWidths, NoFormIsEverWiderThanTheRoom) {
    for (int width = 0; width <= 33; ++width) {
        EXPECT_LE(Length(controls::ShortenPath(Path, width, Length)), width);
    }
}

}  // namespace
}  // namespace kadrona::controls
