#pragma once

#include <optional>
#include <vector>

#include "printing/cups/service/Connection.h"

namespace kadrona::printing::cups {

/// A print queue as the service describes it at the moment.
struct Queue {
    QByteArray name;
    /// What the administrator calls it and where it stands; may be empty.
    QString description;
    QString location;
    QString model;
    /// Where the jobs go, WithoutSecrets.
    QString deviceUri;
    /// Announced by the network (IPP Everywhere): the service makes and drops its queue as it is
    /// needed.
    bool isAnnounced = false;
    /// Where such a printer is; empty for others.
    QByteArray announcedUri;
    bool isClass = false;
    bool isDefault = false;
    bool isPaused = false;
    bool isPrinting = false;
    bool acceptsJobs = true;
    /// What the administrator or the driver says about the state, without a full stop; may be
    /// empty.
    QString stateMessage;
    /// Keywords of RFC 8011, 5.4.12.
    std::vector<QByteArray> stateReasons;
    int copies = 1;

    QByteArray Uri() const;
    /// Where a document for the queue is sent to.
    QByteArray Resource() const;
};

/// The address of a device without user, password and those parts of the query that may hold one.
QString WithoutSecrets(const QString& deviceUri);

/// Whether a printer can be announced there: what comes from the network or a file may be anything.
/// No user stands before the host: nobody announces one, and it would be read as the host.
bool IsAnnouncedUri(const QByteArray& uri);

/// Every queue that there is, in the service's order. Throws ServiceFailure.
std::vector<Queue> Queues(const Connection& connection);

/// The queue with that name. Nothing where there is none. Throws ServiceFailure.
std::optional<Queue> FindQueue(const Connection& connection, const QByteArray& name);

bool HasQueue(const std::vector<Queue>& queues, const QByteArray& name);

/// The queues that an answer describes, the first thousand of them; none where it says that there
/// is nothing. Throws ServiceFailure.
std::vector<Queue> QueuesIn(const IppMessage& answer);

/// The question for one queue, and the queue in its answer. Throws ServiceFailure.
IppMessage QueueRequest(const QByteArray& name);
std::optional<Queue> QueueIn(const IppMessage& answer);

/// The service's default queue, or where it has none the first. Nothing where there is no queue.
std::optional<Queue> DefaultQueue(const std::vector<Queue>& queues);

/// State in German, with what is wrong: "Bereit", "Angehalten – Kein Papier", "Im Netz gefunden".
QString StateText(const Queue& queue);

}  // namespace kadrona::printing::cups
