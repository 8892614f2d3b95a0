#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <algorithm>

#include "platform/AtomicFile.h"
#include "store/Database.h"
#include "store/Statement.h"
#include "store/StoreError.h"
#include "store/Transaction.h"
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
    QString Path() const { return folder_.filePath(u"KDRImageBase.db"_s); }

    static QString OpeningError(const QString& folder) {
        return TextOf<StoreError>([&] { const Database database(folder); });
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

TEST_F(DatabaseTest, WhatIsEmptyIsAValueAndWhatIsNotBoundIsNone) {
    Database database(folder_.path());
    database.RunScript(Script);
    EXPECT_TRUE(database.TableExists(u"PHOTOS"_s));
    EXPECT_FALSE(database.TableExists(u"Photos_Name"_s)) << "an index is no table";
    const QString name = u"Größe \U0001F4F7\r\n'; DROP TABLE Photos"_s;
    const QByteArray thumb("\xFF\xD8\0\x01", 4);
    Statement insert(database, u"INSERT INTO Photos (Name, Thumb) VALUES (?, ?)"_s);
    insert.Bind(1, name).Bind(2, QByteArrayView(thumb)).Step();
    insert.Reset();
    insert.Bind(1, QString()).Bind(2, QByteArrayView()).Step();
    Insert(database, u"third"_s);
    EXPECT_EQ(database.LastInsertedId(), 3);

    Statement select(database, u"SELECT Id, Name, Thumb FROM Photos ORDER BY Id"_s);
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

/// Each row puts something in the database's place in a folder of its own.
TEST_F(DatabaseTest, SaysWhyItCannotBeOpenedAndLeavesWhatIsThere) {
    const struct {
        const char16_t* reason;
        void (*place)(const QString& folder, const QByteArray& path);
    } rows[] = {
        {u"Die Datei oder der Ordner ist nicht vorhanden",
         [](const QString& folder, const QByteArray&) { QDir().rmdir(folder); }},
        {u"Die Datei ist keine Datenbank",
         [](const QString&, const QByteArray& path) {
             platform::WriteFileAtomically(QFile::decodeName(path), QByteArray(2000, 'x'));
         }},
        {u"Es ist keine gewöhnliche Datei",
         [](const QString&, const QByteArray& path) { mkfifo(path.constData(), 0600); }},
        {u"Die Datei ist eine Verknüpfung",
         [](const QString&, const QByteArray& path) {
             EXPECT_EQ(symlink("elsewhere.db", path.constData()), 0);
         }},
        {u"„%1“ ist eine Verknüpfung, die einem anderen Benutzer gehört",
         [](const QString& folder, const QByteArray&) {
             QDir().rmdir(folder);
             const QByteArray link = QFile::encodeName(folder);
             EXPECT_EQ(symlink("/tmp", link.constData()), 0);
             EXPECT_EQ(lchown(link.constData(), 1001, 1001), 0);
         }},
    };
    for (int i = 0; i < int(std::size(rows)); ++i) {
        if (i == 4 && geteuid() != 0) {
            GTEST_SKIP() << "no right to give a link away";
        }
        const QString folder = folder_.filePath(QString::number(i));
        const QString path = folder + u"/KDRImageBase.db"_s;
        QDir().mkdir(folder);
        rows[i].place(folder, QFile::encodeName(path));
        const QFileInfo before(path);
        const auto size = before.size();
        const QString reason = QString::fromUtf16(rows[i].reason).replace(u"%1"_s, folder);
        EXPECT_EQ(OpeningError(folder),
                  u"Die Datenbank „%1“ konnte nicht geöffnet werden: %2."_s.arg(path, reason));
        EXPECT_EQ(QFileInfo(path).size(), size);
        EXPECT_FALSE(QFile::exists(folder + u"/elsewhere.db"_s));
    }
}

TEST_F(DatabaseTest, IsTheUsersAloneAndLiesBehindTheUsersOwnLinks) {
    const QString link = folder_.filePath(u"link"_s);
    ASSERT_TRUE(QFile::link(folder_.path(), link));
    const mode_t mask = umask(0);
    Database database(link);
    database.RunScript(Script);
    umask(mask);
    EXPECT_EQ(database.Path(), link + u"/KDRImageBase.db"_s);
    EXPECT_EQ(QFile::permissions(Path()) & QFileDevice::Permissions(0x7077),
              QFileDevice::ReadOwner | QFileDevice::WriteOwner);
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
    std::fill(bytes.begin() + 4096, bytes.end(), '\xA5');
    platform::WriteFileAtomically(Path(), bytes);
    const QString error = TextOf<StoreError>([&] {
        Database database(folder_.path());
        Count(database);
    });
    EXPECT_TRUE(error.endsWith(u"Die Datenbank ist beschädigt."_s)) << error.toStdString();
}

TEST_F(DatabaseTest, SaysWhatStandsInTheWay) {
    using std::chrono::milliseconds;
    Database database(folder_.path(), milliseconds(20));
    database.RunScript(Script);
    const auto insertError = [&] {
        return TextOf<StoreError>([&] { Insert(database, QString(50'000, u'x')); });
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
