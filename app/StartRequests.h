#pragma once

#include <QList>
#include <QObject>
#include <QTimer>

#include "app/commandline/WindowRequest.h"

namespace kadrona::app {

class TmainFm;

/// Does in the window what this start, and later ones, were asked to do.
class StartRequests : public QObject {
    Q_OBJECT

 public:
    /// `window` outlives the object.
    explicit StartRequests(TmainFm& window);

    /// Does it once the window is on the screen and no dialog is open, one request after another.
    void Ask(const WindowRequest& request);

    /// The same for what another start handed over; the window comes to the front at once. Bytes
    /// that are no request are dropped.
    void AskFromOutside(const QByteArray& bytes);

 private:
    void Look();
    bool MayReplaceSheet(const QString& photo);

    TmainFm& window_;
    QList<WindowRequest> waiting_;
    /// The first one came, or had to wait, while something else was under way.
    bool hadToWait_ = false;
    QTimer timer_;
};

}  // namespace kadrona::app
