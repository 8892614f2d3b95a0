#pragma once

#include <QMainWindow>
#include <functional>
#include <memory>
#include <optional>

#include "app/MainActions.h"
#include "controls/messages/WaitCursor.h"
#include "core/Data.h"
#include "core/base/UserInterface.h"

class QComboBox;
class QLabel;

namespace kadrona::controls {
class CommandArea;
class StatusPanels;
}  // namespace kadrona::controls

namespace kadrona::dialogs {
class TEinstellungenFm;
class TFileNameFm;
class TProfileDlgFM;
class TSchabloneFm;
class TfmAbout;
class TfmImageTagEdit;
class TfmImgSearch;
class TfmRGBKurve;
class TfmRotateDlg;
}  // namespace kadrona::dialogs

namespace kadrona::imaging::view {
class ImageView;
}

namespace kadrona::app {

class ArchiveActions;
class ColourTools;
class PrintFlow;
class RetouchTool;

/// The one main window: command area, image view, status bar, and what the actions do. Its sources
/// are split by subject: MainWindow (life and update), MainWindowLayout (bars and tips),
/// PhotoOpening, PhotoViewing (zoom, undo, template layer, keys), PhotoCreation and PhotoSaving.
class TmainFm : public QMainWindow, private core::UserInterface {
    Q_OBJECT

 public:
    /// Starts the program's data and dialogs in their fixed order. `printer`, null for none,
    /// outlives the window.
    explicit TmainFm(const core::Folders& folders = core::Folders::OfThisMachine(),
                     printing::PrinterLayer* printer = nullptr);
    ~TmainFm() override;

    /// Windows that are made after the main window and live as long as it does.
    void CreateReusedWindows();

    /// Opens a photo as a drop of that file would.
    void OpenDroppedFiles(const QStringList& paths);

    core::TData& Data() { return *data_; }
    imaging::view::ImageView& View() { return *view_; }
    MainActions& Actions() { return actions_; }

 protected:
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

 private:
    using Handler = void (TmainFm::*)();

    // Life (MainWindow.cpp)
    void FormCreate(const core::Folders& folders, printing::PrinterLayer* printer);
    void FormDestroy();
    void FormCloseQuery();
    void RestoreRectangle();
    void ConnectActions();
    void Connect(const QString& action, Handler handler);
    void ConnectTools();
    void ConnectTool(const QString& action, std::function<void()> handler);
    void UpdateActions();
    void ShowMessage(const QString& text) override;
    std::optional<QStringList> EditTags() override;

    // Bars and panels (MainWindowLayout.cpp)
    void BuildCommandArea();
    void BuildEditBar(controls::CommandArea& area);
    void BuildViewPanel();
    void BuildStatusBar();
    void SetScreenTips();

    // Opening (PhotoOpening.cpp)
    void acOpenExecute();
    void acOpenWithProfileExecute();
    void ChooseAndLoad();
    void LoadImageFile(const QString& fileName);
    bool ReadPhoto(const QString& fileName);
    void ChooseTemplate();

    // Viewing (PhotoViewing.cpp)
    void ShowTemplateLayer(bool show);
    void acShowLayerExecute();
    void acZoomFitExecute();
    void acZoomFullExecute();
    void acUndoExecute();
    void acRotateLeftExecute();
    void acRotateRightExecute();
    void acRotateDlgExecute();
    std::optional<double> AskForRotation(const imaging::Pixels& preview) override;
    void QuarterTurn(int degrees);
    /// Ends the modes that the mouse is in, as before another photo.
    void LeaveToolModes();
    void RotatePhoto(int degrees);
    void KeepTemplateOnPhoto();
    void ViewLayerNotify(int layer);
    void ViewMouseDown();
    void ViewKeyDown();
    void ViewKeyUp();
    void StatusBarPanel2Click();

    // Creation (PhotoCreation.cpp)
    void acCropExecute();

    // Saving (PhotoSaving.cpp)
    void acSaveExecute();
    void acSaveImageFastExecute();
    std::optional<QString> AskForSaveFile(const core::SaveDialog& dialog) override;

    // Printing (PrintFlow)
    void acPrintImageExecute();
    void acPrinSetupExecute();
    void acPrinterProfilDlgExecute();

    // Archive (ArchiveActions)
    void acSearchArchivExecute();
    void ArchivePhotoReplaced(bool created);

    // Others
    void acAboutExecute();
    void acShowConfigExecute();
    void acCloseExecute();

    std::optional<int> dbCount_;  // nothing where it could not be read
    bool imageLoaded_ = false;
    bool sheetCreated_ = false;
    /// The save dialog's last one.
    QString saveFilter_;

    imaging::LayeredImage image_;

    MainActions actions_;
    std::unique_ptr<core::TData> data_;
    dialogs::TEinstellungenFm* settings_ = nullptr;
    dialogs::TSchabloneFm* templateChooser_ = nullptr;
    dialogs::TProfileDlgFM* profileChooser_ = nullptr;
    std::unique_ptr<PrintFlow> printFlow_;
    dialogs::TFileNameFm* fileNamePrompt_ = nullptr;
    dialogs::TfmAbout* about_ = nullptr;
    dialogs::TfmRotateDlg* rotateDialog_ = nullptr;
    dialogs::TfmRGBKurve* curveDialog_ = nullptr;
    dialogs::TfmImageTagEdit* tagEditor_ = nullptr;
    dialogs::TfmImgSearch* archiveWindow_ = nullptr;
    std::unique_ptr<ArchiveActions> archiveActions_;

    imaging::view::ImageView* view_ = nullptr;
    QWidget* viewPanel_ = nullptr;
    QWidget* emptyState_ = nullptr;
    QComboBox* pictureCount_ = nullptr;
    controls::StatusPanels* statusPanels_ = nullptr;
    /// While the photo is turned by the angle that the user gave.
    std::optional<controls::WaitCursor> turning_;
    std::unique_ptr<ColourTools> colourTools_;
    std::unique_ptr<RetouchTool> retouchTool_;
};

}  // namespace kadrona::app
