#pragma once

#include <QIcon>

namespace kadrona::dialogs {

/// The program's own picture, for its windows and the about dialog.
QIcon ApplicationIcon();

}  // namespace kadrona::dialogs
