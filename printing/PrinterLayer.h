#pragma once

#include <QByteArray>
#include <QString>
#include <memory>

#include "platform/Error.h"
#include "printing/JobWatch.h"
#include "printing/PaperGeometry.h"
#include "printing/PrintImage.h"

class QWindow;

namespace kadrona::printing {

/// The printer layer refused something: no print service, no such printer, a job not accepted. The
/// text is German and names the printer and the reason.
class PrinterError : public platform::Error {
    using Error::Error;
};

/// A printer and everything that it is set to.
struct PrinterChoice {
    /// Name of the printer as the print service knows it; empty for none.
    QString device;
    QString driver;
    QString port;
    /// The print service's own record of all options. Opaque to everybody but the layer.
    QByteArray deviceMode;

    bool operator==(const PrinterChoice&) const = default;
};

/// The current printer and what can be done with it: the one way to the print service, so that
/// another system's service takes its place without a change above it.
class PrinterLayer {
 public:
    virtual ~PrinterLayer() = default;

    /// The printer chosen last; before that the print service's default printer, with the options
    /// that it has by itself. Throws PrinterError where there is none.
    virtual PrinterChoice CurrentPrinter() = 0;

    /// Makes a printer with these options the current one for the rest of the run. Options that
    /// it no longer has are kept in the choice and ignored. Throws PrinterError where the printer
    /// is gone or the print service does not answer; the current printer then stays.
    virtual void SetCurrentPrinter(const PrinterChoice& choice) = 0;

    /// Shows the set-up dialog over `owner` (may be null) with the printers there are now. True
    /// when confirmed, with the choice as the current printer. Throws PrinterError as above.
    virtual bool ShowSetupDialog(QWindow* owner) = 0;

    /// The paper that a printer is set to, and what the user should know of the printer before a
    /// sheet is printed with it. Throws PrinterError.
    virtual PrinterPaper PaperOf(const PrinterChoice& choice) = 0;
    /// That of the current printer.
    PrinterPaper Paper() { return PaperOf(CurrentPrinter()); }

    /// Prints one page as one job: centred on the paper, without margins, never scaled but by the
    /// image's calibration. Unless the image says it, the copies are what the current printer is
    /// set to. Returns what follows the job; null where nothing can. Throws PrinterError.
    virtual std::unique_ptr<JobWatch> Print(const PrintImage& image) = 0;
};

}  // namespace kadrona::printing
