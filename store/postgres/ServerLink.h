#pragma once

#include <QByteArray>
#include <QDeadlineTimer>
#include <QString>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "store/ServerAddress.h"

class QDeadlineTimer;
struct pg_conn;
struct pg_result;

namespace kadrona::store {

class AnswerWatch;

/// One value for a statement's parameter; nothing is NULL. Bytes are no text.
struct ServerParameter {
    std::optional<QByteArray> value;
    bool bytes = false;
};

/// The connection to a PostgreSQL server, as its address says and nothing in the environment. It
/// never waits longer than its patience without hearing from the server (AnswerWatch says how much
/// that is): then, and whenever the connection fails otherwise, it is given up, and every further
/// call throws ConnectionLost at once.
class ServerLink {
 public:
    struct ResultCloser {
        void operator()(pg_result* result) const;
    };
    using Result = std::unique_ptr<pg_result, ResultCloser>;

    /// Throws ConnectionLost where the server is not there or not ready, and StoreError where it
    /// does not let us in or is older than the program needs.
    ServerLink(const ServerAddress& address, const ServerPatience& patience);

    /// "DATABASE auf HOST".
    const QString& Name() const { return name_; }

    /// Runs one statement, in the server's own notation, and waits for all of its rows. Throws
    /// StoreError, so while another one is waited for: whoever is called meanwhile runs none.
    Result Run(const QByteArray& sql, const std::vector<ServerParameter>& parameters = {});

    /// Runs one statement that may take long; meanwhile `tick` is called several times a second,
    /// and what it throws ends the statement.
    void RunWatched(const QByteArray& sql, const std::function<void()>& tick);

    /// From now on `tick` is called several times a second while the server is waited for; what it
    /// throws gives the connection up.
    void WhileWaiting(std::function<void()> tick) { watch_ = std::move(tick); }

    /// Whether a transaction is open, be it a failed one.
    bool InTransaction() const;

    /// How many changes others have announced on the connection so far, and how many statements of
    /// our own have changed rows.
    qint64 OthersNotices();
    qint64 OwnChanges() const { return ownChanges_; }

    /// Whether a statement has failed since this was asked last.
    bool HasFailed() { return std::exchange(failed_, false); }

    bool IsOpen() const { return connection_ != nullptr; }
    /// Gives the connection up.
    void Close() { connection_.reset(); }

 private:
    struct Closer {
        void operator()(pg_conn* connection) const;
    };

    void Connect(const ServerAddress& address);
    void WaitToBeLetIn(const QDeadlineTimer& deadline);
    [[noreturn]] void ThrowRefusal();
    void Send(const QByteArray& sql, const std::vector<ServerParameter>& parameters,
              AnswerWatch& answer);
    Result Receive(AnswerWatch& answer);
    void WaitUntilIdle(AnswerWatch& answer);
    void TakeIn(AnswerWatch& answer);
    short WaitWatched(short events, const AnswerWatch& answer);
    void Tick();
    void CancelStatement();
    short WaitFor(short events, const QDeadlineTimer& deadline);
    void TakeNotices();
    [[noreturn]] void GiveUp(const QString& reason);

    QString name_;
    ServerPatience patience_;
    std::unique_ptr<pg_conn, Closer> connection_;
    qint64 othersNotices_ = 0;
    qint64 ownChanges_ = 0;
    bool failed_ = false;
    bool busy_ = false;
    /// Who watches the statement that runs, instead of patience.
    std::function<void()> tick_;
    std::function<void()> watch_;
    QDeadlineTimer nextTick_;
};

}  // namespace kadrona::store
