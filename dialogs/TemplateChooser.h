#pragma once

#include <QDialog>
#include <functional>

#include "controls/messages/ModalResult.h"

class QPushButton;
class QTimer;
class QToolButton;

namespace kadrona::controls {
class SelectionList;
}

namespace kadrona::core {
class Settings;
}

namespace kadrona::dialogs {

/// "Schablonen": lets the user pick a template and turn the photo right after it was opened. With a
/// default template it confirms itself after half a second. It cannot be closed while no template
/// is selected.
class TSchabloneFm : public QDialog {
    Q_OBJECT

 public:
    explicit TSchabloneFm(const core::Settings& settings, QWidget* parent = nullptr);

    /// Called with +90 (counter-clockwise) or -90 degrees.
    void SetRotationHandler(std::function<void(int degrees)> handler) {
        rotationHandler_ = std::move(handler);
    }

    void SetTemplates(const QStringList& names);

    /// Index of the selected template; -1 none.
    int SelectedTemplate() const;

    /// Ok or Cancel.
    controls::ModalResult ShowEx() { return controls::ShowModal(*this); }

 protected:
    void showEvent(QShowEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void done(int result) override;

 private:
    void FormShow();
    bool FormCloseQuery() const;
    void RotateClick(const QToolButton& sender);
    void TimerTimer();
    QToolButton* RotateButton(const QString& name, const QString& icon, const QString& hint,
                              int tag);

    const core::Settings& settings_;
    std::function<void(int)> rotationHandler_;
    controls::SelectionList* lbSchablonen_;
    QToolButton* btnRotateLeft_;
    QToolButton* btnRotateRight_;
    QPushButton* btnOk_;
    QTimer* timer_;
};

}  // namespace kadrona::dialogs
