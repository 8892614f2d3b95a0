#pragma once

#include <QIcon>
#include <QString>
#include <QStringList>

namespace kadrona::controls {

/// The program's own drawing of that name, crisp and of the same look at every size and scale, in
/// inks that go with the present appearance, even when that changes later. No name of IconNames is
/// without a picture.
/// Null for any other name.
QIcon Icon(const QString& name);

/// Every name that Icon knows itself.
QStringList IconNames();

}  // namespace kadrona::controls
