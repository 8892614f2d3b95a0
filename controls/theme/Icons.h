#pragma once

#include <QIcon>
#include <QString>
#include <QStringList>

namespace kadrona::controls {

/// The program's own drawing of that name, crisp and of the same look at every size and scale, in
/// inks that go with the present appearance, even when that changes later. No name of IconNames is
/// without a picture.
///
///     open                 open-with-profile    archive             save
///     save-fast            quit                 print               printer-setup
///     printer-profiles     settings             create-photos       undo
///     gradation            black-white          rotate-left         rotate-right
///     rotate-free          white-point          colors              zoom-fit
///     zoom-full            template-shown       template-hidden     retouch
///     about                menu                 folder              add
///     delete               search               clear               edit
///     tags                 menu-on-accent
///
/// Null for any other name.
QIcon Icon(const QString& name);

/// Every name that Icon knows itself.
QStringList IconNames();

}  // namespace kadrona::controls
