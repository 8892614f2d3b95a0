#include "core/settings/Settings.h"

#include "platform/Error.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

int FrameSizeOf(const Settings& settings) {
    const QString text = settings.FrameSize();
    bool valid = false;
    const int value = text.toInt(&valid);
    if (!valid) {
        throw platform::Error(u"„%1“ ist kein gültiger ganzzahliger Wert."_s.arg(text));
    }
    return value;
}

}  // namespace kadrona::core
