#pragma once

#include <QFileDevice>
#include <QString>

namespace kadrona::platform {

/// Why the system refused, in German and without a full stop, for the end of an error text.
/// `code` is one of errno.
QString SystemReason(int code);

/// The same for the last error of a file. What the table of common reasons does not know keeps
/// the system's own words.
QString SystemReason(const QFileDevice& file);

}  // namespace kadrona::platform
