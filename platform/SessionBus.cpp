#include "platform/SessionBus.h"

#include <QByteArray>

namespace kadrona::platform {

bool HasSessionBus() {
    return qgetenv("DBUS_SESSION_BUS_ADDRESS") != "disabled:";
}

}  // namespace kadrona::platform
