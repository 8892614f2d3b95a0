#pragma once

#include <QObject>
#include <QPoint>
#include <QString>
#include <QTimer>

#include "platform/StandingWindows.h"

class QWidget;

namespace kadrona::app {

/// Where a window stands when it is closed, in the section of "kdr.ini" that bears its object name:
/// its place while it is not maximised, and whether it is. It is stored as well a moment after the
/// window was moved: a display that goes away ends the program without a word to it.
class WindowPlace : public QObject {
    Q_OBJECT

 public:
    /// Both outlive the object.
    WindowPlace(QWidget& window, QString dataFolder);

    /// Before the window is shown. A saved edge of exactly 0 means that no place is restored; so
    /// does a place that no screen shows any more. On a smaller screen the window gets as large as
    /// that screen. Where the window of another program of this user stands exactly there, it comes
    /// to stand a title bar's height farther right and down. Throws platform::FileError.
    void Restore();
    /// Throws platform::FileError.
    void Save() const;

    /// A size of the window without its frame that fits on the primary screen with it.
    static QSize OnScreen(QSize wanted);

 protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

 private:
    void SaveQuietly();

    QWidget& window_;
    QString dataFolder_;
    platform::StandingWindows standing_;
    /// From the frame's corner to the window's, where it stood outside the maximised state.
    QPoint frame_;
    /// Runs while the window was moved and its place is not yet stored.
    QTimer moved_;
};

}  // namespace kadrona::app
