#pragma once

#include <QByteArray>

#include "printing/PrinterLayer.h"
#include "printing/cups/service/DeviceMode.h"
#include "printing/cups/service/Driver.h"
#include "printing/cups/service/Queue.h"

namespace kadrona::printing::cups {

/// The queue with the options that it has by itself.
DeviceMode StandardMode(const Queue& queue, const Driver& driver);

/// The queue set to `mode`, as the rest of the program keeps it.
PrinterChoice ChoiceOf(const Queue& queue, DeviceMode mode);

/// The queue's whole name, where the choice comes from a file that keeps only its beginning.
QByteArray QueueNameOf(const PrinterChoice& choice);

/// What a choice knows of its queue without asking the service.
Queue QueueOf(const PrinterChoice& choice);

}  // namespace kadrona::printing::cups
