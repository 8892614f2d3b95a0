#pragma once

#include <QFile>
#include <QString>

namespace kadrona::platform {

/// How the opening of a file went.
struct Opening {
    enum class Outcome {
        Opened,
        Missing,
        Folder,
        Special,  ///< a pipe, a device or a socket, whose end may never come
        Failed,
    };

    Outcome outcome = Outcome::Opened;
    int error = 0;  ///< the system's code, where it failed

    explicit operator bool() const { return outcome == Outcome::Opened; }
    /// Why it is not open, in German and without a full stop.
    QString Reason() const;
};

/// Whether a link may stand in the place of the file itself.
enum class LastPart { MayBeLink, IsNoLink };

/// Opens a regular file for reading. What is opened is looked at, not what stood under that name a
/// moment before, and nothing is waited for but, two seconds at most, another program that has the
/// file for itself.
Opening OpenRegularFile(QFile& file, const QString& path, LastPart lastPart);

}  // namespace kadrona::platform
