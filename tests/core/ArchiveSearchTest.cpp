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
    const QString found =
        u"| |jürgen|KÖLN|ürge|juergen|jurgen koln|gross|00042|2|07.03.2026|07.03.2026 14:30|"
        "süd jürg|j*n|2026*jpg|*42*|*|\"jürgen groß\"|\"Groß Köln\"|\"jürgen gr|köln-süd|-berlin|"
        "köln -berlin|-\"groß jürgen\"|-|- köln|-\"\"|100%|\U0001F4F7|'ab|\"j*n groß\"|"
        "jürgen\tgroß"_s;
    for (const QString& text : found.split(u'|')) {
        EXPECT_TRUE(Finds(text, record)) << qPrintable(text);
    }
    const QString missed =
        u"berlin|jürgen berlin|n*j*n*n*n|groß*jürgen|jpg*de|\"groß jürgen\"|\"jürgen köln\"|-köln|"
        "jürgen -köln|-\"jürgen groß\"|-j*n|_0004_|%x|jurgin|jpg de.schablone jpgde|[j]ürgen"_s;
    for (const QString& text : missed.split(u'|')) {
        EXPECT_FALSE(Finds(text, record)) << qPrintable(text);
    }
    EXPECT_TRUE(Finds(u"lukasz müller"_s, {u"Łukasz"_s, u"Mueller"_s}));
    EXPECT_TRUE(Finds(u"a*b"_s, {u"a"_s, u"b a"_s, u"ab"_s})) << "in a later field";
    EXPECT_FALSE(Finds(u"a*b"_s, {u"a"_s, u"b"_s}));
    EXPECT_TRUE(ArchiveSearch(u" * -* \"\" "_s).IsEmpty());
}

}  // namespace
}  // namespace kadrona::core
