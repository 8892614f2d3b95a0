#pragma once

#include <QDialog>

namespace kadrona::dialogs {

/// What the program is, who makes it, under which licence.
class TfmAbout : public QDialog {
    Q_OBJECT

 public:
    explicit TfmAbout(QWidget* parent = nullptr);
};

}  // namespace kadrona::dialogs
