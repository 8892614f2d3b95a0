#include "printing/cups/service/TemporaryFile.h"

#include <unistd.h>

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

QString PathOf(const QTemporaryFile& file) {
    return u"/proc/%1/fd/%2"_s.arg(getpid()).arg(file.handle());
}

}  // namespace kadrona::printing::cups
