#pragma once

#include <QByteArray>
#include <QImage>
#include <QSizeF>
#include <QString>

#include "platform/Error.h"

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

/// What is printed on the one page of a job: an image repeated in a grid, the copies touching each
/// other, at its true size.
struct PrintImage {
    /// sRGB, opaque.
    QImage tile;
    int columns = 1;
    int rows = 1;
    /// Pixels divided by this are inches; above 0.
    int dotsPerInch = 0;
    /// Name of the job in the printer's queue.
    QString title;

    /// Printed size.
    QSizeF Millimetres() const;
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

    /// Size of the paper that the current printer is set to, millimetres, turned where the sheet
    /// is printed in landscape. Empty where it is not known. Throws PrinterError.
    virtual QSizeF PaperMillimetres() = 0;

    /// Prints one page as one job: centred on the paper, without margins, never scaled. The copies
    /// are what the current printer is set to. Throws PrinterError.
    virtual void Print(const PrintImage& image) = 0;
};

}  // namespace kadrona::printing
