#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "store/FullTextIndex.h"
#include "store/StoreError.h"
#include "store/WordTokenizer.h"

namespace kadrona::store {
namespace {

using namespace Qt::StringLiterals;

QByteArray Words(const QString& text) {
    QByteArrayList words;
    for (const QByteArray& word : WordsOf(text.toUtf8())) {
        words.append(word);
    }
    return words.join('|');
}

TEST(WordTokenizer, EveryCharacterOfWindows1252HasItsKind) {
    const QByteArray separators = "*+',-/:;<=>\\` ";
    for (int code = 1; code < 256; ++code) {
        // What the code page leaves open is the control character of the same number.
        static const QString upper = u"€\u0081‚ƒ„…†‡ˆ‰Š‹Œ\u008dŽ\u008f\u0090‘’“”•–—˜™š›œ\u009džŸ"_s;
        const QChar character = code >= 128 && code < 160 ? upper[code - 128] : QChar(code);
        const bool letter = (code >= '0' && code <= '9') || (code >= 'A' && code <= 'Z') ||
                            (code >= 'a' && code <= 'z') || code == '_';
        const QByteArray expected = code < 33 || (code < 128 && separators.contains(char(code)))
                                        ? "x|y"
                                    : letter || (code >= 128 && code < 255)
                                        ? "x" + QString(character).toLower().toUtf8() + "y"
                                        : QByteArray("xy");
        EXPECT_EQ(Words(u'x' + QString(character) + u'y'), expected) << "code " << code;
    }
}

TEST(WordTokenizer, TakesTextsApart) {
    const QList<std::pair<QString, QByteArray>> cases{
        {u"Anna\r\nKöln-MÜLHEIM\r\n"_s, "anna|köln|mülheim"},
        {u"(Groß) 07.03.2026"_s, "groß|07032026"},
        {u"a\U0001F4F7b Ł\u0308c"_s, "ab|c"},
        {u" -- \U0001F4F7 "_s, ""},
        {QString(), ""}};
    for (const auto& [text, words] : cases) {
        EXPECT_EQ(Words(text), words) << qPrintable(text);
    }
    EXPECT_EQ(WordsOf("a\xffz\xc3").front(), "az") << "bytes that are not UTF-8";
    EXPECT_EQ(WordsOf("\xe2\x82").size(), 0U);
}

class FullTextIndexTest : public testing::Test {
 protected:
    FullTextIndexTest() { database_.Execute(FullTextIndex::Creation(u"Tags"_s)); }

    std::vector<qint64> Rows(const QString& text) const { return index_.RowsWith(text); }
    void RequireSound() {
        database_.Execute(u"INSERT INTO Tags (Tags) VALUES ('integrity-check')"_s);
    }

    QTemporaryDir folder_;
    Database database_{folder_.path()};
    FullTextIndex index_{database_, u"Tags"_s};
};

using Found = std::vector<qint64>;

TEST_F(FullTextIndexTest, FindsWholeWordsWhateverTheirCase) {
    index_.Set(3, u"Jürgen O'Neill\r\nGroß"_s);
    index_.Set(1, u"Anna Müller"_s);
    index_.Set(2, u"MÜLLER, Anna-Sofie"_s);
    EXPECT_EQ(Rows(u"müller"_s), (Found{1, 2}));
    EXPECT_EQ(Rows(u"Sofie Müller"_s), (Found{2}));
    EXPECT_EQ(Rows(u"o'neill"_s), (Found{3}));
    EXPECT_EQ(Rows(u"GROß"_s), (Found{3}));
    for (const QString& nothing : {u"Müll"_s, u"Müll*"_s, u"Anna Groß"_s, u"%"_s, u"\""_s, u"*"_s,
                                   u"NOT"_s, u"Anna OR Groß"_s, QString()}) {
        EXPECT_EQ(Rows(nothing), Found()) << qPrintable(nothing);
    }
    index_.Set(1, u"Bernd"_s);
    EXPECT_EQ(Rows(u"müller"_s), (Found{2}));
    RequireSound();
}

TEST_F(FullTextIndexTest, TakesAnyText) {
    const QString large = u"Wort "_s.repeated(200'000) + QString(100'000, u'ä');
    index_.Set(1, large);
    index_.Set(2, u"vor\0nach \"' ; DROP TABLE Tags -- \U0001F4F7 %s"_s);
    EXPECT_EQ(Rows(u"wort"_s), (Found{1}));
    EXPECT_EQ(Rows(QString(100'000, u'Ä')), (Found{1}));
    EXPECT_EQ(Rows(u"drop vor\0nach"_s), (Found{2}));
    index_.Set(1, {});
    EXPECT_EQ(Rows(u"wort"_s), Found());
    RequireSound();
}

TEST(TextSearchFilter, IsTakenApart) {
    const TextSearch search = ParseTextSearch(u" textsearch( 'O''Neill ''' in \"ImgTags\" ) "_s);
    EXPECT_EQ(search.text, u"O'Neill '"_s);
    EXPECT_EQ(search.column, u"ImgTags"_s);
    EXPECT_EQ(ParseTextSearch(u"TEXTSEARCH('' IN A)"_s).text, QString());
    EXPECT_EQ(
        ParseTextSearch(u"TEXTSEARCH('"_s + QString(1'000'000, u'x') + u"' IN A)"_s).text.size(),
        1'000'000);
    for (const QString& wrong :
         {u"TEXTSEARCH('a' IN A"_s, u"TEXTSEARCH('a'b' IN A)"_s, u"TEXTSEARCH(a IN A)"_s,
          u"TEXTSEARCH('a' IN A) OR 1 = 1"_s, u"ImgTags = 'a'"_s, QString()}) {
        EXPECT_THROW(ParseTextSearch(wrong), StoreError) << qPrintable(wrong);
    }
}

}  // namespace
}  // namespace kadrona::store
