#include "store/postgres/ServerLink.h"

#include <libpq-fe.h>
#include <poll.h>

#include <QDeadlineTimer>
#include <QScopeGuard>
#include <cerrno>

#include "platform/Progress.h"
#include "store/StoreError.h"
#include "store/postgres/AnswerWatch.h"
#include "store/postgres/CancelRequest.h"
#include "store/postgres/ConnectionStart.h"
#include "store/postgres/HostLookup.h"
#include "store/postgres/PasswordCost.h"
#include "store/postgres/ServerReason.h"

namespace kadrona::store {

using namespace Qt::StringLiterals;

namespace {

constexpr int OldestVersion = 12'00'00;
constexpr std::chrono::milliseconds BetweenTicks(100);
constexpr QStringView Silent = u"Der Server antwortet nicht";

}  // namespace

void ServerLink::Closer::operator()(pg_conn* connection) const {
    PQfinish(connection);
}

void ServerLink::ResultCloser::operator()(pg_result* result) const {
    PQclear(result);
}

ServerLink::ServerLink(const ServerAddress& address, const ServerPatience& patience)
    : name_(u"%1 auf %2"_s.arg(address.database, address.host)), patience_(patience) {
    Connect(address);
    PQsetErrorVerbosity(connection_.get(), PQERRORS_DEFAULT);
    const int version = PQserverVersion(connection_.get());
    if (version < OldestVersion) {
        throw StoreError(
            u"Der Server mit der Datenbank „%1“ ist zu alt: Er hat die Version %2.%3, gebraucht "
            u"wird PostgreSQL %4 oder neuer."_s.arg(name_)
                .arg(version / 10000)
                .arg(version / 100 % 100)
                .arg(OldestVersion / 10000));
    }
    PQsetnonblocking(connection_.get(), 1);
}

void ServerLink::GiveUp(const QString& reason) {
    Close();
    throw ConnectionLost(
        u"Die Verbindung zur Datenbank „%1“ ist unterbrochen: %2."_s.arg(name_, reason));
}

void ServerLink::Connect(const ServerAddress& address) {
    const QDeadlineTimer deadline(patience_.connecting);
    QByteArrayList addresses;
    if (const QByteArray host = address.host.toUtf8(); NeedsLookup(host)) {
        const auto found = LookUpHost(host, deadline);
        if (!found || found->isEmpty()) {
            GiveUp(found ? u"Einen Rechner dieses Namens gibt es nicht"_s
                         : u"Der Name des Rechners ist nicht zu finden"_s);
        }
        addresses = *found;
    }
    connection_.reset(StartConnection(address, addresses, patience_.working));
    if (connection_ == nullptr) {
        throw std::bad_alloc();
    }
    PQsetNoticeProcessor(
        connection_.get(), [](void*, const char*) {}, nullptr);
    PQsetErrorVerbosity(connection_.get(), PQERRORS_VERBOSE);
    WaitToBeLetIn(deadline);
}

void ServerLink::WaitToBeLetIn(const QDeadlineTimer& deadline) {
    AnswerWatch answer(PQsocket(connection_.get()), patience_.connecting, false);
    PasswordCost password(connection_.get());
    PostgresPollingStatusType state = PGRES_POLLING_WRITING;
    while (state != PGRES_POLLING_OK) {
        if (state == PGRES_POLLING_FAILED || PQstatus(connection_.get()) == CONNECTION_BAD) {
            ThrowRefusal();
        }
        // Who never stops sending has not let us in either.
        if (deadline.hasExpired() ||
            WaitFor(state == PGRES_POLLING_READING ? POLLIN : POLLOUT, deadline) == 0) {
            GiveUp(Silent.toString());
        }
        if (const QString excess = password.Excess(); !excess.isEmpty()) {
            GiveUp(excess);
        }
        state = PQconnectPoll(connection_.get());
        if (const QString excess = answer.Excess(); !excess.isEmpty()) {
            GiveUp(excess);
        }
    }
}

void ServerLink::ThrowRefusal() {
    const ConnectRefusal refusal = WhyNotConnected(connection_.get());
    Close();
    const QString text =
        u"Die Datenbank „%1“ konnte nicht geöffnet werden: %2."_s.arg(name_, refusal.reason);
    if (refusal.mayPass) {
        throw ConnectionLost(text);
    }
    throw StoreError(text);
}

/// What is possible on the connection; 0 where time ran out.
short ServerLink::WaitFor(short events, const QDeadlineTimer& deadline) {
    while (true) {
        pollfd socket{.fd = PQsocket(connection_.get()), .events = events, .revents = 0};
        const int ready = poll(&socket, 1, static_cast<int>(deadline.remainingTime()));
        if (ready >= 0) {
            return ready == 0 ? short{0} : socket.revents;
        }
        if (errno != EINTR) {
            return 0;
        }
    }
}

ServerLink::Result ServerLink::Run(const QByteArray& sql,
                                   const std::vector<ServerParameter>& parameters) {
    if (connection_ == nullptr) {
        GiveUp(Silent.toString());
    }
    if (std::exchange(busy_, true)) {
        throw StoreError(u"Die Datenbank „%1“ beantwortet gerade etwas anderes."_s.arg(name_));
    }
    const auto idle = qScopeGuard([this] { busy_ = false; });
    AnswerWatch answer(PQsocket(connection_.get()), patience_.working, tick_ || watch_);
    Send(sql, parameters, answer);
    Result result = Receive(answer);
    const ExecStatusType status = PQresultStatus(result.get());
    if (status != PGRES_COMMAND_OK && status != PGRES_TUPLES_OK) {
        failed_ = true;
        const QString reason = ServerReason(result.get());
        if (IsEndOfConnection(result.get()) || PQstatus(connection_.get()) == CONNECTION_BAD) {
            GiveUp(reason.isEmpty() ? u"Der Server wurde beendet"_s : reason);
        }
        throw StoreError(u"Der Zugriff auf die Datenbank „%1“ ist fehlgeschlagen: %2."_s.arg(
            name_, reason.isEmpty() ? u"Der Server sagt nicht, warum"_s : reason));
    }
    const QByteArray command(PQcmdStatus(result.get()));
    const bool reads = command.startsWith("SELECT") || command.endsWith(" 0");
    ownChanges_ += !reads && *PQcmdTuples(result.get()) != '\0' ? 1 : 0;
    return result;
}

void ServerLink::Send(const QByteArray& sql, const std::vector<ServerParameter>& parameters,
                      AnswerWatch& answer) {
    constexpr Oid Bytes = 17;
    std::vector<Oid> types;
    std::vector<const char*> values;
    std::vector<int> lengths;
    std::vector<int> formats;
    for (const ServerParameter& parameter : parameters) {
        types.push_back(parameter.bytes ? Bytes : Oid{0});
        values.push_back(parameter.value ? parameter.value->constData() : nullptr);
        lengths.push_back(parameter.value ? static_cast<int>(parameter.value->size()) : 0);
        formats.push_back(parameter.bytes ? 1 : 0);
    }
    if (PQsendQueryParams(connection_.get(), sql.constData(), static_cast<int>(parameters.size()),
                          types.data(), values.data(), lengths.data(), formats.data(), 0) == 0) {
        GiveUp(Silent.toString());
    }
    for (int left = 1; left != 0;) {
        left = PQflush(connection_.get());
        const short ready = left == 1 ? WaitWatched(POLLIN | POLLOUT, answer) : short{1};
        if (left < 0 || ready == 0) {
            GiveUp(Silent.toString());
        }
        if ((ready & POLLOUT) != 0) {
            answer.NoteProgress();
        }
        if (left == 1 && (ready & POLLIN) != 0) {
            TakeIn(answer);
        }
    }
}

/// As WaitFor, as long as our patience lasts.
short ServerLink::WaitWatched(short events, const AnswerWatch& answer) {
    const QDeadlineTimer deadline = answer.Deadline();
    if (!watch_) {
        return WaitFor(events, deadline);
    }
    short ready = 0;
    while (ready == 0 && !deadline.hasExpired()) {
        ready = WaitFor(events, QDeadlineTimer(BetweenTicks));
        Tick();
    }
    return ready;
}

/// A server that never stops sending does not keep whoever watches from being called.
void ServerLink::Tick() {
    if (!nextTick_.hasExpired()) {
        return;
    }
    nextTick_.setRemainingTime(BetweenTicks);
    if (tick_) {
        tick_();
    } else if (watch_) {
        try {
            watch_();
        } catch (...) {
            Close();  // in the middle of a statement
            throw;
        }
    }
}

void ServerLink::TakeIn(AnswerWatch& answer) {
    answer.NoteArrival();
    if (PQconsumeInput(connection_.get()) == 0) {
        GiveUp(u"Der Server wurde beendet"_s);
    }
    if (const QString excess = answer.Excess(); !excess.isEmpty()) {
        GiveUp(excess);
    }
}

void ServerLink::WaitUntilIdle(AnswerWatch& answer) {
    while (PQisBusy(connection_.get()) != 0) {
        TakeNotices();
        if (tick_) {
            const bool isSilent = WaitFor(POLLIN, QDeadlineTimer(BetweenTicks)) == 0;
            Tick();
            if (isSilent) {
                continue;
            }
        } else if (WaitWatched(POLLIN, answer) == 0) {
            GiveUp(Silent.toString());
        }
        TakeIn(answer);
    }
}

ServerLink::Result ServerLink::Receive(AnswerWatch& answer) {
    Result last;
    while (true) {
        WaitUntilIdle(answer);
        Tick();
        Result next(PQgetResult(connection_.get()));
        if (next == nullptr) {
            TakeNotices();
            return last;
        }
        const ExecStatusType status = PQresultStatus(next.get());
        const bool isCopy = status == PGRES_COPY_OUT || status == PGRES_COPY_IN ||
                            status == PGRES_COPY_BOTH;  // which nobody asked for
        const QString reason =
            isCopy ? u"Der Server antwortet mit etwas anderem"_s : answer.Excess();
        if (!reason.isEmpty()) {
            GiveUp(reason);
        }
        // A failure says more than the end of the connection that follows it.
        if (last == nullptr || PQresultStatus(last.get()) != PGRES_FATAL_ERROR) {
            last = std::move(next);
        }
    }
}

void ServerLink::CancelStatement() {
    if (!RequestCancel(*connection_, patience_.working)) {
        Close();
        return;
    }
    AnswerWatch answer(PQsocket(connection_.get()), patience_.working, false);
    try {
        Receive(answer);
    } catch (const ConnectionLost&) {
        // Whoever cancelled is told so, and no more.
    }
}

void ServerLink::RunWatched(const QByteArray& sql, const std::function<void()>& tick) {
    Run("SET statement_timeout = 0");
    const auto endWatch = [this] {
        tick_ = {};
        if (IsOpen()) {
            Run("RESET statement_timeout");
        }
    };
    tick_ = tick;
    try {
        Run(sql);
    } catch (const platform::Cancelled&) {
        tick_ = {};
        CancelStatement();
        endWatch();
        throw;
    } catch (...) {
        endWatch();
        throw;
    }
    endWatch();
}

void ServerLink::TakeNotices() {
    while (PGnotify* notice = PQnotifies(connection_.get())) {
        othersNotices_ += notice->be_pid == PQbackendPID(connection_.get()) ? 0 : 1;
        PQfreemem(notice);
    }
}

/// A question to the server: what was committed before it is announced before its answer.
qint64 ServerLink::OthersNotices() {
    Run("SELECT 1");
    return othersNotices_;
}

bool ServerLink::InTransaction() const {
    if (connection_ == nullptr) {
        return false;
    }
    const PGTransactionStatusType status = PQtransactionStatus(connection_.get());
    return status == PQTRANS_INTRANS || status == PQTRANS_INERROR;
}

}  // namespace kadrona::store
