#pragma once

#include <QCursor>
#include <QWidget>
#include <optional>

namespace kadrona::imaging::view {

/// Lends a widget a cursor for a while and gives its own one back. A cursor that somebody else sets
/// meanwhile becomes the widget's own.
class CursorOverride {
 public:
    explicit CursorOverride(QWidget& widget) : widget_(widget) {}

    /// nullopt: the widget's own cursor.
    void Set(std::optional<Qt::CursorShape> shape) {
        if (lent_ && widget_.cursor().shape() != *lent_) {
            lent_.reset();
        }
        if (shape == lent_) {
            return;
        }
        if (!lent_) {
            own_ = widget_.testAttribute(Qt::WA_SetCursor) ? std::optional(widget_.cursor())
                                                           : std::nullopt;
        }
        lent_ = shape;
        if (lent_) {
            widget_.setCursor(*lent_);
        } else if (own_) {
            widget_.setCursor(*own_);
        } else {
            widget_.unsetCursor();
        }
    }

 private:
    QWidget& widget_;
    std::optional<QCursor> own_;
    std::optional<Qt::CursorShape> lent_;
};

}  // namespace kadrona::imaging::view
