#include "app/PrintService.h"

#ifdef KADRONA_WITH_CUPS
#include "printing/cups/CupsPrinterLayer.h"
#endif

namespace kadrona::app {

std::unique_ptr<printing::PrinterLayer> MakePrinterLayer() {
#ifdef KADRONA_WITH_CUPS
    return std::make_unique<printing::cups::CupsPrinterLayer>();
#else
    return nullptr;
#endif
}

}  // namespace kadrona::app
