#include <gtest/gtest.h>

#include <QStringList>

#include "core/archive/ArchiveSearch.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

namespace {

QByteArray Folded(const QString& text, Umlauts umlauts = Umlauts::SpelledOut) {
    QByteArray folded;
    AppendFolded(folded, text.toUtf8(), umlauts);
    return folded;
}

bool Finds(const QString& text, const QStringList& fields) {
    QByteArray record;
    for (const QString& field : fields) {
        AppendField(record, field.toUtf8());
    }
    return ArchiveSearch(text).Matches(record);
}

}  // namespace

TEST(ArchiveSearch, FoldsCaseAndMarksOfEveryLetterOnBothWays) {
    for (char16_t code = 0x21; code < 0x100; ++code) {
        for (const Umlauts umlauts : {Umlauts::SpelledOut, Umlauts::Plain}) {
            // A letter beyond Latin-1 takes the general way.
            const QString letter{QChar(code)};
            EXPECT_EQ(Folded(letter + u'Ω', umlauts), Folded(letter, umlauts) + "ω")
                << "code " << int(code);
        }
    }
    EXPECT_EQ(Folded(u"ÀÖÆçÐñØßÞÿ×µ"_s), "aoeaecdnossthy×μ");
    EXPECT_EQ(Folded(u"ŁőžÀÖ"_s), "lozaoe");
    EXPECT_EQ(Folded(u"ÖÄü"_s, Umlauts::Plain), "oau");
    EXPECT_EQ(Folded(u"  Ä\r\n\tB\0c  "_s), QByteArray("ae b\0c ", 7));
    EXPECT_EQ(Folded(u"Mu\u0308ller"_s), Folded(u"MÜLLER"_s));
    QByteArray damaged;
    AppendFolded(damaged, "\xc3", Umlauts::Plain);
    EXPECT_EQ(damaged, "\xc3");
}

TEST(ArchiveSearch, FollowsItsSyntax) {
    const QStringList record{u"07.03.2026 14:30"_s, u"2026_03_00042.jpg"_s, u"de.schablone"_s,
                             u"Jürgen  Groß\r\nKöln-Süd\r\n100% \U0001F4F7 'Ab*\r\n"_s};
    for (const QString& found : {QString(),
                                 u" "_s,
                                 u"jürgen"_s,
                                 u"KÖLN"_s,
                                 u"ürge"_s,
                                 u"juergen"_s,
                                 u"jurgen koln"_s,
                                 u"gross"_s,
                                 u"00042"_s,
                                 u"2"_s,
                                 u"07.03.2026"_s,
                                 u"07.03.2026 14:30"_s,
                                 u"süd jürg"_s,
                                 u"j*n"_s,
                                 u"2026*jpg"_s,
                                 u"*42*"_s,
                                 u"*"_s,
                                 u"\"jürgen groß\""_s,
                                 u"\"Groß Köln\""_s,
                                 u"\"jürgen gr"_s,
                                 u"köln-süd"_s,
                                 u"-berlin"_s,
                                 u"köln -berlin"_s,
                                 u"-\"groß jürgen\""_s,
                                 u"-"_s,
                                 u"- köln"_s,
                                 u"-\"\""_s,
                                 u"100%"_s,
                                 u"\U0001F4F7"_s,
                                 u"'ab"_s,
                                 u"\"j*n groß\""_s,
                                 u"jürgen\tgroß"_s}) {
        EXPECT_TRUE(Finds(found, record)) << qPrintable(found);
    }
    for (const QString& missed :
         {u"berlin"_s, u"jürgen berlin"_s, u"n*j*n*n*n"_s, u"groß*jürgen"_s, u"jpg*de"_s,
          u"\"groß jürgen\""_s, u"\"jürgen köln\""_s, u"-köln"_s, u"jürgen -köln"_s,
          u"-\"jürgen groß\""_s, u"-j*n"_s, u"_0004_"_s, u"%"_s + u"x"_s, u"jurgin"_s,
          u"jpg de.schablone jpgde"_s, u"[j]ürgen"_s}) {
        EXPECT_FALSE(Finds(missed, record)) << qPrintable(missed);
    }
    EXPECT_TRUE(Finds(u"lukasz müller"_s, {u"Łukasz"_s, u"Mueller"_s}));
    EXPECT_TRUE(Finds(u"a*b"_s, {u"a"_s, u"b a"_s, u"ab"_s})) << "in a later field";
    EXPECT_FALSE(Finds(u"a*b"_s, {u"a"_s, u"b"_s}));
    EXPECT_TRUE(ArchiveSearch(u" * -* \"\" "_s).IsEmpty());
}

}  // namespace kadrona::core
