#pragma once

#include <QFileDevice>
#include <QString>

namespace kadrona::platform {

/// Why the system refused, in German and without a full stop, for the end of an error text.
/// `code` is errno on Linux, GetLastError() on Windows.
QString SystemReason(int code);

/// The same for the last error of a file. What the table of common reasons does not know keeps
/// the system's own words.
QString SystemReason(const QFileDevice& file);

/// Whether a file could not be created because its name exists already.
bool NameIsTaken(const QFileDevice& file);

}  // namespace kadrona::platform
