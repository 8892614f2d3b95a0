#pragma once

#include <QWidget>

#include "core/archive/ArchiveServer.h"

class QCheckBox;
class QGridLayout;
class QLabel;
class QLineEdit;
class QPushButton;
class QSpinBox;

namespace kadrona::dialogs {

/// Where the archive's database lies: on this machine, or on a server that several workplaces
/// share, whose connection can be tried. Where the program was built without servers it says so.
class ArchiveServerEdit : public QWidget {
    Q_OBJECT

 public:
    explicit ArchiveServerEdit(QWidget* parent = nullptr);

    core::ArchiveServer Server() const;
    void SetServer(const core::ArchiveServer& server);

 Q_SIGNALS:
    /// The archive of this machine is to be copied to the server of the fields.
    void TransferRequested();

 private:
    void BuildLayout();
    void ShowResult(const QString& text);
    void EnableFields();
    void Try();

    QCheckBox* used_;
    QLineEdit* host_;
    QSpinBox* port_;
    QLineEdit* database_;
    QLineEdit* user_;
    QLineEdit* password_;
    QCheckBox* verified_;
    QPushButton* try_;
    QPushButton* transfer_;
    QLabel* result_;
};

}  // namespace kadrona::dialogs
