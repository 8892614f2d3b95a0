#pragma once

#include <QWidget>

namespace kadrona::controls {

/// A thin line between groups of commands, with room on both sides.
class Separator : public QWidget {
 public:
    /// `orientation` is the line's own.
    Separator(Qt::Orientation orientation, QWidget* parent);

    QSize sizeHint() const override;

 protected:
    void paintEvent(QPaintEvent* event) override;

 private:
    Qt::Orientation orientation_;
};

}  // namespace kadrona::controls
