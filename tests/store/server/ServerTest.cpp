#include <gtest/gtest.h>
#include <unistd.h>

#include <QDir>
#include <QElapsedTimer>
#include <QRandomGenerator>
#include <QScopeGuard>
#include <QTcpServer>
#include <QTemporaryDir>
#include <csignal>

#include "store/FullTextIndex.h"
#include "store/Statement.h"
#include "store/StoreError.h"
#include "store/Transaction.h"
#include "store/postgres/PostgresDatabase.h"
#include "tests/support/Errors.h"
#include "tests/support/TestServer.h"

namespace kadrona::store {
namespace {

using namespace Qt::StringLiterals;
using namespace kadrona::testing;

/// That cannot be packed.
QString RandomWord(int letters) {
    QString word;
    QRandomGenerator random(1);
    for (int i = 0; i < letters; ++i) {
        word += QChar(u'a' + random.bounded(26));
    }
    return word;
}

class ServerTest : public ::testing::Test {
 protected:
    ServerTest() {
        database_.RunScript(
            {u"CREATE TABLE photos (id %1, name %2, thumb %3, taken timestamp)"_s.arg(
                database_.ColumnType(ColumnKind::AutomaticNumber),
                database_.ColumnType(ColumnKind::Memo),
                database_.ColumnType(ColumnKind::Graphic))});
    }

    static qint64 Number(Database& database, const QString& query) {
        Statement statement(database, query);
        statement.Step();
        return statement.Integer(0);
    }
    static qint64 Count(Database& database) {
        return Number(database, u"SELECT count(*) FROM photos"_s);
    }
    static void Insert(Database& database, const QString& name) {
        Statement(database, u"INSERT INTO photos (name) VALUES (?)"_s).Bind(1, name).Step();
    }

