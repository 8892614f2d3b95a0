// Life of the main window: start, end, closing, and what it shows of the session.

#include "app/MainWindow.h"

#include <QCloseEvent>
#include <QComboBox>
#include <QLabel>
#include <QUrl>

#include "app/AppearanceActions.h"
#include "app/ManualActions.h"
#include "app/WindowInterface.h"
#include "app/WindowPlace.h"
#include "app/adjustments/ColourTools.h"
#include "app/adjustments/RetouchTool.h"
#include "app/adjustments/RotateActions.h"
#include "app/archive/ArchiveActions.h"
#include "app/archive/WaitingPhotos.h"
#include "app/base/ViewActions.h"
#include "app/face/FaceActions.h"
#include "app/face/FaceLine.h"
#include "app/opening/OpenActions.h"
#include "app/opening/RecentActions.h"
#include "app/opening/WatchActions.h"
#include "app/printing/PrintFlow.h"
#include "app/sheet/PaperActions.h"
#include "app/sheet/SheetActions.h"
#include "app/sheet/UploadActions.h"
#include "controls/fields/StatusPanels.h"
#include "controls/messages/ActionGuard.h"
#include "core/archive/EarlierTags.h"
#include "core/base/Product.h"
#include "dialogs/About.h"
#include "dialogs/adjustments/RotateDialog.h"
#include "dialogs/archive/ArchiveWindow.h"
#include "dialogs/archive/ImageTags.h"
#include "dialogs/curves/RgbCurves.h"
#include "dialogs/settings/FileNamePrompt.h"
#include "dialogs/settings/SettingsDialog.h"
#include "imaging/view/ImageView.h"
#include "platform/Error.h"
#include "platform/FolderProbe.h"
#include "platform/UserRegistry.h"
#include "platform/WebPage.h"

using namespace Qt::StringLiterals;

