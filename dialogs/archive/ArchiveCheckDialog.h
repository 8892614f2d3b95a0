#pragma once

#include <QDialog>

#include "controls/messages/ModalResult.h"
#include "core/archive/ArchiveCheck.h"

class QLabel;
class QPushButton;
class QTreeWidget;

namespace kadrona::dialogs {

class ArchiveUpkeep;

/// "Archiv prüfen": what a check has found, by kinds of faults, with what can be done about the
/// kind that is current.
class ArchiveCheckDialog : public QDialog {
    Q_OBJECT

 public:
    /// `upkeep` outlives the dialog. Paths are shown below `archiveFolder`.
    ArchiveCheckDialog(ArchiveUpkeep& upkeep, core::ArchiveReport report, QString archiveFolder,
                       QWidget* parent);

    controls::ModalResult ShowEx();

 private:
    void BuildLayout();
    void List();
    void ShowCurrent();
    void Remedy();
    core::ArchiveFault CurrentFault() const;

    ArchiveUpkeep& upkeep_;
    core::ArchiveReport report_;
    QString archiveFolder_;
    QLabel* summary_;
    QTreeWidget* findings_;
    QLabel* advice_;
    QPushButton* btnRemedy_;
};

}  // namespace kadrona::dialogs
