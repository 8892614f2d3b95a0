#pragma once

#include <memory>

#include "printing/PrinterLayer.h"

namespace kadrona::app {

/// The way to the machine's print service; null where the program was built without one.
std::unique_ptr<printing::PrinterLayer> MakePrinterLayer();

}  // namespace kadrona::app
