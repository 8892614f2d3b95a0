#pragma once

#include <QScrollArea>

namespace kadrona::dialogs {

/// A part of a dialog that scrolls where there is too little room for it, and asks for as much as
/// the part itself does. It paints no ground of its own.
class ScrolledPage : public QScrollArea {
    Q_OBJECT

 public:
    /// Owns `page`.
    explicit ScrolledPage(QWidget* page);

    /// The toolkit's own is at most a few hundred pixels, whatever the page needs.
    QSize sizeHint() const override;
};

}  // namespace kadrona::dialogs
