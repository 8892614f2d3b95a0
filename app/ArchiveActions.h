#pragma once

#include <QObject>

class QString;

namespace kadrona::core {
class Settings;
class TData;
class UserInterface;
}  // namespace kadrona::core

namespace kadrona::dialogs {
class TfmImgSearch;
}

namespace kadrona::imaging::view {
class ImageView;
}

namespace kadrona::app {

class MainActions;
class PhotoSession;
class PrintFlow;
class ViewActions;

/// "Bild Archiv": lets the user choose an archived photo and makes a sheet of it that is ready to
/// be printed. All that is given outlives the object.
class ArchiveActions : public QObject {
    Q_OBJECT

 public:
    ArchiveActions(PhotoSession& session, imaging::view::ImageView& view, core::TData& data,
                   const core::Settings& settings, core::UserInterface& ui,
                   dialogs::TfmImgSearch& archive, MainActions& actions, ViewActions& viewActions,
                   PrintFlow& printFlow);

 private:
    void acSearchArchivExecute();
    void OpenForPrinting(const QString& path);
    void MakeSheet(const QString& path);

    PhotoSession& session_;
    imaging::view::ImageView& view_;
    core::TData& data_;
    const core::Settings& settings_;
    core::UserInterface& ui_;
    dialogs::TfmImgSearch& archive_;
    MainActions& actions_;
    ViewActions& viewActions_;
    PrintFlow& printFlow_;
};

}  // namespace kadrona::app
