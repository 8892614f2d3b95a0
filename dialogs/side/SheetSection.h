#pragma once

#include <QWidget>

class QAction;
class QLabel;
class QVBoxLayout;

namespace kadrona::dialogs {

class PaperFields;

/// The section "Blatt": what sheets are made on, and what comes of it for the photo that is open.
class SheetSection : public QWidget {
    Q_OBJECT

 public:
    explicit SheetSection(QWidget* parent = nullptr);

    PaperFields& Fields() { return *fields_; }
    /// What the sheet will be, or why there will be none.
    void SetSummary(const QString& text, bool isError);
    /// A preview below the summary, which the section takes over.
    void SetPreview(QWidget* preview);
    /// A button that triggers an action of the window.
    void AddAction(QAction* action);

 private:
    QVBoxLayout* column_;
    PaperFields* fields_;
    QLabel* summary_;
};

}  // namespace kadrona::dialogs
