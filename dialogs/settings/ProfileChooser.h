#pragma once

#include <QDialog>

#include "controls/messages/ModalResult.h"

class QListWidget;

namespace kadrona::dialogs {

/// "Profile": chooses the profile that a photo is opened with.
class TProfileDlgFM : public QDialog {
    Q_OBJECT

 public:
    explicit TProfileDlgFM(QWidget* parent = nullptr);

    void SetProfiles(const QStringList& names);

    /// Ok or Cancel.
    controls::ModalResult ShowEx() { return controls::ShowModal(*this); }

    /// Throws platform::Error when the list is empty.
    QString SelectedProfile() const;

 protected:
    void showEvent(QShowEvent* event) override;

 private:
    void FormShow();

    QListWidget* profileListBox_;
};

}  // namespace kadrona::dialogs
