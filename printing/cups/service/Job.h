#pragma once

#include <QTemporaryFile>

#include "printing/PrinterLayer.h"
#include "printing/cups/service/Connection.h"
#include "printing/cups/service/DeviceMode.h"
#include "printing/cups/service/Driver.h"
#include "printing/cups/service/Queue.h"

namespace kadrona::printing::cups {

/// Puts the page of a job (WriteJobPage) into a file that is gone with the object. Throws
/// ServiceFailure, or platform::Error with the bare reason.
void WriteJobFile(QTemporaryFile& page, const PrintImage& image, const PrinterPaper& paper);

/// Sends one page to the queue as one job, with those options of `mode` that the driver knows.
/// Returns the job's number. Throws ServiceFailure, or platform::Error with the bare reason.
int SendJob(const Connection& connection, const Queue& queue, const Driver& driver,
            const DeviceMode& mode, const PrintImage& image);

}  // namespace kadrona::printing::cups
