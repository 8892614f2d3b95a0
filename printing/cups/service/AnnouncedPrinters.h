#pragma once

#include <vector>

#include "printing/cups/service/Connection.h"
#include "printing/cups/service/Queue.h"

namespace kadrona::printing::cups {

/// The printers that Connection::BeginFinding has found and none of `queues` has the name of; none
/// where it has failed. Each name once.
std::vector<Queue> AnnouncedPrinters(const Question& finding, const std::vector<Queue>& queues);

/// Has the service make a queue for an announced printer, which lives as long as it is used, and
/// waits until the printer has told what it can do. Returns the queue as it is then. Throws
/// ServiceFailure.
Queue MadeQueue(const Connection& connection, const Queue& printer);

}  // namespace kadrona::printing::cups