namespace kadrona::app {

namespace {

constexpr QSize DesignedClientArea(772, 675);
constexpr int UndoLimit = 10;
const QString CountValue = u"DBCount"_s;

}  // namespace

TmainFm::TmainFm(const core::Folders& folders, printing::PrinterLayer* printer) {
    setObjectName(u"mainFm"_s);
    setWindowTitle(core::WindowCaption.toString());
    BuildCommandArea();
    BuildViewPanel();
    BuildStatusBar();
    SetScreenTips();
    resize(WindowPlace::OnScreen(DesignedClientArea));
    FormCreate(folders, printer);
    CreateReusedWindows();
    ConnectActions();
    ShowSession();
}

TmainFm::~TmainFm() {
    FormDestroy();
}

void TmainFm::FormCreate(const core::Folders& folders, printing::PrinterLayer* printer) {
    controls::Guarded(this, [this] { dbCount_ = platform::ReadRegistryInteger(CountValue); });
    ui_ = std::make_unique<WindowInterface>(*this, *view_);
    data_ = std::make_unique<core::TData>(*ui_, folders, printer);
    settings_ = new dialogs::TEinstellungenFm(*data_, this);
    data_->SetSettings(settings_);
    // A setting that makes no sense must not keep the database closed.
    data_->SetInitHandler(
        [this](core::TData&) { controls::Guarded(this, [this] { settings_->InitPropertys(); }); });
    settings_->SetImageCountHandler([this](int index) { pictureCount_->setCurrentIndex(index); });
    controls::Guarded(this, [this] { data_->InitSystem(); });

    viewActions_ = std::make_unique<ViewActions>(session_, *view_, actions_);
    rotateActions_ = std::make_unique<RotateActions>(session_, *data_, actions_, *viewActions_);
    openActions_ = std::make_unique<OpenActions>(session_, *view_, *data_, *settings_, actions_,
                                                 *viewActions_, *rotateActions_);
    recentActions_ =
        std::make_unique<RecentActions>(*recentMenu_, *recentStrip_, session_,
                                        [this](const QString& path) { OpenDroppedFiles({path}); });
    manualActions_ = std::make_unique<ManualActions>(*this, data_->ProgramFolder(), actions_);
    appearanceActions_ = std::make_unique<AppearanceActions>(*appearanceMenu_);
    connect(openActions_.get(), &OpenActions::PhotoRead, recentActions_.get(),
            &RecentActions::Remember);
    session_.Image().SetAutomaticUndo(true);
    session_.Image().SetUndoLimit(UndoLimit);
    place_ = std::make_unique<WindowPlace>(*this, data_->DataFolder());
    controls::Guarded(this, [this] { place_->Restore(); });
    pictureCount_->setCurrentIndex(settings_->ImageCount());
    session_.SetLayoutIndex(pictureCount_->currentIndex());
}

/// Windows that are made after the main window and live as long as it does, in their fixed order.
void TmainFm::CreateReusedWindows() {
    printFlow_ =
        std::make_unique<PrintFlow>(session_, *this, *statusPanels_, *data_, *settings_, actions_);
    auto* rotateDialog = new dialogs::TfmRotateDlg(this);
    fileNamePrompt_ = new dialogs::TFileNameFm(data_->NameSources(), this);
    about_ = new dialogs::TfmAbout(this);
    auto* tagEditor = new dialogs::TfmImageTagEdit(this);
    tagEditor->SetSuggestionSource([this] { return EarlierTags(); });
    archiveWindow_ = new dialogs::TfmImgSearch(*data_, *tagEditor, this);
    auto* curveDialog = new dialogs::TfmRGBKurve(data_->CurvesFolder(), this);

    ui_->SetDialogs(*tagEditor, *rotateDialog);
    CreateActions(*curveDialog);
    ConnectParts();
}

/// What the actions do, each group in a class of its own.
void TmainFm::CreateActions(dialogs::TfmRGBKurve& curveDialog) {
    sheetActions_ = std::make_unique<SheetActions>(session_, *this, *data_, *settings_, *ui_,
                                                   actions_, *viewActions_, *printFlow_);
    uploadActions_ =
        std::make_unique<UploadActions>(session_, *this, *data_, *settings_, *ui_, actions_);
    archiveActions_ =
        std::make_unique<ArchiveActions>(session_, *view_, *data_, *settings_, *ui_,
                                         *archiveWindow_, actions_, *viewActions_, *printFlow_);
    waitingPhotos_ = std::make_unique<WaitingPhotos>(*data_, *this);
    colourTools_ =
        std::make_unique<ColourTools>(session_, *view_, actions_, *viewActions_, curveDialog);
    retouchTool_ =
        std::make_unique<RetouchTool>(session_, *view_, *statusPanels_, actions_, *viewActions_);
    faceActions_ =
        std::make_unique<FaceActions>(session_, *view_, *data_, *settings_, *ui_, actions_,
                                      *rotateActions_, *sidePanel_, *checkSection_, *faceLine_);
    watchActions_ =
        std::make_unique<WatchActions>(*photoStrip_, *settings_, actions_,
                                       [this](const QString& path) { OpenDroppedFiles({path}); });
    paperActions_ = std::make_unique<PaperActions>(
        session_,
        PaperActions::Surroundings{*this, *data_, *settings_, *ui_, actions_, *viewActions_,
                                   *printFlow_, *sidePanel_, *sheetSection_, *traySection_});
}

void TmainFm::ConnectParts() {
    archiveActions_->SetPaperSource(
        [this](const std::function<QSize()>& photo) { return paperActions_->PaperFor(photo); });
    archiveActions_->SetOriginalOpener(
        [this](const QString& path) { return openActions_->OpenOriginal(path); });
    sheetActions_->SetConfirmation(
        [this] { return faceActions_->ConfirmCut() && paperActions_->PreparePaper(); },
        [this] { return faceActions_->CutRemark(); });
    const auto mayCut = [this] { return faceActions_->MayCut(); };
    paperActions_->SetConfirmation(mayCut);
    uploadActions_->SetConfirmation(mayCut);
}

/// An archive that is gone is told by what works on it.
QStringList TmainFm::EarlierTags() const {
    try {
        return core::EarlierTags(data_->ArchiveDatabase());
    } catch (const platform::Error&) {
        return {};
    }
}

void TmainFm::ConnectActions() {
    actions_.Connect(Action::About, this, [this] { ShowAbout(); });
    actions_.Connect(Action::ShowConfig, this, [this] { settings_->ShowEx(); });
    actions_.Connect(Action::Close, this, [this] { close(); });
    connect(pictureCount_, &QComboBox::currentIndexChanged, &session_,
            &PhotoSession::SetLayoutIndex);
    connect(&session_, &PhotoSession::Changed, this, &TmainFm::ShowSession);
    connect(&actions_, &MainActions::Handled, this, &TmainFm::ShowSession);
    connect(&actions_, &MainActions::Succeeded, statusPanels_, &controls::StatusPanels::ShowNotice);
    connect(settings_, &dialogs::TEinstellungenFm::SettingsChanged, this, &TmainFm::ShowSession);
}

void TmainFm::ShowSession() {
    using Stage = PhotoSession::Stage;
    const imaging::LayeredImage& image = session_.Image();
    actions_.Update({.imageLoaded = session_.CurrentStage() != Stage::NoPhoto,
                     .sheetCreated = session_.CurrentStage() == Stage::SheetMade,
                     .templateLoaded = session_.HasTemplate(),
                     .canUndo = image.CanUndo(),
                     .pictureShown = !image.IsEmpty(),
                     .cutKnown = !session_.Cut().IsEmpty(),
                     .archivable = data_ && data_->CanArchive(),
                     .sheetPrinted = printFlow_ && printFlow_->HasPrinted(),
                     .layoutIndex = session_.LayoutIndex()},
                    *settings_);
    emptyState_->setVisible(image.IsEmpty());
    view_->setVisible(!image.IsEmpty());
    faceLine_->setVisible(session_.IsEditing());
    sheetLine_->setVisible(session_.CurrentStage() == Stage::SheetMade &&
                           actions_[Action::UploadFile]->isEnabled());
    statusPanels_->SetPath(session_.FileName());
    templateName_->setText(session_.TemplateName());
    view_->setAccessibleDescription(
        session_.HasTemplate() ? u"Schablone: "_s + session_.TemplateName() : QString());
}

void TmainFm::OpenDroppedFiles(const QStringList& paths) {
    openActions_->OpenFiles(paths);
}

/// Where it cannot be written nothing is said: nobody misses it.
void TmainFm::KeepCount() const {
    try {
        if (dbCount_) {
            platform::WriteRegistryInteger(CountValue, *dbCount_);
        }
    } catch (const platform::Error&) {
    }
}

void TmainFm::FormDestroy() {
    KeepCount();
    // What works on the view and the data goes before them.
    watchActions_.reset();
    paperActions_.reset();
    faceActions_.reset();
    colourTools_.reset();
    retouchTool_.reset();
    waitingPhotos_.reset();
    archiveActions_.reset();
    uploadActions_.reset();
    sheetActions_.reset();
    printFlow_.reset();
    recentActions_.reset();
    openActions_.reset();
    rotateActions_.reset();
    viewActions_.reset();
    delete view_;
    // The dialogs may still ask the data module while they go.
    delete archiveWindow_;
    delete settings_;
    data_.reset();
}

void TmainFm::closeEvent(QCloseEvent* event) {
    controls::Guarded(this, [this] { place_->Save(); });
    event->accept();
}

bool TmainFm::event(QEvent* event) {
    // A menu would clear the status bar of a hint that still holds; no action has a text for it.
    return event->type() == QEvent::StatusTip || QMainWindow::event(event);
}

/// With the folders of today: photos wait for the archive's server only while it is gone.
void TmainFm::ShowAbout() {
    QList<dialogs::TfmAbout::Folder> folders{
        {u"Profile und Archiv"_s, data_->DataFolder()},
        {u"Schablonen"_s, data_->TemplateFolder()},
        {u"Werte des Benutzers"_s, platform::RegistryFolder()}};
    for (const auto& [meaning, path] :
         {dialogs::TfmAbout::Folder{u"Bildarchiv"_s, settings_->ImageDestinationDir()},
          {u"Wartende Fotos"_s, data_->Archiving().Queue().Folder()}}) {
        if (platform::LookAtFolder(path) == platform::FolderState::There) {
            folders.append({meaning, path});
        }
    }
    about_->SetFolders(folders);
    about_->exec();
}

/// The page of a maker that is none does not exist; what is known of the maker stands in "Über".
void TmainFm::StatusBarPanel2Click() {
    const QUrl page(core::MakerHomePage.toString());
    if (!core::MakerHasHomePage()) {
        ShowAbout();
        return;
    }
    controls::Guarded(this, [&page] {
        if (!platform::OpenWebPage(page)) {
            throw platform::Error(
                u"Die Seite %1 konnte nicht geöffnet werden: Es wurde kein "
                u"Webbrowser gefunden."_s.arg(core::MakerHomePage));
        }
    });
}

}  // namespace kadrona::app
