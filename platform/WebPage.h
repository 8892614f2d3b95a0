#pragma once

#include <QUrl>

namespace kadrona::platform {

/// Opens a page in the user's web browser. False when no browser could be started.
bool OpenWebPage(const QUrl& address);

}  // namespace kadrona::platform
