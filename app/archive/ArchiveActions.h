#pragma once

#include <QObject>
#include <QSize>
#include <functional>
#include <optional>

#include "core/sheet/PaperSheet.h"

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

    /// Who says what a sheet of photos of a size, in micrometres, is made on; nothing where there
    /// is to be no sheet. The size is asked only where a paper is chosen.
    using PaperSource =
        std::function<std::optional<core::PaperChoice>(const std::function<QSize()>& photo)>;
    void SetPaperSource(PaperSource source) { paperFor_ = std::move(source); }
    /// Who opens an original to be cut anew, with the template of the user's choice. False where it
    /// cannot be read or is given up.
    using OriginalOpener = std::function<bool(const QString& path)>;
    void SetOriginalOpener(OriginalOpener opener) { openOriginal_ = std::move(opener); }

 private:
    void acSearchArchivExecute();
    void acArchivePhotoExecute();
    void OpenForPrinting(const QString& path, bool printNow);
    bool HasFolder();
    void OpenForCutting(const QString& archiveFolder);
    void MakeSheet(const QString& path);
    bool LayOut();
    QSize PrintedSize() const;

    PhotoSession& session_;
    imaging::view::ImageView& view_;
    core::TData& data_;
    const core::Settings& settings_;
    core::UserInterface& ui_;
    dialogs::TfmImgSearch& archive_;
    MainActions& actions_;
    ViewActions& viewActions_;
    PrintFlow& printFlow_;
    PaperSource paperFor_;
    OriginalOpener openOriginal_;
};

}  // namespace kadrona::app
