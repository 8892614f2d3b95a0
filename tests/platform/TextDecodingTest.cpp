#include <gtest/gtest.h>

#include "platform/TextDecoding.h"

namespace kadrona::platform {
namespace {

using namespace Qt::StringLiterals;

struct Case {
    const char* name;
    QByteArray bytes;
    QString text;
};

TEST(TextDecoding, TakesUtf8AndFallsBackByteByByte) {
    const Case cases[] = {
        {"empty", ""_ba, u""_s},
        {"UTF-8",
         "Gr\xC3\xB6\xC3\x9F"
         "e \xF0\x9F\x93\xB7"_ba,
         u"Größe \U0001F4F7"_s},
        {"byte order mark", "\xEF\xBB\xBF[A]"_ba, u"[A]"_s},
        {"Windows-1252 letters",
         "Gr\xF6\xDF"
         "e"_ba,
         u"Größe"_s},
        {"Windows-1252 own block", "\x80\x84x\x93\x96\x9F"_ba, u"€„x“–Ÿ"_s},
        {"open codes", "\x81\x9D"_ba, u"\x81\x9D"_s},
        {"both in one file", "\xC3\xA4=\xE4"_ba, u"ä=ä"_s},
        {"cut off at the end", "a\xE2\x82"_ba, u"aâ‚"_s},
        {"overlong slash", "\xC0\xAF"_ba, u"À¯"_s},
        {"encoded surrogate", "\xED\xA0\x80"_ba, u"í\u00A0€"_s},
        {"beyond Unicode", "\xF4\x90\x80\x80"_ba, u"ô\x90€€"_s},
        {"NUL", QByteArray("a\0b", 3), u"ab"_s},
        {"UTF-16", QByteArray("\xFF\xFEk\0=\0", 6), u"ÿþk="_s},
    };
    for (const Case& example : cases) {
        EXPECT_EQ(DecodeText(example.bytes), example.text) << example.name;
    }
}

}  // namespace
}  // namespace kadrona::platform
