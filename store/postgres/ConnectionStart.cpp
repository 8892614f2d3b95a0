#include "store/postgres/ConnectionStart.h"

#include <arpa/inet.h>
#include <libpq-fe.h>

#include <array>
#include <cstdlib>
#include <memory>
#include <vector>

namespace kadrona::store {

namespace {

bool IsNumericAddress(const QByteArray& host) {
    std::array<char, sizeof(in6_addr)> address{};
    return inet_pton(AF_INET, host.constData(), address.data()) == 1 ||
           inet_pton(AF_INET6, host.constData(), address.data()) == 1;
}

/// What the server is told at the beginning. Times and bytes then have the forms that
/// PostgresStatement reads, and nobody waits long for a lock or keeps one for ever.
QByteArray SessionOptions(std::chrono::milliseconds patience) {
    return "-c datestyle=ISO -c bytea_output=hex -c standard_conforming_strings=on"
           " -c client_min_messages=error -c jit=off -c idle_in_transaction_session_timeout=60000"
           " -c statement_timeout=600000 -c lock_timeout=" +
           QByteArray::number(qint64(patience.count() / 2));
}

/// What the library would read from the environment, among it other servers' passwords, options
/// and whether a connection is encrypted.
void ForgetEnvironment() {
    for (const char* name : {"PGSERVICE", "PGSERVICEFILE", "PGSYSCONFDIR", "PGDATESTYLE", "PGTZ",
                             "PGGEQO", "PGREQUIRESSL"}) {
        unsetenv(name);
    }
    const std::unique_ptr<PQconninfoOption, void (*)(PQconninfoOption*)> options(PQconndefaults(),
                                                                                 PQconninfoFree);
    for (const PQconninfoOption* option = options.get(); option && option->keyword; ++option) {
        if (option->envvar != nullptr) {
            unsetenv(option->envvar);
        }
    }
}

/// Keywords of a connection with their values, in the order of libpq's arrays.
class ConnectionWords {
 public:
    void Add(const char* word, const QByteArray& value) {
        words_.push_back(word);
        values_.push_back(value);
    }

    PGconn* Start() const {
        std::vector<const char*> words = words_;
        std::vector<const char*> values;
        for (const QByteArray& value : values_) {
            values.push_back(value.constData());
        }
        words.push_back(nullptr);
        values.push_back(nullptr);
        return PQconnectStartParams(words.data(), values.data(), 0);
    }

 private:
    std::vector<const char*> words_;
    std::vector<QByteArray> values_;
};

ConnectionWords WordsFor(const ServerAddress& address, const QByteArrayList& addresses,
                         std::chrono::milliseconds patience) {
    const QByteArray milliseconds = QByteArray::number(qint64(patience.count()));
    const QByteArray host = address.host.toUtf8();
    ConnectionWords words;
    words.Add("host",
              addresses.isEmpty() ? host : QByteArrayList(addresses.size(), host).join(','));
    words.Add("hostaddr", addresses.join(','));
    words.Add("port", QByteArray::number(address.port));
    words.Add("dbname", address.database.toUtf8());
    words.Add("user", address.user.toUtf8());
    words.Add("password", address.password.toUtf8());
    words.Add("sslmode", address.verified ? "verify-full" : "prefer");
    words.Add("application_name", "kadrona");
    words.Add("client_encoding", "UTF8");
    words.Add("options", SessionOptions(patience));
    words.Add("gssencmode", "disable");  // would ask another server first
    words.Add("tcp_user_timeout", milliseconds);
    words.Add("keepalives_idle", "5");
    words.Add("keepalives_interval", "2");
    words.Add("keepalives_count", "2");
    return words;
}

}  // namespace

bool NeedsLookup(const QByteArray& host) {
    return !host.isEmpty() && !host.startsWith('/') && !IsNumericAddress(host);
}

pg_conn* StartConnection(const ServerAddress& address, const QByteArrayList& addresses,
                         std::chrono::milliseconds patience) {
    ForgetEnvironment();
    return WordsFor(address, addresses, patience).Start();
}

}  // namespace kadrona::store
