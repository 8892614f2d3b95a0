#pragma once

#include <QFrame>

class QAction;
class QBoxLayout;
class QLabel;
class QPushButton;

namespace kadrona::controls {

/// The pop-up menu of the application button.
///
///     +----------------+--------------------+
///     | [] Open  Ctrl+N| Heading            |
///     | [] ...         | description        |
///     | -------------- |                    |
///     | [] Quit  Ctrl+Q|                    |
///     +----------------+--------------------+
///     |                           [Settings]|
///     +-------------------------------------+
///
/// Arrow keys, Home, End and Tab move, Enter or Space triggers, a mnemonic or an entry's first
/// letter jumps, Escape closes. An action is triggered after the menu has closed, so that it may
/// open a dialog.
class ApplicationMenu : public QFrame {
    Q_OBJECT

 public:
    explicit ApplicationMenu(QWidget* parent = nullptr);

    /// Object name of the entry: the action's name + "MenuItem".
    void AddAction(QAction* action);
    void AddSeparator();

    /// Heading of the side pane with an optional description below (plain texts).
    void SetSidePane(const QString& heading, const QString& description = {});

    /// The one button at the foot. Object name: the action's name + "FootButton".
    void SetFootAction(QAction* action);

    /// Shows the menu below `anchor`, within the screen, with the first entry focused.
    void PopUp(const QWidget& anchor);

 protected:
    void keyPressEvent(QKeyEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

 private:
    QWidget* MakeSidePane();
    QList<QWidget*> Stops() const;
    void MoveFocus(int step);
    void FocusEnd(bool last);
    void JumpTo(QChar letter);
    void Trigger();
    void CloseAndTrigger(QAction* action);

    QBoxLayout* entries_;
    QLabel* heading_ = nullptr;
    QLabel* description_ = nullptr;
    QPushButton* footButton_;
};

}  // namespace kadrona::controls
