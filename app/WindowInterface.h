#pragma once

#include <QHash>
#include <QString>

#include "core/base/UserInterface.h"

class QWidget;

namespace kadrona::dialogs {
class TfmImageTagEdit;
class TfmRotateDlg;
}  // namespace kadrona::dialogs

namespace kadrona::imaging::view {
class ImageView;
}

namespace kadrona::app {

/// Asks and tells the user by windows, without the hourglass of whatever is going on.
class WindowInterface : public core::UserInterface {
 public:
    /// Both outlive the object.
    WindowInterface(QWidget& window, imaging::view::ImageView& view)
        : window_(window), view_(view) {}

    /// Before these are there, nobody can be asked for tags or an angle.
    void SetDialogs(dialogs::TfmImageTagEdit& tagEditor, dialogs::TfmRotateDlg& rotateDialog) {
        tagEditor_ = &tagEditor;
        rotateDialog_ = &rotateDialog;
    }

    void ShowMessage(const QString& text) override;
    bool AskYesNo(const QString& text) override;
    bool AskToRetry(const QString& text) override;
    std::optional<QStringList> EditTags(const imaging::Pixels& photo,
                                        const QStringList& lines) override;
    std::optional<QString> AskForSaveFile(const core::SaveDialog& dialog) override;
    std::optional<double> AskForRotation(const imaging::Pixels& preview) override;

 private:
    QWidget* TopWindow() const;

    QWidget& window_;
    imaging::view::ImageView& view_;
    dialogs::TfmImageTagEdit* tagEditor_ = nullptr;
    dialogs::TfmRotateDlg* rotateDialog_ = nullptr;
    /// The last choice in each save dialog, by the filters that it offers.
    QHash<QString, QString> saveFilters_;
};

}  // namespace kadrona::app
