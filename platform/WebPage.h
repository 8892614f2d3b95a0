#pragma once

#include <QUrl>

namespace kadrona::platform {

/// Opens a page in the user's web browser. False when no browser could be started.
bool OpenWebPage(const QUrl& address);

/// Opens a folder in the user's file manager. False where there is no such folder or no program
/// for it.
bool OpenFolder(const QString& path);

}  // namespace kadrona::platform
