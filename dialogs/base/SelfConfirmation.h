#pragma once

#include <QObject>

class QAbstractButton;
class QTimer;

namespace kadrona::dialogs {

/// Lets a dialog whose choice is made already confirm itself after half a second, unless the user
/// begins to choose: the first key, click or turn of the wheel anywhere in the dialog ends it.
class SelfConfirmation : public QObject {
    Q_OBJECT

 public:
    /// `button` is clicked in the end. `dialog` owns this and holds all its widgets already. The
    /// timer's object name is "Timer".
    SelfConfirmation(QWidget& dialog, QAbstractButton& button);

    void Start();
    void Stop();
    bool IsRunning() const;

 Q_SIGNALS:
    /// The user has begun to choose while it ran.
    void Interrupted();

 protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

 private:
    QTimer* timer_;
};

}  // namespace kadrona::dialogs
