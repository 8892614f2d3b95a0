#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>
#include <algorithm>
#include <string>

#include "platform/AtomicFile.h"
#include "store/Database.h"
#include "store/Statement.h"
#include "store/StoreError.h"
#include "store/Transaction.h"

namespace kadrona::store {
namespace {

using namespace Qt::StringLiterals;

const QStringList Script = {
    u"CREATE TABLE IF NOT EXISTS Photos (Id INTEGER PRIMARY KEY AUTOINCREMENT, Name TEXT, "
    u"Thumb BLOB)"_s,
    u"CREATE INDEX IF NOT EXISTS Photos_Name ON Photos (Name DESC)"_s};

class DatabaseTest : public testing::Test {
 protected:
    QString Path() const { return folder_.filePath(u"KDRImageBase.db"_s); }

    std::string OpeningError(const QString& folder) const {
        try {
            const Database database(folder);
        } catch (const StoreError& error) {
            return error.what();
        }
        return "no error";
    }

    static void Insert(Database& database, const QString& name) {
        Statement(database, u"INSERT INTO Photos (Name) VALUES (?)"_s).Bind(1, name).Step();
    }

    static qint64 Count(Database& database) {
        Statement count(database, u"SELECT count(*) FROM Photos"_s);
        count.Step();
        return count.Integer(0);
    }

