#pragma once

#include <QDialog>

#include "controls/messages/ModalResult.h"
#include "core/base/FileNaming.h"

class QDialogButtonBox;
class QLineEdit;

namespace kadrona::dialogs {

/// Asks for the name of a file in a given folder. The name begins with today's date:
///
///     folder / 2026-03-07 - name .jpg
class TFileNameFm : public QDialog {
    Q_OBJECT

 public:
    explicit TFileNameFm(core::NameSources nameSources, QWidget* parent = nullptr);

    /// Ok or Cancel.
    controls::ModalResult ShowEx(const QString& folder);

    /// The path that the fields make; once ShowEx gave Ok, that of a file that did not exist.
    QString Path() const;

 protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

 private:
    void BuildFields();
    QDialogButtonBox* Buttons();
    void FileNameEditChange();
    void btnOkClick();

    core::NameSources nameSources_;
    QString folder_;
    QLineEdit* praefixText_ = nullptr;
    QLineEdit* fileNameEdit_ = nullptr;
};

}  // namespace kadrona::dialogs
