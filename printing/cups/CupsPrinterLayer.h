#pragma once

#include <QString>
#include <chrono>
#include <functional>
#include <optional>
#include <utility>

#include "printing/PrinterLayer.h"
#include "printing/cups/WaitDialog.h"
#include "printing/cups/service/ChosenPrinters.h"
#include "printing/cups/service/Queue.h"

namespace kadrona::printing::cups {

/// The printer layer over CUPS. Asks the print service anew each time, so that a queue that is
/// added, changed or removed while the program runs is noticed at once. The device mode block is
/// described in docs/file-formats.md.
class CupsPrinterLayer : public PrinterLayer {
 public:
    /// `server` is the print service's host, host:port or path of its socket, as in the environment
    /// variable CUPS_SERVER; empty for the system's own. No question to the service takes longer
    /// than `timeout`, with a document a second more for each megabyte. After `unnoticed` the user
    /// is told and can cancel it.
    explicit CupsPrinterLayer(QString server = {},
                              std::chrono::milliseconds timeout = std::chrono::seconds(5),
                              std::chrono::milliseconds unnoticed = Connection::Unnoticed);

    /// Asks the user whether photos may go to a printer of the network; `address` is where it is.
    using Confirmation = std::function<bool(const QString& printer, const QString& address)>;

    /// Who is asked where a printer profile leads to a printer of the network that this user has
    /// not chosen yet: in a shared data folder another account may have written it. Without it no
    /// such profile is used.
    void AskBeforeFirstUse(Confirmation confirm) { confirm_ = std::move(confirm); }

    PrinterChoice CurrentPrinter() override;
    void SetCurrentPrinter(const PrinterChoice& choice) override;
    bool ShowSetupDialog(QWindow* owner) override;
    PrinterPaper PaperOf(const PrinterChoice& choice) override;
    std::unique_ptr<JobWatch> Print(const PrintImage& image) override;

 private:
    Connection Service() { return Connection({server_, timeout_, &waiting_, unnoticed_}); }

    std::function<bool(const Queue& queue)> IsChosen() const;
    bool IsConfirmed(const Queue& queue);

    QString server_;
    std::chrono::milliseconds timeout_;
    std::chrono::milliseconds unnoticed_;
    WaitDialog waiting_;
    std::optional<PrinterChoice> current_;
    Confirmation confirm_;
    ChosenPrinters chosen_;
};

}  // namespace kadrona::printing::cups
