#pragma once

#include <QDialog>
#include <map>
#include <optional>

#include "controls/messages/ModalResult.h"
#include "printing/PrinterLayer.h"

class QBoxLayout;
class QLabel;
class QPushButton;
class QSpinBox;
class QTimer;

namespace kadrona::controls {
class SelectionList;
}

namespace kadrona::core {
class Settings;
class TData;
}  // namespace kadrona::core

namespace kadrona::dialogs {

class PaperView;
class SelfConfirmation;

/// "Print Profiles": asks for the printer profile that the sheet is printed with. Where photos are
/// printed as soon as they are made, it takes the default profile by itself after half a second,
/// unless the user begins to choose; else the profile used last is selected. Beside the list the
/// sheet is shown on the selected profile's paper. Object names, besides those of the controls:
/// "BeforPrintDlgFm", "lbProfiles", "btnProfile", "btnNoProfile", "btnCancel", "Timer",
/// "CopiesBox", "PaperView", "PaperLabel", "WarningLabel".
class TBeforPrintDlgFm : public QDialog {
    Q_OBJECT

 public:
    TBeforPrintDlgFm(const core::TData& data, const core::Settings& settings,
                     QWidget* parent = nullptr);

    /// The sheet to show from now on.
    void SetSheet(const printing::PrintImage& sheet) { sheet_ = sheet; }

    /// The paper of a printer as the print service has just told it: what is shown until it is
    /// asked again.
    void RememberPaper(const printing::PrinterChoice& printer, const printing::PrinterPaper& paper);

    /// Shows the dialog with the profiles that there are now. Yes: print with SelectedProfile();
    /// No: print without a profile; Cancel.
    controls::ModalResult ShowEx();

    QString SelectedProfile() const;
    /// The selected profile's calibration; none where the profile's file is missing, for another
    /// printer prints then. Throws platform::Error.
    printing::Calibration ProfileCalibration() const;
    /// The number of copies that the user asked for; nothing where the profile's holds.
    std::optional<int> Copies() const { return copies_; }

 protected:
    void showEvent(QShowEvent* event) override;
    void done(int result) override;

 private:
    QLayout* BuildChoice();
    QLayout* BuildPreview();
    QWidget* BuildButtons();
    void FormShow();
    void ShowAtOnce();
    void AskForPaper();
    void ShowPaper();
    void ShowSheet(const printing::PrinterPaper& paper);
    void Draw(const printing::PrintImage& sheet, const printing::PrinterPaper& paper);
    bool HasSheet() const;
    printing::PrintImage SheetOfProfile() const;
    void SelectProfile(const QString& name);
    void btnProfileClick();

    const core::TData& data_;
    const core::Settings& settings_;
    controls::SelectionList* lbProfiles_;
    QPushButton* btnProfile_;
    QPushButton* btnNoProfile_;
    SelfConfirmation* confirmation_;
    QSpinBox* copiesBox_;
    PaperView* view_;
    QLabel* paperLabel_;
    QLabel* warningLabel_;
    /// Until the selection has settled.
    QTimer* settled_;
    /// The profile that the last sheet was printed with, kept for this user beyond the run.
    QString lastUsed_;
    printing::PrintImage sheet_;
    std::optional<int> copies_;
    bool isAsking_ = false;
    /// By the printer and its options.
    std::map<QByteArray, printing::PrinterPaper> papers_;
};

}  // namespace kadrona::dialogs
