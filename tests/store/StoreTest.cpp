#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QtEndian>
#include <algorithm>
#include <numeric>

#include "platform/AtomicFile.h"
#include "store/FullTextIndex.h"
#include "store/Statement.h"
#include "store/StoreError.h"
#include "store/Transaction.h"
#include "store/Words.h"
#include "store/sqlite/SqliteDatabase.h"
#include "tests/support/Errors.h"

namespace kadrona::store {
namespace {

using namespace Qt::StringLiterals;
using kadrona::testing::TextOf;

const QStringList Script = {
    u"CREATE TABLE Photos (Id INTEGER PRIMARY KEY, Name TEXT, Thumb BLOB)"_s,
    u"CREATE INDEX Photos_Name ON Photos (Name DESC)"_s};

class DatabaseTest : public ::testing::Test {
 protected:
    DatabaseTest() { database_.RunScript(Script); }

    QString Path() const { return folder_.filePath(u"KDRImageBase.db"_s); }

    static void Insert(Database& database, const QString& name) {
        Statement(database, u"INSERT INTO Photos (Name) VALUES (?)"_s).Bind(1, name).Step();
    }

    static qint64 Count(Database& database) {
        Statement count(database, u"SELECT count(*) FROM Photos"_s);
        count.Step();
        return count.Integer(0);
    }

