#pragma once

#include <QIcon>
#include <QString>
#include <QStringList>

namespace kadrona::controls {

/// The icon of that name, crisp at every size: from the Breeze theme where it has one that fits,
/// else the program's own drawing, so that no name of IconNames is ever without a picture.
///
///     open                 open-with-profile    archive             save
///     save-fast            quit                 print               printer-setup
///     printer-profiles     settings             create-photos       undo
///     gradation            black-white          rotate-left         rotate-right
///     rotate-free          white-point          colors              zoom-fit
///     zoom-full            template-shown       template-hidden     retouch
///     about                menu                 folder              add
///     delete               search               clear               edit
///     tags
///
/// Any other name is looked up in the icon theme as it stands.
QIcon Icon(const QString& name);

/// Every name that Icon knows itself.
QStringList IconNames();

}  // namespace kadrona::controls
