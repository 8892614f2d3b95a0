#include <gtest/gtest.h>
#include <malloc.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QElapsedTimer>
#include <QScopeGuard>
#include <QTcpServer>
#include <array>
#include <thread>

#include "store/StoreError.h"
#include "store/postgres/AnswerWatch.h"
#include "store/postgres/PostgresDatabase.h"
#include "tests/support/Errors.h"

namespace kadrona::store {
namespace {

using namespace Qt::StringLiterals;
using namespace kadrona::testing;

/// A server that answers as it is told to, to one client.
class ToldServer {
 public:
    /// What is sent for each packet of the client's, and what then goes on without an end, a piece
    /// each `pause`.
    ToldServer(const QByteArrayList& answers, const QByteArray& endless = {},
               std::chrono::microseconds pause = {})
        : listens_(listener_.listen(QHostAddress::LocalHost)),
          thread_([=, this, socket = static_cast<int>(listener_.socketDescriptor())] {
              pollfd connecting{.fd = socket, .events = POLLIN, .revents = 0};
              poll(&connecting, 1, 2000);
              const int client = accept4(socket, nullptr, nullptr, 0);
              std::array<char, 1000> request{};
              for (const QByteArray& answer : answers) {
                  EXPECT_GT(recv(client, request.data(), request.size(), 0), 0);
                  EXPECT_EQ(Sent(client, answer), answer.size());
              }
              while (!endless.isEmpty() && Sent(client, endless) > 0) {
                  std::this_thread::sleep_for(pause);
              }
              while (recv(client, request.data(), request.size(), 0) > 0) {
                  last_ = request.front();
              }
              close(client);
          }) {}
    ~ToldServer() { Finish(); }
    ToldServer(const ToldServer&) = delete;
    ToldServer& operator=(const ToldServer&) = delete;

    ServerAddress Address() const {
        return {.host = u"127.0.0.1"_s,
                .port = listener_.serverPort(),
                .database = u"x"_s,
                .user = u"x"_s,
                .password = {}};
    }
    /// Waits until the client has gone; how the last packet began that was not answered.
    char Finish() {
        if (thread_.joinable()) {
            thread_.join();
        }
        return last_;
    }

 private:
    static ssize_t Sent(int client, const QByteArray& bytes) {
        return send(client, bytes.constData(), static_cast<size_t>(bytes.size()), MSG_NOSIGNAL);
    }