    QTemporaryDir folder_;
    SqliteDatabase database_{folder_.path(), std::chrono::milliseconds(20)};
};

TEST_F(DatabaseTest, WhatIsEmptyIsAValueAndWhatIsNotBoundIsNone) {
    EXPECT_TRUE(database_.TableExists(u"PHOTOS"_s));
    EXPECT_FALSE(database_.TableExists(u"Photos_Name"_s)) << "an index is no table";
    const QString name = u"Größe \U0001F4F7\r\n'; DROP TABLE Photos"_s;
    const QByteArray thumb("\xFF\xD8\0\x01", 4);
    Statement insert(database_, u"INSERT INTO Photos (Name, Thumb) VALUES (?, ?)"_s);
    insert.Bind(1, name).Bind(2, QByteArrayView(thumb)).Step();
    insert.Reset();
    insert.Bind(1, QString()).Bind(2, QByteArrayView()).Step();
    Insert(database_, u"third"_s);

    Statement select(database_, u"SELECT Id, Name, Thumb FROM Photos ORDER BY Id"_s);
    ASSERT_TRUE(select.Step());
    EXPECT_EQ(select.Text(1), name);
    EXPECT_EQ(select.Blob(2), thumb);
    ASSERT_TRUE(select.Step());
    EXPECT_FALSE(select.IsNull(1) || select.IsNull(2));
    ASSERT_TRUE(select.Step());
    EXPECT_TRUE(select.IsNull(2) && select.Blob(2).isEmpty());
    EXPECT_FALSE(select.Step());
}

TEST_F(DatabaseTest, TransactionRollsBackUnlessCommitted) {
    {
        Transaction transaction(database_);
        Insert(database_, u"dropped"_s);
        EXPECT_EQ(Count(database_), 1);
    }
    EXPECT_EQ(Count(database_), 0);
    {
        Transaction transaction(database_);
        Insert(database_, u"kept"_s);
        transaction.Commit();
    }
    EXPECT_EQ(Count(database_), 1);
    EXPECT_THROW(database_.RunScript({u"DELETE FROM Photos"_s, u"nonsense"_s}), StoreError);
    EXPECT_EQ(Count(database_), 1) << "a script is done as a whole or not at all";
    Insert(database_, u"after"_s);
    SqliteDatabase other(folder_.path());
    EXPECT_EQ(Count(other), 2) << "no transaction was left open";
}

TEST_F(DatabaseTest, SaysWhyItCannotBeOpenedAndLeavesWhatIsThere) {
    const QString folder = folder_.filePath(u"other"_s);
    const QString path = folder + u"/KDRImageBase.db"_s;
    const QByteArray name = QFile::encodeName(path);
    const auto expectRefused = [&](const QString& reason) {
        const qint64 size = QFileInfo(path).size();
        EXPECT_EQ(TextOf<StoreError>([&] { const SqliteDatabase database(folder); }),
                  u"Die Datenbank „%1“ konnte nicht geöffnet werden: %2."_s.arg(path, reason));
        EXPECT_EQ(QFileInfo(path).size(), size);
        QFile::remove(path);
    };
    expectRefused(u"Die Datei oder der Ordner ist nicht vorhanden"_s);
    QDir().mkdir(folder);
    platform::WriteFileAtomically(path, QByteArray(2000, 'x'));
    expectRefused(u"Die Datei ist keine Datenbank"_s);
    mkfifo(name.constData(), 0600);
    expectRefused(u"Es ist keine gewöhnliche Datei"_s);
    EXPECT_EQ(symlink("elsewhere.db", name.constData()), 0);
    expectRefused(u"Die Datei ist eine Verknüpfung"_s);
    EXPECT_FALSE(QFile::exists(folder + u"/elsewhere.db"_s));
    if (geteuid() != 0) {
        GTEST_SKIP() << "no right to give a link away";
    }
    const QByteArray link = QFile::encodeName(folder);
    QDir().rmdir(folder);
    EXPECT_EQ(symlink("/tmp", link.constData()), 0);
    EXPECT_EQ(lchown(link.constData(), 1001, 1001), 0);
    expectRefused(u"„%1“ ist eine Verknüpfung, die einem anderen Benutzer gehört"_s.arg(folder));
}

TEST_F(DatabaseTest, IsTheUsersAloneAndLiesBehindTheUsersOwnLinks) {
    const QString link = folder_.filePath(u"link"_s);
    const QString folder = folder_.filePath(u"folder"_s);
    ASSERT_TRUE(QDir().mkdir(folder) && QFile::link(folder, link));
    const mode_t mask = umask(0);
    SqliteDatabase database(link);
    database.RunScript(Script);
    umask(mask);
    EXPECT_EQ(database.Name(), link + u"/KDRImageBase.db"_s);
    EXPECT_EQ(QFile::permissions(folder + u"/KDRImageBase.db"_s) & QFileDevice::Permissions(0x7077),
              QFileDevice::ReadOwner | QFileDevice::WriteOwner);
}

/// A journal that says to be one of several, which all go with the file of that name.
QByteArray ForeignJournal(const QByteArray& companion) {
    constexpr quint32 PageOfNames = 0x40000000 / 4096 + 1;
    const auto number = [](quint32 value) {
        value = qToBigEndian(value);
        return QByteArray(reinterpret_cast<const char*>(&value), sizeof value);
    };
    const QByteArray mark = QByteArray::fromHex("d9d505f920a163d7");
    const QByteArray head = mark + number(0) + number(0) + number(4) + number(512) + number(4096);
    const auto sum = std::accumulate(companion.begin(), companion.end(), quint32(0));
    return head.leftJustified(512, '\0') + number(PageOfNames) + companion +
           number(quint32(companion.size())) + number(sum) + mark;
}

TEST_F(DatabaseTest, AForeignJournalNeitherHoldsUpNorRemovesAnything) {
    Insert(database_, u"kept"_s);
    const QString journal = Path() + u"-journal"_s;
    QDir(folder_.path()).mkdir(u"other"_s);
    for (const QString& name : {u"precious"_s, u"other/KDRImageBase.db"_s,
                                u"other/KDRImageBase.db-journal"_s, u"KDRImageBase.db-wal"_s}) {
        const QString precious = folder_.filePath(name);
        platform::WriteFileAtomically(precious, "x"_ba);
        platform::WriteFileAtomically(journal, ForeignJournal(QFile::encodeName(precious)));
        SqliteDatabase opened(folder_.path());
        EXPECT_EQ(Count(opened), 1);
        EXPECT_TRUE(QFile::remove(precious));
    }
    mkfifo(QFile::encodeName(journal).constData(), 0600);
    EXPECT_THROW(Count(database_), StoreError) << "put there later";
    const auto expectNamed = [&](const QString& path, const QString& kind) {
        EXPECT_TRUE(TextOf<StoreError>([&] {
                        const SqliteDatabase opened(folder_.path());
                    }).contains(u"„%1“, und das ist %2."_s.arg(path, kind)));
        QFile::remove(path);
    };
    expectNamed(journal, u"eine benannte Pipe"_s);
    EXPECT_TRUE(QFile::link(Path(), Path() + u"-wal"_s));
    expectNamed(Path() + u"-wal"_s, u"eine Verknüpfung"_s);
}

/// What another program does to the file.
void ShareALogOfChanges(const QString& path, const char* then) {
    const QString script =
        u"import sqlite3,sys,os; c = sqlite3.connect(sys.argv[1]);"
        "c.execute('pragma journal_mode=WAL'); c.execute(sys.argv[2]); c.commit(); os._exit(0)"_s;
    EXPECT_EQ(QProcess::execute(u"python3"_s, {u"-c"_s, script, path, QString::fromUtf8(then)}), 0);
}

TEST_F(DatabaseTest, ALogOfChangesIsWrittenBackAndNeverMapped) {
    const QString index = Path() + u"-shm"_s;
    const char* const insert = "INSERT INTO Photos (Name) VALUES ('logged')";
    ShareALogOfChanges(Path(), insert);
    EXPECT_TRUE(QFile::exists(index));
    const auto expectWritable = [this](qint64 count) {
        SqliteDatabase opened(folder_.path());
        EXPECT_EQ(Count(opened), count);
        EXPECT_FALSE(QFile::exists(Path() + u"-wal"_s));
        Insert(database_, u"at the same time"_s);
        EXPECT_EQ(Count(opened), count + 1);
    };
    expectWritable(1);
    {
        SqliteDatabase before(folder_.path());
        EXPECT_EQ(Count(before), 2);
        ShareALogOfChanges(Path(), insert);
        EXPECT_TRUE(TextOf<StoreError>([&] { Count(before); }).contains(u"WAL"_s));
    }
    expectWritable(3);
}

TEST_F(DatabaseTest, NoticesDamage) {
    Insert(database_, QString(50'000, u'x'));
    QByteArray bytes = platform::ReadWholeFile(Path(), 10'000'000);
    std::fill(bytes.begin() + 4096, bytes.end(), '\xA5');
    platform::WriteFileAtomically(Path(), bytes);
    SqliteDatabase damaged(folder_.path());
    const QString error = TextOf<StoreError>(
        [&] { Statement(damaged, u"SELECT max(length(Name) + Id) FROM Photos"_s).Step(); });
    EXPECT_TRUE(error.endsWith(u"Die Datenbank ist beschädigt."_s)) << error.toStdString();
}

TEST_F(DatabaseTest, SaysWhatStandsInTheWay) {
    const auto insertError = [&] {
        return TextOf<StoreError>([&] { Insert(database_, QString(50'000, u'x')); });
    };
    {
        SqliteDatabase other(folder_.path());
        const Transaction writing(other);
        EXPECT_TRUE(insertError().endsWith(u"Ein anderes Programm benutzt die Datenbank."_s));
    }
    EXPECT_TRUE(TextOf<StoreError>([&] {
                    database_.Execute(u"SELECT zeroblob(17000000)"_s);
                }).endsWith(u"Der Wert ist zu groß."_s));
    database_.Execute(u"PRAGMA max_page_count = 8"_s);
    EXPECT_TRUE(insertError().endsWith(u"Auf dem Datenträger ist kein Platz mehr."_s));
    database_.Execute(u"PRAGMA query_only = 1"_s);
    EXPECT_TRUE(insertError().endsWith(u"Die Datenbank ist schreibgeschützt."_s));
    EXPECT_EQ(Count(database_), 0);
}

TEST_F(DatabaseTest, EndsStatementsThatNeverEnd) {
    SqliteDatabase hasty(folder_.path(), std::chrono::seconds(5), std::chrono::milliseconds(30));
    const QString endless = u"WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n) "_s;
    hasty.Execute(u"CREATE TABLE Log (i)"_s);
    hasty.Execute(u"CREATE TRIGGER T AFTER INSERT ON Photos BEGIN INSERT INTO Log "_s + endless +
                  u"SELECT max(i) FROM n; END"_s);
    const auto all = [&](const QString& sql) {
        return TextOf<StoreError>([&] {
            for (Statement rows(hasty, sql); rows.Step();) {
            }
        });
    };
    for (const QString& sql :
         {u"INSERT INTO Photos (Name) VALUES ('a')"_s, endless + u"SELECT i FROM n"_s}) {
        EXPECT_TRUE(all(sql).contains(u"hat zu lange gerechnet und wurde abgebrochen"_s))
            << qPrintable(sql);
    }
    EXPECT_EQ(Count(hasty), 0);
    for (const auto& [found, next] :
         {std::pair(u"„T“"_s, u"DROP TRIGGER T"_s),
          std::pair(u"„Log.j“"_s, u"ALTER TABLE Log DROP COLUMN j"_s)}) {
        EXPECT_TRUE(
            TextOf<StoreError>([&] { SqliteDatabase again(folder_.path()); }).contains(found));
        database_.Execute(next);
        if (found == u"„T“"_s) {
            database_.Execute(u"ALTER TABLE Log ADD COLUMN j AS (zeroblob(16000000))"_s);
        }
    }
    const SqliteDatabase cleaned(folder_.path());
    Statement twice(hasty, endless + u"SELECT sum(i) FROM (SELECT i FROM n LIMIT 10000)"_s);
    for (int run = 0; run < 100; ++run, twice.Reset()) {
        EXPECT_TRUE(twice.Step()) << "each run has its own time";
    }
}

TEST_F(DatabaseTest, StateTellsEveryChange) {
    SqliteDatabase other(folder_.path());
    const Database::State before = database_.PresentState();
    EXPECT_EQ(Count(database_), 0);
    EXPECT_EQ(database_.PresentState(), before) << "reading changes nothing";
    Insert(other, u"theirs"_s);
    const Database::State between = database_.PresentState();
    EXPECT_NE(between, before);
    Insert(database_, u"ours"_s);
    EXPECT_NE(database_.PresentState(), between);
}

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

class FullTextIndexTest : public ::testing::Test {
 protected:
    FullTextIndexTest() { database_.RunScript(index_.Creation()); }

    std::vector<qint64> Rows(const QString& text) const { return index_.RowsWith(text); }
    void RequireSound() {
        database_.Execute(u"INSERT INTO Tags (Tags) VALUES ('integrity-check')"_s);
    }

    QTemporaryDir folder_;
    SqliteDatabase database_{folder_.path()};
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
