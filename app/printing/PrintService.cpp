#include "app/printing/PrintService.h"

#ifdef KADRONA_WITH_CUPS
#include <QApplication>
#include <QScopeGuard>

#include "controls/messages/MessageBoxes.h"
#include "printing/cups/CupsPrinterLayer.h"
#endif

namespace kadrona::app {

#ifdef KADRONA_WITH_CUPS

using namespace Qt::StringLiterals;

namespace {

bool ConfirmPrinter(const QString& printer, const QString& address) {
    // The hourglass of whoever asked would lie over the buttons.
    QApplication::setOverrideCursor(Qt::ArrowCursor);
    const auto restored = qScopeGuard([] { QApplication::restoreOverrideCursor(); });
    return controls::AskYesNo(
        QApplication::activeWindow(),
        u"Dieses Druckerprofil führt zu einem Drucker im Netz, den Sie noch nicht gewählt haben:\n\n%1\n%2\n\nMöchten Sie Fotos dorthin drucken?"_s
            .arg(printer, address),
        controls::Severity::Warning);
}

}  // namespace

std::unique_ptr<printing::PrinterLayer> MakePrinterLayer() {
    auto layer = std::make_unique<printing::cups::CupsPrinterLayer>();
    layer->AskBeforeFirstUse(ConfirmPrinter);
    return layer;
}

#else

std::unique_ptr<printing::PrinterLayer> MakePrinterLayer() {
    return nullptr;
}

#endif

}  // namespace kadrona::app