    QTcpServer listener_;
    bool listens_;
    char last_ = 0;
    std::thread thread_;
};

/// No encryption, and a greeting in the name of a version.
QByteArrayList Greeting(const QByteArray& version) {
    return {"N", QByteArray("R\0\0\0\10\0\0\0\0S\0\0\0", 13) + char(20 + version.size()) +
                     QByteArray("server_version\0", 15) + version + QByteArray("\0Z\0\0\0\5I", 7)};
}

TEST(ToldServerTest, AnOldServerAndOneThatProvesNothingAreRefused) {
    const auto refusal = [](const ServerAddress& address) {
        return TextOf<StoreError>([&] { const PostgresDatabase refused(address); });
    };
    // It is asked for encryption alone.
    ToldServer unproven({"N"});
    ServerAddress address = unproven.Address();
    address.verified = true;
    EXPECT_TRUE(refusal(address).contains(u"nicht mit einem gültigen Zertifikat"_s));
    EXPECT_EQ(unproven.Finish(), 0) << "no password, no user";
    const ToldServer old(Greeting("9.6.1"));
    EXPECT_TRUE(refusal(old.Address()).contains(u"zu alt: Er hat die Version 9.6"_s));
}

/// The number of rounds comes in two pieces.
TEST(ToldServerTest, APasswordThatCostsHoursIsNotCalculated) {
    QTcpServer listener;
    ASSERT_TRUE(listener.listen(QHostAddress::LocalHost));
    std::thread server([socket = static_cast<int>(listener.socketDescriptor())] {
        pollfd connecting{.fd = socket, .events = POLLIN, .revents = 0};
        poll(&connecting, 1, 2000);
        const int client = accept4(socket, nullptr, nullptr, 0);
        std::array<char, 1000> bytes{};
        const auto asked = [&] {
            const ssize_t count = recv(client, bytes.data(), bytes.size(), 0);
            return QByteArray(bytes.data(), std::max<ssize_t>(count, 0));
        };
        const auto say = [&](const QByteArray& text) {
            send(client, text.constData(), static_cast<size_t>(text.size()), MSG_NOSIGNAL);
        };
        asked();
        say("N");
        asked();
        say(QByteArray("R\0\0\0\x17\0\0\0\x0aSCRAM-SHA-256\0\0", 24));
        const QByteArray first = "r=" + asked().split('=').last() + "x,s=QUJDRA==,i=";
        say(QByteArray("R\0\0\0", 4) + char(first.size() + 18) + QByteArray("\0\0\0\x0b", 4) +
            first + "21474");
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        say("83647");
        asked();
        close(client);
    });
    const auto end = qScopeGuard([&] { server.join(); });
    const ServerAddress address{.host = u"127.0.0.1"_s,
                                .port = listener.serverPort(),
                                .database = u"x"_s,
                                .user = u"x"_s,
                                .password = u"x"_s};
    const QString text = TextOf<ConnectionLost>([&] { const PostgresDatabase refused(address); });
    EXPECT_TRUE(text.contains(u"mehr Rechenarbeit, als gut ist"_s)) << text.toStdString();
}

/// Whatever comes ends soon and with a word.
TEST(ToldServerTest, AHostileAnswerIsGivenUp) {
    constexpr ServerPatience Short{.connecting = std::chrono::seconds(2),
                                   .working = std::chrono::milliseconds(200)};
    const QByteArray listening(
        "1\0\0\0\4"
        "2\0\0\0\4"
        "C\0\0\0\13LISTEN\0Z\0\0\0\5I",
        28);
    const QByteArray parameter("S\0\0\0\10a\0b\0", 9);
    struct Case {
        QByteArray answer;
        QByteArray endless;
        int pause;
        QStringView reason;
        std::chrono::milliseconds patience = std::chrono::seconds(2);
    };
    for (const Case& row : {
             Case{{"H\0\0\0\7\0\0\0", 8}, {}, 0, u"antwortet mit etwas anderem"},
             Case{{"N\0\0\17\xff", 5},
                  "M",
                  20'000,
                  u"antwortet nicht",
                  std::chrono::milliseconds(200)},
             Case{{},
                  parameter.repeated(1000),
                  50'000,
                  u"findet mit seiner Antwort kein Ende",
                  std::chrono::milliseconds(500)},
             Case{{}, parameter.repeated(1000), 0, u"schickt viel und beantwortet nichts"},
             Case{{"1\0\0\0\4"
                   "2\0\0\0\4",
                   10},
                  QByteArray("C\0\0\0\15SELECT 0\0", 14).repeated(700),
                  0,
                  u"schickt viel und beantwortet nichts"},
             Case{{"E\0\0\0\5\0Z\0\0\0\5I", 12}, {}, 0, u"sagt nicht, warum"},
         }) {
        const ToldServer server(Greeting("15.1") << listening << listening << row.answer,
                                row.endless, std::chrono::microseconds(row.pause));
        QElapsedTimer time;
        time.start();
        const QString text = TextOf<StoreError>([&] {
            PostgresDatabase database(
                server.Address(), {.connecting = std::chrono::seconds(2), .working = row.patience});
            database.Execute(u"SELECT 1"_s);
        });
        EXPECT_TRUE(text.contains(row.reason)) << text.toStdString();
        EXPECT_LT(time.elapsed(), 15'000) << text.toStdString();
    }
    const ToldServer flooding({"N", QByteArray("R\0\0\0\10\0\0\0\0", 9)}, parameter.repeated(1000));
    EXPECT_TRUE(TextOf<ConnectionLost>([&] {
                    PostgresDatabase(flooding.Address(), Short);
                }).contains(u"schickt vor der Anmeldung mehr"_s));
    const ToldServer deaf(Greeting("15.1") << listening << listening << listening);
    PostgresDatabase database(deaf.Address(), Short);
    QElapsedTimer time;
    time.start();
    const auto cancelled = [waits = false](const QString&, qint64, qint64) mutable {
        if (std::exchange(waits, true)) {
            throw platform::Cancelled();
        }
    };
    EXPECT_THROW(database.Compact({}, cancelled), platform::Cancelled);
    EXPECT_LT(time.elapsed(), 30'000) << "nobody hears that it is cancelled";
    const ToldServer noisy(Greeting("15.1") << listening << listening << listening << QByteArray(),
                           parameter.repeated(1000));
    PostgresDatabase held(noisy.Address(), Short);
    EXPECT_THROW(held.Compact({}, cancelled), platform::Cancelled);
}

TEST(AnswerWatch, HasAnEyeOnTheMemory) {
    AnswerWatch watch(-1, std::chrono::seconds(1), true);
    std::this_thread::sleep_for(std::chrono::milliseconds(60));
    EXPECT_EQ(watch.Excess(), QString());
    const std::vector<char> answer(300 << 20);
    std::this_thread::sleep_for(std::chrono::milliseconds(60));
    const bool isCounted = mallinfo2().hblkhd > answer.size();  // not by the sanitizers
    EXPECT_EQ(watch.Excess().isEmpty(), !isCounted);
}

}  // namespace
}  // namespace kadrona::store
