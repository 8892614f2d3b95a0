#pragma once

#include <QString>
#include <chrono>
#include <optional>

#include "printing/PrinterLayer.h"

namespace kadrona::printing::cups {

/// The printer layer over CUPS. Asks the print service anew each time, so that a queue that is
/// added, changed or removed while the program runs is noticed at once. The device mode block is
/// described in docs/file-formats.md.
class CupsPrinterLayer : public PrinterLayer {
 public:
    /// `server` is the print service's host, host:port or path of its socket, as in the environment
    /// variable CUPS_SERVER; empty for the system's own. No call waits longer than `timeout`, and
    /// a second of the library's own, for a step of the service: the window stands still so long.
    explicit CupsPrinterLayer(QString server = {},
                              std::chrono::milliseconds timeout = std::chrono::seconds(5));

    PrinterChoice CurrentPrinter() override;
    void SetCurrentPrinter(const PrinterChoice& choice) override;
    bool ShowSetupDialog(QWindow* owner) override;
    QSizeF PaperMillimetres() override;
    void Print(const PrintImage& image) override;

 private:
    QString server_;
    std::chrono::milliseconds timeout_;
    std::optional<PrinterChoice> current_;
};

}  // namespace kadrona::printing::cups
