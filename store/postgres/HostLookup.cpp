#include "store/postgres/HostLookup.h"

#include <netdb.h>

#include <array>
#include <memory>
#include <utility>
#include <vector>

namespace kadrona::store {

namespace {

/// What the system's lookup works on; it may go on with it after we have given up.
struct Lookup {
    explicit Lookup(QByteArray name) : host(std::move(name)) {
        hints.ai_socktype = SOCK_STREAM;
        request.ar_name = host.constData();
        request.ar_request = &hints;
    }
    Lookup(const Lookup&) = delete;
    Lookup& operator=(const Lookup&) = delete;
    ~Lookup() {
        if (request.ar_result != nullptr) {
            freeaddrinfo(request.ar_result);
        }
    }

    QByteArray host;
    addrinfo hints{};
    gaicb request{};
};

/// For a lookup that the system cannot take back and will still write to.
void KeepForEver(std::unique_ptr<Lookup> lookup) {
    static auto* const unfinished = new std::vector<std::unique_ptr<Lookup>>;
    unfinished->push_back(std::move(lookup));
}

QByteArrayList Addresses(const addrinfo* found) {
    constexpr qsizetype Most = 4;
    QByteArrayList addresses;
    for (; found != nullptr && addresses.size() < Most; found = found->ai_next) {
        std::array<char, NI_MAXHOST> text{};
        if (getnameinfo(found->ai_addr, found->ai_addrlen, text.data(), text.size(), nullptr, 0,
                        NI_NUMERICHOST) == 0) {
            addresses.append(text.data());
        }
    }
    return addresses;
}

}  // namespace

std::optional<QByteArrayList> LookUpHost(const QByteArray& host, const QDeadlineTimer& deadline) {
    auto lookup = std::make_unique<Lookup>(host);
    gaicb* request = &lookup->request;
    if (getaddrinfo_a(GAI_NOWAIT, &request, 1, nullptr) != 0) {
        return QByteArrayList();
    }
    while (gai_error(request) == EAI_INPROGRESS) {
        const qint64 left = deadline.remainingTime();
        const timespec wait{.tv_sec = left / 1000, .tv_nsec = left % 1000 * 1'000'000};
        if (left <= 0 || gai_suspend(&request, 1, &wait) == EAI_AGAIN) {
            if (gai_cancel(request) != EAI_CANCELED && gai_error(request) == EAI_INPROGRESS) {
                KeepForEver(std::move(lookup));
            }
            return std::nullopt;
        }
    }
    return Addresses(request->ar_result);
}

}  // namespace kadrona::store
