#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace kadrona::app {

/// What the window is started with.
struct WindowRequest {
    /// Full path of the photo to open; empty for none.
    QString photo;
    /// The dialog that opens a photo is shown at once.
    bool chooses = false;
    /// A window of its own, even where one runs.
    bool newWindow = false;
    /// With which the desktop lets a window come to the front; empty for none.
    QByteArray activationToken = {};

    bool operator==(const WindowRequest&) const = default;
};

/// From the arguments behind the program's name. Throws UsageError for what makes no sense.
WindowRequest ParseWindowRequest(const QStringList& arguments);

}  // namespace kadrona::app
