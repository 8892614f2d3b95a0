#pragma once

#include <cups/cups.h>

#include <QByteArray>
#include <QFile>
#include <QString>
#include <chrono>
#include <memory>

#include "printing/PrinterLayer.h"

namespace kadrona::printing::cups {

/// Where the print service is, and how long it may be silent.
struct ServiceAddress {
    /// Host, host:port or path of a socket, as in the environment variable CUPS_SERVER; empty for
    /// what libcups finds by itself.
    QString server;
    std::chrono::milliseconds timeout;
};

/// The print service or the queue refused something. The text is a German sentence that names the
/// reason but no printer.
class ServiceFailure : public PrinterError {
 public:
    /// `status` is what the service answered, ok where it did not answer at all.
    explicit ServiceFailure(QString reason, ipp_status_t status = IPP_STATUS_OK)
        : PrinterError(std::move(reason)), status_(status) {}

    ipp_status_t Status() const { return status_; }

 private:
    ipp_status_t status_;
};

struct IppDeleter {
    void operator()(ipp_t* message) const { ippDelete(message); }
};
using IppMessage = std::unique_ptr<ipp_t, IppDeleter>;

/// A request with the attributes that all have; `queueUri` empty for none.
IppMessage NewRequest(ipp_op_t operation, const QByteArray& queueUri = {});

/// A connection to the print service. Never asks for a password, never waits longer than the
/// address allows for a step.
class Connection {
 public:
    /// Throws ServiceFailure where no service answers.
    explicit Connection(const ServiceAddress& address);

    /// Sends a request and returns the answer, also one that says no. `fileName` is the document to
    /// send after it, empty for none. Throws ServiceFailure where no answer comes.
    IppMessage Ask(IppMessage request, const QByteArray& resource, const QString& fileName = {});

    /// Writes what the service has under `resource` to `file`. False where it has nothing. Throws
    /// ServiceFailure.
    bool Fetch(const QByteArray& resource, QFile& file);

 private:
    struct HttpCloser {
        void operator()(http_t* http) const { httpClose(http); }
    };
    std::unique_ptr<http_t, HttpCloser> http_;
};

/// The failure that an answer speaks of.
ServiceFailure FailureOf(const ipp_t& answer);

}  // namespace kadrona::printing::cups
