#include "store/postgres/PasswordCost.h"

#include <libpq-fe.h>
#include <openssl/err.h>
#include <openssl/ssl.h>
#include <sys/socket.h>

#include <algorithm>
#include <cstdlib>

namespace kadrona::store {

using namespace Qt::StringLiterals;

/// Of what lies ready, without taking it away.
QByteArray PasswordCost::Arrived() const {
    constexpr int AtOnce = 65'536;
    QByteArray bytes(AtOnce, Qt::Uninitialized);
    auto* const encrypted = static_cast<SSL*>(PQsslStruct(connection_, "OpenSSL"));
    const bool isEncrypted = encrypted != nullptr && SSL_is_init_finished(encrypted) != 0;
    const auto count =
        isEncrypted ? SSL_peek(encrypted, bytes.data(), AtOnce)
                    : recv(PQsocket(connection_), bytes.data(), AtOnce, MSG_PEEK | MSG_DONTWAIT);
    if (isEncrypted) {
        ERR_clear_error();  // libpq would take ours for its own
    }
    return bytes.first(std::max<qsizetype>(count, 0));
}

QString PasswordCost::Excess() {
    constexpr qsizetype LongestGreeting = 262'144;
    constexpr long long MostRounds = 500'000;
    const QByteArrayView mark(",i=");
    // What was seen before is kept: the number may come in pieces.
    seen_ += Arrived();
    for (auto at = seen_.indexOf(mark); at >= 0; at = seen_.indexOf(mark, at + 1)) {
        if (std::strtoll(seen_.constData() + at + mark.size(), nullptr, 10) > MostRounds) {
            return u"Der Server verlangt für das Kennwort mehr Rechenarbeit, als gut ist"_s;
        }
    }
    return seen_.size() > LongestGreeting
               ? u"Der Server schickt vor der Anmeldung mehr, als dazu gehört"_s
               : QString();
}

}  // namespace kadrona::store
