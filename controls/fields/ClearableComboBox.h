#pragma once

#include <QComboBox>

namespace kadrona::controls {

/// A drop-down list that cannot be edited, in which the Delete key takes the choice back (index
/// -1), whether the list is down or not. As for every choice of the user, `activated` is sent.
class ClearableComboBox : public QComboBox {
    Q_OBJECT

 public:
    /// `hint` is the tool tip and should name the key.
    explicit ClearableComboBox(const QString& hint = {}, QWidget* parent = nullptr);

 protected:
    void keyPressEvent(QKeyEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

 private:
    void Clear();
};

}  // namespace kadrona::controls
