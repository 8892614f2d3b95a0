#pragma once

#include <QObject>
#include <QPointer>
#include <QString>

class QWidget;

namespace kadrona::dialogs {
class ManualWindow;
}

namespace kadrona::app {

class MainActions;

/// Opens the manual beside the work, by its action and, over a dialog that keeps all other windows
/// from input, by F1. All that is given outlives the object.
class ManualActions : public QObject {
    Q_OBJECT

 public:
    /// The manual was delivered with the program in `programFolder`.
    ManualActions(QWidget& window, QString programFolder, MainActions& actions);

 protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

 private:
    void Show();

    QWidget& window_;
    QString programFolder_;
    QPointer<dialogs::ManualWindow> manual_;
};

}  // namespace kadrona::app
