#pragma once

#include <QDialog>

#include "controls/messages/ModalResult.h"

class QPushButton;
class QTimer;

namespace kadrona::controls {
class SelectionList;
}

namespace kadrona::core {
class Settings;
class TData;
}  // namespace kadrona::core

namespace kadrona::dialogs {

/// "Print Profiles": asks for the printer profile that the sheet is printed with. Where photos are
/// printed as soon as they are made, it takes the default profile by itself after half a second,
/// unless the user begins to choose; else the profile used last is selected.
class TBeforPrintDlgFm : public QDialog {
    Q_OBJECT

 public:
    TBeforPrintDlgFm(const core::TData& data, const core::Settings& settings,
                     QWidget* parent = nullptr);

    /// Shows the dialog with the profiles that there are now. Yes: print with SelectedProfile();
    /// No: print without a profile; Cancel.
    controls::ModalResult ShowEx();

    QString SelectedProfile() const;

 protected:
    void showEvent(QShowEvent* event) override;
    void done(int result) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

 private:
    void FormShow();
    void SelectProfile(const QString& name);
    void btnProfileClick();
    void TimerTimer();

    const core::TData& data_;
    const core::Settings& settings_;
    controls::SelectionList* lbProfiles_;
    QPushButton* btnProfile_;
    QTimer* timer_;
    /// The profile that the last sheet was printed with.
    QString lastUsed_;
};

}  // namespace kadrona::dialogs
