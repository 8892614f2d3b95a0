// The order of a collected sheet, and the list of the tray.

#include <cstdint>
#include <cstdlib>

#include "core/sheet/PaperLayout.h"
#include "core/sheet/SheetOrder.h"
#include "core/sheet/SheetTray.h"
#include "platform/Error.h"

using namespace kadrona::core;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    for (const OrderLine& line : ParseOrder(QString::fromUtf8(bytes)).lines) {
        if (line.count < 1 || line.count > MostCopies || (line.place && line.place->width <= 0)) {
            std::abort();
        }
    }
    try {
        for (const ListedItem& listed : ParseTrayList(bytes)) {
            if (listed.item.size.isEmpty() || listed.file.contains(u'/')) {
                std::abort();
            }
        }
    } catch (const kadrona::platform::Error&) {
        // What is no list is refused, and by nothing else.
    }
    return 0;
}
