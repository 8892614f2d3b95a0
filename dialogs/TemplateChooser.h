#pragma once

#include <QDialog>
#include <QSizeF>
#include <functional>

#include "controls/messages/ModalResult.h"

class QKeyEvent;
class QLabel;
class QLineEdit;
class QPushButton;
class QToolButton;

namespace kadrona::controls {
class SelectionList;
}

namespace kadrona::core {
class Settings;
}

namespace kadrona::dialogs {

class SelfConfirmation;

/// "Schablonen": lets the user pick a template and turn the photo right after it was opened. With a
/// default template it confirms itself after half a second. It cannot be closed while no template
/// is selected. Letters go into the line that filters the list.
class TSchabloneFm : public QDialog {
    Q_OBJECT

 public:
    explicit TSchabloneFm(const core::Settings& settings, QWidget* parent = nullptr);

    /// Called with +90 (counter-clockwise) or -90 degrees.
    void SetRotationHandler(std::function<void(int degrees)> handler) {
        rotationHandler_ = std::move(handler);
    }

    /// `sizeOf` tells the size of a template's photo in millimetres, empty where it has none; it is
    /// asked for each template when the chooser is first shown.
    void SetTemplates(const QStringList& names, std::function<QSizeF(int index)> sizeOf = {});
    /// What is to be known of a template before it is chosen, a German sentence or nothing; asked
    /// for the one that is selected.
    void SetNotices(std::function<QString(int index)> noticeOf) { noticeOf_ = std::move(noticeOf); }

    /// Index of the selected template; -1 none.
    int SelectedTemplate() const;

    /// Ok or Cancel.
    controls::ModalResult ShowEx() { return controls::ShowModal(*this); }

 protected:
    void showEvent(QShowEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void done(int result) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

 private:
    void BuildLayout();
    void ShowSizes();
    void ShowNotice();
    bool FilterByKey(const QKeyEvent& event);
    void FormShow();
    bool FormCloseQuery() const;
    void RotateClick(const QToolButton& sender);
    QToolButton* RotateButton(const QString& name, const QString& icon, const QString& hint,
                              int tag);

    const core::Settings& settings_;
    std::function<void(int)> rotationHandler_;
    std::function<QSizeF(int)> sizeOf_;
    std::function<QString(int)> noticeOf_;
    QLineEdit* filterEdit_;
    controls::SelectionList* lbSchablonen_;
    QLabel* notice_;
    QToolButton* btnRotateLeft_;
    QToolButton* btnRotateRight_;
    QPushButton* btnOk_;
    SelfConfirmation* confirmation_;
};

}  // namespace kadrona::dialogs
