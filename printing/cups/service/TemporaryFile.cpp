#include "printing/cups/service/TemporaryFile.h"

#include "platform/SystemReason.h"
#include "printing/cups/service/Connection.h"

using namespace Qt::StringLiterals;

namespace kadrona::printing::cups {

void CreateTemporaryFile(QTemporaryFile& file) {
    if (!file.open()) {
        throw ServiceFailure(u"Es kann keine temporäre Datei angelegt werden: %1."_s.arg(
            platform::SystemReason(file)));
    }
}

}  // namespace kadrona::printing::cups
