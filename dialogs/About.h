#pragma once

#include <QDialog>
#include <QList>
#include <QString>

class QLabel;

namespace kadrona::dialogs {

/// What the program is, who makes it, under which licence, what it is built on and where it keeps
/// its data.
class TfmAbout : public QDialog {
    Q_OBJECT

 public:
    struct Folder {
        QString meaning;
        QString path;
    };

    explicit TfmAbout(QWidget* parent = nullptr);

    /// Each is shown as a link that opens the file manager.
    void SetFolders(const QList<Folder>& folders);

 protected:
    void showEvent(QShowEvent* event) override;

 private:
    QWidget* BuildButtons();
    void ShowLibraries();

    QLabel* text_;
    QLabel* folders_;
};

}  // namespace kadrona::dialogs
