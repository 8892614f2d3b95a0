#pragma once

#include <cups/cups.h>

#include <QByteArray>
#include <QString>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <utility>

#include "printing/PrinterLayer.h"

namespace kadrona::printing::cups {

class Question;

/// What shows the user that the print service lets them wait. Without windows here, so the level
/// above implements it.
class WaitDisplay {
 public:
    virtual ~WaitDisplay() = default;
    /// A question takes long: from now on the user may call `cancel`. Input reaches nothing else.
    virtual void Show(std::function<void()> cancel) = 0;
    virtual void Hide() = 0;
};

/// Where the print service is, and how long a question may take.
struct ServiceAddress {
    /// Host, host:port or path of a socket, as in the environment variable CUPS_SERVER; empty for
    /// what libcups finds by itself.
    QString server;
    std::chrono::milliseconds timeout;
    /// Null for none; outlives the connections.
    WaitDisplay* display = nullptr;
    /// So long the user's input may wait before the display is shown.
    std::chrono::milliseconds unnoticed{150};
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

/// The way to the print service. Each question is asked by a process of its own (Question) while
/// this one's events go on; the user's input waits, and after a moment the display lets them
/// cancel. Never asks for a password.
class Connection {
 public:
    static constexpr std::chrono::milliseconds Unnoticed{150};

    explicit Connection(ServiceAddress address) : address_(std::move(address)) {}

    /// Sends a request and returns the answer, also one that says no. `fileName` is the document to
    /// send after it, empty for none. Throws ServiceFailure where no answer comes.
    IppMessage Ask(const IppMessage& request, const QByteArray& resource,
                   const QString& fileName = {}) const;

    /// Sends a request without waiting for the answer, which AnswerOf reads once the question is
    /// finished.
    std::unique_ptr<Question> Begin(const IppMessage& request, const QByteArray& resource,
                                    const QString& fileName = {}) const;
    /// Throws ServiceFailure where none came.
    IppMessage AnswerOf(const Question& question) const;

    /// Sends a request that makes a queue for a printer, and waits until it takes jobs or the time
    /// is over. Returns what the service tells of the queue, or why it makes none. Throws
    /// ServiceFailure where no answer comes.
    IppMessage Make(const IppMessage& request, const QByteArray& queue) const;

    /// Asks the network which printers it has, without waiting for the answer, which AnswerOf reads
    /// once the question is finished.
    std::unique_ptr<Question> BeginFinding() const;
    /// Lets the user cancel after a moment. Finished is what the question is afterwards.
    void WaitFor(Question& question) const;

    /// The description of a driver that the service has under `resource`; nothing where it has
    /// none. Throws ServiceFailure.
    std::optional<QByteArray> Fetch(const QByteArray& resource) const;

 private:
    void RequireAnswer(const Question& question) const;

    ServiceAddress address_;
};

/// A request or an answer as bytes, and back; null for bytes that are none.
QByteArray BytesOf(const IppMessage& message);
IppMessage MessageOf(const QByteArray& bytes);

/// The failure that an answer speaks of.
ServiceFailure FailureOf(const ipp_t& answer);

}  // namespace kadrona::printing::cups
