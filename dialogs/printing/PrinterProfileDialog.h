#pragma once

#include <QDialog>
#include <optional>

#include "controls/messages/ModalResult.h"

class QPushButton;

namespace kadrona::controls {
class SelectionList;
}

namespace kadrona::core {
class TData;
}

namespace kadrona::dialogs {

class TEinstellungenFm;

/// "Druck Profile": makes printer profiles from what the user sets the printer to, changes,
/// calibrates and deletes them.
class TPrintProfilDlg : public QDialog {
    Q_OBJECT

 public:
    /// `settings` has its list of printer profiles kept up to date, and loses its default profile
    /// when any is deleted.
    TPrintProfilDlg(core::TData& data, TEinstellungenFm& settings, QWidget* parent = nullptr);

    /// Ok or Cancel.
    controls::ModalResult ShowEx();

 private:
    QLayout* BuildButtons();
    void ConnectControls();
    void FormCreate();
    void btnNewProfileClick();
    void btnChangeProfileClick();
    void btnCalibrateClick();
    void btnDelProfileClick();
    bool IsKnown(const QString& name) const;
    std::optional<QString> AskForName(const QString& title, const QString& name);
    void KeepChanged(const QString& profile, const QString& name);

    core::TData& data_;
    TEinstellungenFm& settings_;
    controls::SelectionList* lbProfiles_;
    QPushButton* btnNewProfile_;
    QPushButton* btnDelProfile_;
    QPushButton* btnChangeProfile_;
    QPushButton* btnCalibrate_;
    QPushButton* btnClose_;
};

}  // namespace kadrona::dialogs
