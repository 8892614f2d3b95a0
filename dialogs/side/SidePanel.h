#pragma once

#include <QScrollArea>

class QVBoxLayout;

namespace kadrona::dialogs {

/// What stands at the right of the photo: sections below each other, each shown or folded away.
/// With none shown the panel takes no room.
class SidePanel : public QScrollArea {
    Q_OBJECT

 public:
    explicit SidePanel(QWidget* parent = nullptr);

    /// Takes a section, folded away at first.
    void AddSection(QWidget* section);
    void ShowSection(QWidget* section, bool shown);
    /// Scrolls to a section that others stand above.
    void Reveal(const QWidget* section);

 Q_SIGNALS:
    /// A section that had the focus was folded away.
    void FocusLeft();

 protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

 private:
    void FitWidth();

    QVBoxLayout* column_;
    QList<QWidget*> shown_;
};

}  // namespace kadrona::dialogs
