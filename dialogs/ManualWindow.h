#pragma once

#include <QDialog>
#include <QString>

class QLabel;
class QLineEdit;
class QListWidget;
class QTextBrowser;

namespace kadrona::dialogs {

/// The manual: its chapters at the left, its text, and a field that searches it. It stays open
/// beside the main window.
class ManualWindow : public QDialog {
    Q_OBJECT

 public:
    explicit ManualWindow(QWidget* parent = nullptr);

    /// Shows "Handbuch.md" of this folder, whose pictures lie beside it. Throws FileError.
    void Load(const QString& folder);

 protected:
    void keyPressEvent(QKeyEvent* event) override;

 private:
    void NameControls();
    void ArrangeControls();
    void ShowChapter(int row);
    void ListChapters();
    void MarkHits();
    void GoToNextHit(bool backward);

    QLineEdit* search_;
    QLabel* hits_;
    QListWidget* chapters_;
    QTextBrowser* text_;
};

}  // namespace kadrona::dialogs