    static inline const ListedTable Photos{.name = u"photos"_s,
                                           .description = u"Fotos"_s,
                                           .index = u"photos_idx"_s,
                                           .keys = {u"taken"_s, u"id"_s},
                                           .columns = {u"name"_s},
                                           .large = u"thumb"_s};
    ServerAddress address_ = NewServerDatabase();
    PostgresDatabase database_{address_};
};

TEST_F(ServerTest, ValuesComeBackAsTheyWent) {
    const QByteArray thumb("\xFF\xD8\0\x01", 4);
    Statement insert(
        database_, u"INSERT INTO photos (name, thumb, taken) VALUES (?, ?, ?) RETURNING '?', id"_s);
    insert.Bind(1, u"Größe \U0001F4F7\r\n'; DROP TABLE photos"_s)
        .Bind(2, QByteArrayView(thumb))
        .Bind(3, u"2026-03-07 14:30:05.120"_s);
    ASSERT_TRUE(insert.Step());
    EXPECT_EQ(insert.Text(0), u"?"_s) << "what stands in quotes is no parameter";
    insert.Reset();
    insert.Bind(1, u"vor\0nach"_s).Bind(2, QByteArrayView()).Bind(3, u"2026-03-07 14:30:05"_s);
    ASSERT_TRUE(insert.Step());
    EXPECT_EQ(insert.Integer(1), 2);
    Insert(database_, QString());

    Statement select(database_, u"SELECT name, thumb, taken FROM photos ORDER BY id"_s);
    ASSERT_TRUE(select.Step());
    EXPECT_EQ(select.Text(0), u"Größe \U0001F4F7\r\n'; DROP TABLE photos"_s);
    EXPECT_EQ(select.Blob(1), thumb);
    EXPECT_EQ(select.Text(2), u"2026-03-07 14:30:05.120"_s);
    ASSERT_TRUE(select.Step());
    EXPECT_EQ(select.Text(0), u"vornach"_s);
    EXPECT_EQ(select.Text(2), u"2026-03-07 14:30:05.000"_s);
    EXPECT_FALSE(select.IsNull(1));
    ASSERT_TRUE(select.Step());
    EXPECT_TRUE(!select.IsNull(0) && select.IsNull(1) && select.IsNull(2));
    EXPECT_EQ(select.Text(2), QString());
    EXPECT_FALSE(select.Step());
}

TEST_F(ServerTest, TransactionsAndNumbersAreThoseOfAllWorkplaces) {
    PostgresDatabase other(address_);
    {
        Transaction transaction(database_);
        Insert(database_, u"dropped"_s);
        EXPECT_EQ(Count(other), 0);
    }
    {
        Transaction transaction(database_);
        Insert(database_, u"kept"_s);
        EXPECT_THROW(database_.Execute(u"nonsense"_s), StoreError);
        EXPECT_THROW(transaction.Commit(), StoreError) << "not said to be done";
    }
    EXPECT_EQ(Count(database_), 0);
    Insert(other, u"theirs"_s);
    EXPECT_EQ(Number(other, u"SELECT id FROM photos"_s), 3);
    database_.RaiseLastNumber(u"photos"_s, u"id"_s, 7);
    database_.RaiseLastNumber(u"photos"_s, u"id"_s, 5);
    Insert(other, u"later"_s);
    EXPECT_EQ(database_.LastNumber(u"photos"_s, u"id"_s), 8);
    EXPECT_EQ(Count(database_), 2);
}

TEST_F(ServerTest, ChangesOfOthersAreHeardOf) {
    database_.RunScript(database_.Supplements(Photos));
    PostgresDatabase other(address_);
    const Database::State before = database_.PresentState();
    EXPECT_EQ(Count(database_), 0);
    EXPECT_EQ(database_.PresentState(), before) << "reading changes nothing";
    for (Database* writer : {static_cast<Database*>(&other), static_cast<Database*>(&database_)}) {
        const Database::State last = database_.PresentState();
        Insert(*writer, u"new"_s);
        EXPECT_NE(database_.PresentState(), last);
    }
}

TEST_F(ServerTest, OnlyTheLargeColumnIsKeptApartFromItsRow) {
    database_.RunScript(database_.Supplements(Photos));
    Statement(database_, u"INSERT INTO photos (name, thumb) VALUES (?, ?)"_s)
        .Bind(1, RandomWord(150))
        .Bind(2, QByteArrayView(QByteArray(3000, 'x')))
        .Step();
    Statement apart(
        database_,
        u"SELECT reltoastrelid::regclass::text FROM pg_class WHERE relname = 'photos'"_s);
    ASSERT_TRUE(apart.Step());
    EXPECT_EQ(Number(database_, u"SELECT count(DISTINCT chunk_id) FROM "_s + apart.Text(0)), 1);
}

TEST_F(ServerTest, SaysWhyItCannotBeOpened) {
    for (const char* name : {"PGSERVICE", "PGOPTIONS", "PGSSLMODE", "PGTZ"}) {
        qputenv(name, "nonsense");
    }
    EXPECT_NO_THROW(PostgresDatabase{address_}) << "the environment says nothing";
    QTcpServer silent;
    ASSERT_TRUE(silent.listen(QHostAddress::LocalHost));
    const auto refusal = [&](auto&& change) {
        ServerAddress address = address_;
        change(address);
        QElapsedTimer time;
        time.start();
        const QString text = TextOf<StoreError>([&] { const PostgresDatabase refused(address); });
        EXPECT_LT(time.elapsed(), 3500) << text.toStdString();
        return text.section(u": "_s, -1);
    };
    EXPECT_EQ(refusal([](ServerAddress& address) { address.password = u"falsch"_s; }),
              u"Benutzername oder Kennwort ist falsch."_s);
    EXPECT_EQ(refusal([](ServerAddress& address) { address.password.clear(); }),
              u"Der Server verlangt ein Kennwort."_s);
    EXPECT_EQ(refusal([](ServerAddress& address) { address.database = u"dbname=x"_s; }),
              u"Diese Datenbank gibt es auf dem Server nicht."_s);
    EXPECT_EQ(refusal([](ServerAddress& address) { address.host = u"/tmp"_s; }),
              u"Unter dieser Adresse antwortet kein PostgreSQL-Server."_s);
    EXPECT_EQ(refusal([&](ServerAddress& address) {
                  address.host = u"127.0.0.1"_s;
                  address.port = silent.serverPort();
              }),
              u"Der Server antwortet nicht."_s);
    EXPECT_TRUE(refusal([](ServerAddress& address) {
                    address.host = u"gibt-es-nicht.invalid"_s;
                }).contains(u"Name"_s));
}

/// Over the network, for which the server gets a port of its own for a while.
TEST_F(ServerTest, OnlyAServerWithTheRightCertificateIsTalkedTo) {
    const QString certificates = qEnvironmentVariable("KADRONA_TEST_CERTIFICATES");
    if (certificates.isEmpty()) {
        GTEST_SKIP() << "there is no openssl here";
    }
    QTcpServer unused;  // the system knows a port that is free
    ASSERT_TRUE(unused.listen(QHostAddress::LocalHost));
    const int port = unused.serverPort();
    unused.close();
    const QString address = address_.host;
    const auto listen = [&](const QString& name, const QString& value) {
        return "PGPASSWORD=geheim psql -q -h " + address.toUtf8() + " -U kadrona postgres -c \"" +
               (u"ALTER SYSTEM SET %1 = '%2'"_s.arg(name, value)).toUtf8() + "\"";
    };
    const auto run = [](const QByteArray& line) {
        // NOLINTNEXTLINE(cert-env33-c): a line of our own
        ASSERT_EQ(std::system(line.constData()), 0) << line.toStdString();
    };
    run(listen(u"listen_addresses"_s, u"127.0.0.1"_s) + " && " +
        listen(u"port"_s, QString::number(port)));
    ControlServer("restart");
    const auto back = qScopeGuard([&] {
        run("PGPORT=" + QByteArray::number(port) + ' ' + listen(u"port"_s, u"5432"_s) +
            " && PGPORT=" + QByteArray::number(port) + ' ' + listen(u"listen_addresses"_s, {}));
        ControlServer("restart");
    });
    const QTemporaryDir home;
    ASSERT_TRUE(QDir(home.path()).mkdir(u".postgresql"_s));
    const QByteArray before = qgetenv("HOME");
    qputenv("HOME", QFile::encodeName(home.path()));
    const auto homeAgain = qScopeGuard([&] { qputenv("HOME", before); });
    const auto refusal = [&](const QString& host, const QString& trusted) {
        const QString root = home.path() + u"/.postgresql/root.crt"_s;
        QFile::remove(root);
        QFile::copy(certificates + u'/' + trusted, root);
        ServerAddress over = address_;
        over.host = host;
        over.port = port;
        over.verified = true;
        return TextOf<StoreError>([&] {
            PostgresDatabase database(over);
            EXPECT_EQ(Number(database,
                             u"SELECT count(*) FROM pg_stat_ssl WHERE ssl AND pid = "
                             u"pg_backend_pid()"_s),
                      1);
        });
    };
    EXPECT_EQ(refusal(u"localhost"_s, u"right.crt"_s), QString());
    for (const auto& [host, trusted] :
         {std::pair(u"localhost"_s, u"wrong.crt"_s), std::pair(u"127.0.0.1"_s, u"right.crt"_s),
          std::pair(u"localhost"_s, u"none"_s)}) {
        const QString text = refusal(host, trusted);
        EXPECT_TRUE(text.contains(u"nicht mit einem gültigen Zertifikat"_s)) << text.toStdString();
    }
}

TEST_F(ServerTest, SaysWhatStandsInTheWay) {
    ServerAddress guest = address_;
    guest.user = u"gast"_s;
    guest.password = u"gast"_s;
    PostgresDatabase looking(guest);
    EXPECT_TRUE(TextOf<StoreError>([&] {
                    Insert(looking, u"x"_s);
                }).endsWith(u"Dem Benutzer fehlt auf dem Server das Recht dazu."_s));
    PostgresDatabase other(address_);
    const Transaction writing(other);
    other.Execute(u"LOCK TABLE photos"_s);
    EXPECT_TRUE(TextOf<StoreError>([&] {
                    Insert(database_, u"x"_s);
                }).endsWith(u"Ein anderes Programm benutzt die Datenbank."_s));
}

/// It would be called for "=" between a column and a text.
TEST_F(ServerTest, AnotherUsersFunctionsAreNotRun) {
    database_.Execute(u"GRANT CREATE ON SCHEMA public TO gast"_s);
    ServerAddress guest = address_;
    guest.user = guest.password = u"gast"_s;
    {
        PostgresDatabase other(guest);
        other.Execute(
            u"CREATE FUNCTION trap(varchar, varchar) RETURNS boolean LANGUAGE sql AS "
            u"'SELECT true'"_s);
        EXPECT_NO_THROW(PostgresDatabase{guest}) << "their own";
    }
    EXPECT_TRUE(
        TextOf<StoreError>([&] { const PostgresDatabase caught(address_); }).contains(u"„trap“"_s));
    database_.Execute(u"ALTER FUNCTION trap OWNER TO kadrona"_s);
    EXPECT_NO_THROW(PostgresDatabase{guest}) << "the administrator's";
}

/// Neither keeps the program waiting, and what is lost stays lost.
TEST_F(ServerTest, AServerThatIsGoneIsGivenUp) {
    const auto pid = static_cast<pid_t>(Number(database_, u"SELECT pg_backend_pid()"_s));
    ASSERT_EQ(kill(pid, SIGSTOP), 0);
    QElapsedTimer time;
    time.start();
    EXPECT_THROW(Count(database_), ConnectionLost);
    EXPECT_LT(time.elapsed(), 3500);
    time.start();
    EXPECT_THROW(Count(database_), ConnectionLost);
    EXPECT_LT(time.elapsed(), 50);
    kill(pid, SIGCONT);

    PostgresDatabase open(address_);
    {
        Transaction transaction(open);
        Insert(open, u"x"_s);
        ControlServer("restart -m fast");
        EXPECT_THROW(Insert(open, u"y"_s), ConnectionLost);
    }
    EXPECT_THROW(open.PresentState(), ConnectionLost);
    PostgresDatabase again(address_);
    EXPECT_EQ(Count(again), 0);
}

/// A statement that takes long is shown, and ends where the user gives it up.
TEST_F(ServerTest, TidyingCanBeGivenUp) {
    for (int i = 0; i < 50; ++i) {
        Insert(database_, u"x"_s);
    }
    database_.Execute(u"DELETE FROM photos"_s);
    EXPECT_THROW(
        database_.Compact({}, [](const QString&, qint64, qint64) { throw platform::Cancelled(); }),
        platform::Cancelled);
    {
        PostgresDatabase other(address_);
        const Transaction reading(other);
        other.Execute(u"LOCK TABLE photos"_s);
        EXPECT_THROW(database_.Compact({}, platform::NoProgress), StoreError);
        EXPECT_EQ(Number(database_,
                         u"SELECT count(*) FROM pg_settings WHERE "
                         u"name = 'statement_timeout' AND setting = '600000'"_s),
                  1);
        int ticks = 0;
        EXPECT_THROW(database_.Compact({},
                                       [&](const QString&, qint64, qint64) {
                                           if (++ticks == 3) {
                                               throw platform::Cancelled();
                                           }
                                       }),
                     platform::Cancelled);
    }
    database_.Compact({}, platform::NoProgress);
    EXPECT_EQ(Number(database_, u"SELECT pg_relation_size('photos')"_s), 0);
}

TEST_F(ServerTest, WhatIsWaitedForIsSeen) {
    PostgresDatabase patient(
        address_, {.connecting = std::chrono::seconds(2), .working = std::chrono::seconds(1)});
    int ticks = 0;
    patient.WhileWaiting([&] {
        ++ticks;
        EXPECT_THROW(Count(patient), StoreError) << "one question at a time";
    });
    const QString slow = u"SELECT 7 FROM pg_sleep(0.5)"_s;
    EXPECT_EQ(Number(patient, slow), 7);
    EXPECT_GT(ticks, 1);
    patient.WhileWaiting([] { throw platform::Cancelled(); });
    EXPECT_THROW(Number(patient, slow), platform::Cancelled);
    EXPECT_TRUE(patient.IsLost());
}

TEST_F(ServerTest, FindsWholeWordsWhateverTheirLength) {
    FullTextIndex index(database_, u"Tags"_s);
    database_.RunScript(index.Creation());
    using Found = std::vector<qint64>;
    const QString word = RandomWord(20'000);  // more than an index entry has room for
    index.Set(3, u"Jürgen O'Neill\r\nGroß"_s);
    index.Set(1, u"Anna Müller"_s);
    index.Set(2, u"MÜLLER, Anna-Sofie "_s + word);
    EXPECT_EQ(index.RowsWith(u"müller"_s), (Found{1, 2}));
    EXPECT_EQ(index.RowsWith(word.toUpper() + u" Sofie Müller"_s), (Found{2}));
    EXPECT_EQ(index.RowsWith(u"o'neill GROß"_s), (Found{3}));
    EXPECT_EQ(index.RowsWith(u"Müll \" %"_s), Found());
    index.Set(1, u"Wort "_s.repeated(200'000));
    EXPECT_EQ(index.RowsWith(u"müller"_s), (Found{2}));
    EXPECT_EQ(index.RowsWith(u"WORT"_s), (Found{1}));
}

}  // namespace
}  // namespace kadrona::store
