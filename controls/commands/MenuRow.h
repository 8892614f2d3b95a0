#pragma once

#include <QAbstractButton>

class QAction;

namespace kadrona::controls {

/// One entry of a pop-up: icon, caption and, at the right, the shortcut of an action, whose states
/// it follows. The pointer takes the focus along, so that there is one highlight only.
class MenuRow : public QAbstractButton {
    Q_OBJECT

 public:
    MenuRow(QAction* action, QWidget* parent);

    QAction* Action() const { return action_; }

    QSize sizeHint() const override;

 protected:
    void enterEvent(QEnterEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

 private:
    void Follow();

    QAction* action_;
};

}  // namespace kadrona::controls
