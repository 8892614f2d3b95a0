#pragma once

#include <QLabel>

namespace kadrona::controls {

/// One line of plain text, shortened at its end where there is not the room.
class ElidedLabel : public QLabel {
    Q_OBJECT

 public:
    explicit ElidedLabel(QWidget* parent = nullptr);

    QSize minimumSizeHint() const override;

 protected:
    void paintEvent(QPaintEvent* event) override;
};

}  // namespace kadrona::controls
