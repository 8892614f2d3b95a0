#include <QtGlobal>

#include "printing/PrinterSettingsFile.h"

using namespace kadrona::printing;

/// The input is a printer settings file. What it holds is written and read again: the block must be
/// the same then, and the names what the file can keep of them.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::optional<PrinterChoice> read =
        ReadPrinterSettings(QByteArrayView(data, qsizetype(size)));
    if (!read) {
        return 0;
    }
    const std::optional<PrinterChoice> again = ReadPrinterSettings(PrinterSettingsBytes(*read));
    if (!again || again->deviceMode != read->deviceMode ||
        again->device != StoredName(read->device) || again->driver != StoredName(read->driver) ||
        again->port != StoredName(read->port)) {
        qFatal("what was read is not what is written");
    }
    return 0;
}
