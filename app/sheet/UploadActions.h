#pragma once

#include <QObject>
#include <functional>

class QWidget;

namespace kadrona::core {
class TData;
class UserInterface;
}  // namespace kadrona::core

namespace kadrona::dialogs {
class TEinstellungenFm;
class UploadDialog;
}  // namespace kadrona::dialogs

namespace kadrona::app {

class MainActions;
class PhotoSession;

/// "Datei für Online-Antrag": makes the file that a portal takes of the same cut as the prints.
/// All that is given outlives the object.
class UploadActions : public QObject {
    Q_OBJECT

 public:
    UploadActions(PhotoSession& session, QWidget& window, core::TData& data,
                  dialogs::TEinstellungenFm& settings, core::UserInterface& ui,
                  MainActions& actions);

    /// Asked before a file is made of a photo that is not cut yet.
    void SetConfirmation(std::function<bool()> confirm) { confirm_ = std::move(confirm); }

 private:
    void acUploadFileExecute();
    void Save();

    PhotoSession& session_;
    core::TData& data_;
    dialogs::TEinstellungenFm& settings_;
    core::UserInterface& ui_;
    MainActions& actions_;
    dialogs::UploadDialog* dialog_;
    std::function<bool()> confirm_;
};

}  // namespace kadrona::app
