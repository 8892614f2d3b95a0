#pragma once

#include <QMainWindow>
#include <memory>
#include <optional>

#include "app/base/MainActions.h"
#include "app/base/PhotoSession.h"
#include "core/Data.h"

class QComboBox;
class QLabel;
class QMenu;

namespace kadrona::controls {
class CommandArea;
class CommandBar;
class PhotoStrip;
class StatusPanels;
}  // namespace kadrona::controls

namespace kadrona::dialogs {
class CheckSection;
class SheetSection;
class SidePanel;
class TEinstellungenFm;
class TFileNameFm;
class TfmAbout;
class TfmImgSearch;
class TfmRGBKurve;
class TraySection;
}  // namespace kadrona::dialogs

namespace kadrona::imaging::view {
class ImageView;
}

namespace kadrona::app {

class AppearanceActions;
class ArchiveActions;
class ColourTools;
class FaceActions;
class FaceLine;
class ManualActions;
class OpenActions;
class PaperActions;
class PrintFlow;
class RecentActions;
class RetouchTool;
class RotateActions;
class SheetActions;
class UploadActions;
class ViewActions;
class WaitingPhotos;
class WatchActions;
class WindowInterface;
class WindowPlace;

/// The one main window: it makes the program's parts in their fixed order, lays out command area,
/// view and status bar (MainWindow_Layout.cpp), and shows what the session holds.
/// What the actions do stands in a class for each group of them.
class TmainFm : public QMainWindow {
    Q_OBJECT

 public:
    /// Starts the program's data and dialogs in their fixed order. `printer`, null for none,
    /// outlives the window.
    explicit TmainFm(const core::Folders& folders = core::Folders::OfThisMachine(),
                     printing::PrinterLayer* printer = nullptr);
    ~TmainFm() override;

    /// Opens a photo as a drop of that file would.
    void OpenDroppedFiles(const QStringList& paths);

    core::TData& Data() { return *data_; }
    PhotoSession& Session() { return session_; }
    imaging::view::ImageView& View() { return *view_; }
    MainActions& Actions() { return actions_; }

 protected:
    bool event(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

 private:
    // Life (MainWindow.cpp)
    void FormCreate(const core::Folders& folders, printing::PrinterLayer* printer);
    void CreateReusedWindows();
    void CreateActions(dialogs::TfmRGBKurve& curveDialog);
    void ConnectParts();
    QStringList EarlierTags() const;
    void ConnectActions();
    void FormDestroy();
    void KeepCount() const;
    void ShowSession();
    void ShowAbout();
    void StatusBarPanel2Click();

    // Bars and panels (MainWindow_Layout.cpp)
    void BuildCommandArea();
    void BuildFileMenu(controls::CommandArea& area);
    void BuildEditBar(controls::CommandArea& area);
    void AddActions(controls::CommandBar& bar, std::initializer_list<Action> actions);
    void BuildViewPanel();
    void BuildSidePanel();
    void TakeDrops(QWidget& panel);
    QWidget* BuildSheetLine();
    QWidget* BuildEmptyState();
    void BuildStatusBar();
    void SetScreenTips();

    std::optional<int> dbCount_;  // nothing where it could not be read
    PhotoSession session_;
    MainActions actions_{this};
    imaging::view::ImageView* view_ = nullptr;
    QWidget* emptyState_ = nullptr;
    QWidget* emptyStateButton_ = nullptr;
    QMenu* recentMenu_ = nullptr;
    QMenu* appearanceMenu_ = nullptr;
    controls::PhotoStrip* recentStrip_ = nullptr;
    FaceLine* faceLine_ = nullptr;
    QWidget* sheetLine_ = nullptr;
    controls::PhotoStrip* photoStrip_ = nullptr;
    QComboBox* pictureCount_ = nullptr;
    controls::StatusPanels* statusPanels_ = nullptr;
    QLabel* templateName_ = nullptr;
    dialogs::SidePanel* sidePanel_ = nullptr;
    dialogs::CheckSection* checkSection_ = nullptr;
    dialogs::SheetSection* sheetSection_ = nullptr;
    dialogs::TraySection* traySection_ = nullptr;

    std::unique_ptr<WindowInterface> ui_;
    std::unique_ptr<core::TData> data_;
    std::unique_ptr<WindowPlace> place_;
    dialogs::TEinstellungenFm* settings_ = nullptr;
    dialogs::TFileNameFm* fileNamePrompt_ = nullptr;
    dialogs::TfmAbout* about_ = nullptr;
    dialogs::TfmImgSearch* archiveWindow_ = nullptr;

    std::unique_ptr<ViewActions> viewActions_;
    std::unique_ptr<RotateActions> rotateActions_;
    std::unique_ptr<OpenActions> openActions_;
    std::unique_ptr<RecentActions> recentActions_;
    std::unique_ptr<AppearanceActions> appearanceActions_;
    std::unique_ptr<ManualActions> manualActions_;
    std::unique_ptr<PrintFlow> printFlow_;
    std::unique_ptr<SheetActions> sheetActions_;
    std::unique_ptr<UploadActions> uploadActions_;
    std::unique_ptr<WatchActions> watchActions_;
    std::unique_ptr<ArchiveActions> archiveActions_;
    std::unique_ptr<WaitingPhotos> waitingPhotos_;
    std::unique_ptr<ColourTools> colourTools_;
    std::unique_ptr<RetouchTool> retouchTool_;
    std::unique_ptr<FaceActions> faceActions_;
    std::unique_ptr<PaperActions> paperActions_;
};

}  // namespace kadrona::app
