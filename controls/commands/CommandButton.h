#pragma once

#include <QToolButton>

namespace kadrona::controls {

/// Whether a button shows its action's caption beside the icon or only in its tip.
enum class Caption { Hidden, Shown };

/// A flat button that stands for one action and follows its text, icon and states, except
/// visibility, which is the matter of the bar. Object name: the action's name + "Button". Its tip
/// is ScreenTipOf the action.
class CommandButton : public QToolButton {
    Q_OBJECT

 public:
    CommandButton(QAction* action, Caption caption, QWidget* parent);

 protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
};

}  // namespace kadrona::controls