    QTemporaryDir folder_;
};

TEST_F(DatabaseTest, ScriptMakesWhatIsMissingAndKeepsTheRest) {
    {
        Database database(folder_.path());
        EXPECT_FALSE(database.TableExists(u"Photos"_s));
        database.RunScript(Script);
        EXPECT_TRUE(database.TableExists(u"PHOTOS"_s));
        EXPECT_FALSE(database.TableExists(u"Photos_Name"_s)) << "an index is no table";
        Insert(database, u"2026_03_00001.jpg"_s);
        EXPECT_EQ(database.LastInsertedId(), 1);
    }
    Database database(folder_.path());
    database.RunScript(Script);
    EXPECT_EQ(Count(database), 1);
}

TEST_F(DatabaseTest, ValuesComeBackAsTheyWere) {
    Database database(folder_.path());
    database.RunScript(Script);
    const QString name = u"Größe \U0001F4F7\r\n'; DROP TABLE Photos"_s;
    const QByteArray thumb("\xFF\xD8\0\x01", 4);
    Statement insert(database, u"INSERT INTO Photos (Name, Thumb) VALUES (?, ?)"_s);
    insert.Bind(1, name).Bind(2, QByteArrayView(thumb)).Step();
    insert.Reset();
    insert.Bind(1, QString()).Bind(2, QByteArrayView()).Step();
    Insert(database, u"third"_s);

    Statement select(database, u"SELECT Id, Name, Thumb FROM Photos ORDER BY Id"_s);
    ASSERT_TRUE(select.Step());
    EXPECT_EQ(select.Integer(0), 1);
    EXPECT_EQ(select.Text(1), name);
    EXPECT_EQ(select.Blob(2), thumb);
    ASSERT_TRUE(select.Step());
    EXPECT_FALSE(select.IsNull(1)) << "an empty text is a value";
    EXPECT_FALSE(select.IsNull(2)) << "an empty blob is a value";
    ASSERT_TRUE(select.Step());
    EXPECT_TRUE(select.IsNull(2)) << "what was not bound is NULL";
    EXPECT_TRUE(select.Blob(2).isEmpty());
    EXPECT_FALSE(select.Step());
}

TEST_F(DatabaseTest, TransactionRollsBackUnlessCommitted) {
    Database database(folder_.path());
    database.RunScript(Script);
    {
        Transaction transaction(database);
        Insert(database, u"dropped"_s);
        EXPECT_EQ(Count(database), 1);
    }
    EXPECT_EQ(Count(database), 0);
    {
        Transaction transaction(database);
        Insert(database, u"kept"_s);
        transaction.Commit();
    }
    EXPECT_EQ(Count(database), 1);
    EXPECT_THROW(database.RunScript({u"DELETE FROM Photos"_s, u"nonsense"_s}), StoreError);
    EXPECT_EQ(Count(database), 1) << "a script is done as a whole or not at all";
    Insert(database, u"after"_s);
    Database other(folder_.path());
    EXPECT_EQ(Count(other), 2) << "no transaction was left open";
}

TEST_F(DatabaseTest, SaysWhyItCannotBeOpened) {
    EXPECT_EQ(OpeningError(u"/fehlt"_s),
              "Die Datenbank „/fehlt/KDRImageBase.db“ konnte nicht geöffnet werden: Die Datei "
              "kann nicht geöffnet oder angelegt werden.");
    EXPECT_FALSE(QFile::exists(u"/fehlt"_s));

    const QByteArray text(2000, 'x');
    platform::WriteFileAtomically(Path(), text);
    EXPECT_EQ(OpeningError(folder_.path()), "Die Datenbank „" + Path().toStdString() +
                                                "“ konnte nicht geöffnet werden: Die Datei ist "
                                                "keine Datenbank.");
    EXPECT_EQ(platform::ReadWholeFile(Path(), 5000), text) << "the file stays as it was";
}

TEST_F(DatabaseTest, NoticesDamage) {
    {
        Database database(folder_.path());
        database.RunScript(Script);
        Transaction transaction(database);
        for (int i = 0; i < 2000; ++i) {
            Insert(database, QString::number(i));
        }
        transaction.Commit();
    }
    QByteArray bytes = platform::ReadWholeFile(Path(), 10'000'000);
    ASSERT_GT(bytes.size(), 20'000);
    const QByteArray truncated = bytes.first(bytes.size() / 2);
    std::fill(bytes.begin() + 4096, bytes.end(), '\xA5');
    for (const QByteArray& damaged : {bytes, truncated}) {
        platform::WriteFileAtomically(Path(), damaged);
        try {
            Database database(folder_.path());
            Count(database);
            ADD_FAILURE() << "went unnoticed";
        } catch (const StoreError& error) {
            EXPECT_TRUE(error.Text().endsWith(u"Die Datenbank ist beschädigt."_s)) << error.what();
        }
    }
}

TEST_F(DatabaseTest, SaysWhatStandsInTheWay) {
    using std::chrono::milliseconds;
    Database database(folder_.path(), milliseconds(20));
    database.RunScript(Script);
    const auto insertError = [&] {
        try {
            Insert(database, QString(50'000, u'x'));
        } catch (const StoreError& error) {
            return error.Text();
        }
        return u"no error"_s;
    };
    {
        Database other(folder_.path());
        const Transaction writing(other);
        EXPECT_TRUE(insertError().endsWith(u"Ein anderes Programm benutzt die Datenbank."_s));
    }
    database.Execute(u"PRAGMA max_page_count = 8"_s);
    EXPECT_TRUE(insertError().endsWith(u"Auf dem Datenträger ist kein Platz mehr."_s));
    database.Execute(u"PRAGMA query_only = 1"_s);
    EXPECT_TRUE(insertError().endsWith(u"Die Datenbank ist schreibgeschützt."_s));
    EXPECT_EQ(Count(database), 0);
}

TEST_F(DatabaseTest, StateTellsEveryChange) {
    Database database(folder_.path());
    database.RunScript(Script);
    Database other(folder_.path());
    const Database::State before = database.PresentState();
    EXPECT_EQ(Count(database), 0);
    EXPECT_EQ(database.PresentState(), before) << "reading changes nothing";
    Insert(other, u"theirs"_s);
    const Database::State between = database.PresentState();
    EXPECT_NE(between, before);
    Insert(database, u"ours"_s);
    EXPECT_NE(database.PresentState(), between);
}

}  // namespace
}  // namespace kadrona::store
