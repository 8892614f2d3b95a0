#pragma once

#include <QIcon>
#include <QWidget>

namespace kadrona::controls {

/// A picture that says nothing to a screen reader. Unlike a label's pixmap it follows the
/// appearance and the screen's scale.
class IconLabel : public QWidget {
 public:
    /// `side` is its width and height in pixels of the window.
    IconLabel(QIcon icon, int side, QWidget* parent = nullptr);

 protected:
    void paintEvent(QPaintEvent* event) override;

 private:
    QIcon icon_;
};

}  // namespace kadrona::controls
