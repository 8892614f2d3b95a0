// Life of the main window: start, end, closing, and the update of its actions.

#include "app/MainWindow.h"

#include <QApplication>
#include <QCloseEvent>
#include <QComboBox>
#include <QGuiApplication>
#include <QScreen>

#include "app/ArchiveActions.h"
#include "app/ColourTools.h"
#include "app/PrintFlow.h"
#include "app/RetouchTool.h"
#include "controls/fields/StatusPanels.h"
#include "controls/messages/ActionGuard.h"
#include "controls/messages/MessageBoxes.h"
#include "controls/messages/WaitCursor.h"
#include "core/base/Product.h"
#include "dialogs/About.h"
#include "dialogs/ArchiveWindow.h"
#include "dialogs/FileNamePrompt.h"
#include "dialogs/ImageTags.h"
#include "dialogs/ProfileChooser.h"
#include "dialogs/RotateDialog.h"
#include "dialogs/SettingsDialog.h"
#include "dialogs/TemplateChooser.h"
#include "dialogs/curves/RgbCurves.h"
#include "imaging/view/ImageView.h"
#include "platform/UserRegistry.h"

using namespace Qt::StringLiterals;

namespace kadrona::app {

namespace {

constexpr QSize DesignedClientArea(772, 675);
constexpr int UndoLimit = 10;
const QString LayoutSection = u"mainFm"_s;
const QString CountValue = u"DBCount"_s;

/// The screen on which enough of a window would be to take hold of it; null when there is none.
const QScreen* ScreenOf(const QRect& window) {
    const QRect grip(window.topLeft(), QSize(window.width(), 32));
    for (const QScreen* screen : QGuiApplication::screens()) {
        const QRect visible = screen->availableGeometry().intersected(grip);
        if (visible.width() >= 64 && visible.height() >= 8) {
            return screen;
        }
    }
    return nullptr;
}

}  // namespace

TmainFm::TmainFm(const core::Folders& folders, printing::PrinterLayer* printer) {
    setObjectName(LayoutSection);
    setWindowTitle(core::WindowCaption.toString());
    BuildCommandArea();
    BuildViewPanel();
    BuildStatusBar();
    SetScreenTips();
    resize(DesignedClientArea.boundedTo(QGuiApplication::primaryScreen()->availableSize()));
    FormCreate(folders, printer);
    ConnectActions();
    UpdateActions();
}

TmainFm::~TmainFm() {
    FormDestroy();
}

void TmainFm::FormCreate(const core::Folders& folders, printing::PrinterLayer* printer) {
    controls::Guarded(this, [this] { dbCount_ = platform::ReadRegistryInteger(CountValue); });
    data_ =
        std::make_unique<core::TData>(static_cast<core::UserInterface&>(*this), folders, printer);
    settings_ = new dialogs::TEinstellungenFm(*data_, this);
    data_->SetSettings(settings_);
    // A setting that makes no sense must not keep the database closed.
    data_->SetInitHandler(
        [this](core::TData&) { controls::Guarded(this, [this] { settings_->InitPropertys(); }); });
    settings_->SetImageCountHandler([this](int index) { pictureCount_->setCurrentIndex(index); });
    controls::Guarded(this, [this] { data_->InitSystem(); });

    templateChooser_ = new dialogs::TSchabloneFm(*settings_, this);
    templateChooser_->SetRotationHandler([this](int degrees) {
        RotatePhoto(degrees);
        acZoomFitExecute();
    });
    profileChooser_ = new dialogs::TProfileDlgFM(this);
    templateChooser_->SetTemplates(data_->GetSchablonenList());
    image_.SetAutomaticUndo(true);
    image_.SetUndoLimit(UndoLimit);
    controls::Guarded(this, [this] { RestoreRectangle(); });
    sheetCreated_ = false;
    imageLoaded_ = false;
    pictureCount_->setCurrentIndex(settings_->ImageCount());
}

void TmainFm::CreateReusedWindows() {
    printFlow_ = std::make_unique<PrintFlow>(*this, *data_, *settings_);
    rotateDialog_ = new dialogs::TfmRotateDlg(this);
    fileNamePrompt_ = new dialogs::TFileNameFm(data_->NameSources(), this);
    about_ = new dialogs::TfmAbout(this);
    tagEditor_ = new dialogs::TfmImageTagEdit(this);
    archiveWindow_ = new dialogs::TfmImgSearch(*data_, *tagEditor_, this);
    archiveActions_ = std::make_unique<ArchiveActions>(ArchiveActions::Window{
        .ui = *this,
        .data = *data_,
        .settings = *settings_,
        .view = *view_,
        .statusPanels = *statusPanels_,
        .archive = *archiveWindow_,
        .print = [this] { acPrintImageExecute(); },
        .layoutIndex = [this] { return pictureCount_->currentIndex(); },
        .photoReplaced = [this](bool created) { ArchivePhotoReplaced(created); }});
    curveDialog_ = new dialogs::TfmRGBKurve(data_->CurvesFolder(), this);
}

void TmainFm::FormDestroy() {
    controls::Guarded(this, [this] {
        if (dbCount_) {
            platform::WriteRegistryInteger(CountValue, *dbCount_);
        }
    });
    colourTools_.reset();
    retouchTool_.reset();
    delete view_;
    // The dialogs and the view may still ask the data module while they go.
    delete archiveWindow_;
    delete templateChooser_;
    delete settings_;
    data_.reset();
}

/// A saved edge of exactly 0 means that nothing is restored; so does a place that no screen shows
/// any more. On a smaller screen the window gets as large as that screen.
void TmainFm::RestoreRectangle() {
    const QRect saved = data_->ReadLayerPosFromIni(LayoutSection);
    const QScreen* screen = ScreenOf(saved);
    if (saved.x() != 0 && saved.y() != 0 && screen != nullptr) {
        move(saved.topLeft());
        resize(saved.size().boundedTo(screen->availableSize()));
    }
}

void TmainFm::FormCloseQuery() {
    const bool restored = !isMaximized() && !isFullScreen();
    const QRect rectangle = restored ? QRect(pos(), size()) : normalGeometry();
    data_->SaveLayerPosToIni(LayoutSection, rectangle);
}

void TmainFm::closeEvent(QCloseEvent* event) {
    controls::Guarded(this, [this] { FormCloseQuery(); });
    event->accept();
}

void TmainFm::Connect(const QString& action, Handler handler) {
    connect(actions_[action], &QAction::triggered, this, [this, handler] {
        controls::Guarded(this, [this, handler] { (this->*handler)(); });
        UpdateActions();
    });
}

void TmainFm::ConnectActions() {
    Connect(u"acOpen"_s, &TmainFm::acOpenExecute);
    Connect(u"acOpenWithProfile"_s, &TmainFm::acOpenWithProfileExecute);
    Connect(u"acClose"_s, &TmainFm::acCloseExecute);
    Connect(u"acCrop"_s, &TmainFm::acCropExecute);
    Connect(u"acZoomFit"_s, &TmainFm::acZoomFitExecute);
    Connect(u"acZoomFull"_s, &TmainFm::acZoomFullExecute);
    Connect(u"acRotateLeft"_s, &TmainFm::acRotateLeftExecute);
    Connect(u"acRotateRight"_s, &TmainFm::acRotateRightExecute);
    Connect(u"acUndo"_s, &TmainFm::acUndoExecute);
    Connect(u"acShowLayer"_s, &TmainFm::acShowLayerExecute);
    Connect(u"acSave"_s, &TmainFm::acSaveExecute);
    Connect(u"acSaveImageFast"_s, &TmainFm::acSaveImageFastExecute);
    Connect(u"acPrintImage"_s, &TmainFm::acPrintImageExecute);
    Connect(u"acPrinSetup"_s, &TmainFm::acPrinSetupExecute);
    Connect(u"acPrinterProfilDlg"_s, &TmainFm::acPrinterProfilDlgExecute);
    Connect(u"acSearchArchiv"_s, &TmainFm::acSearchArchivExecute);
    Connect(u"acAbout"_s, &TmainFm::acAboutExecute);
    Connect(u"acShowConfig"_s, &TmainFm::acShowConfigExecute);
    ConnectTools();

    connect(settings_, &dialogs::TEinstellungenFm::SettingsChanged, this, &TmainFm::UpdateActions);
    connect(pictureCount_, &QComboBox::currentIndexChanged, this, &TmainFm::UpdateActions);
    connect(&image_, &imaging::LayeredImage::PhotoChanged, this, &TmainFm::UpdateActions);
    connect(&image_, &imaging::LayeredImage::LayersChanged, this, &TmainFm::UpdateActions);
}

void TmainFm::ConnectTool(const QString& action, std::function<void()> handler) {
    connect(actions_[action], &QAction::triggered, this, [this, handler = std::move(handler)] {
        controls::Guarded(this, handler);
        UpdateActions();
    });
}

void TmainFm::ConnectTools() {
    const ToolSurroundings surroundings{
        .actions = actions_,
        .view = *view_,
        .statusBar = *statusPanels_,
        .showTemplateLayer = [this](bool show) { ShowTemplateLayer(show); },
        .zoomFit = [this] { acZoomFitExecute(); },
        .zoomFull = [this] { acZoomFullExecute(); }};
    colourTools_ = std::make_unique<ColourTools>(surroundings);
    retouchTool_ = std::make_unique<RetouchTool>(surroundings);
    Connect(u"acRotateDlg"_s, &TmainFm::acRotateDlgExecute);
    ConnectTool(u"acSetWhitePoint"_s, [this] { colourTools_->acSetWhitePointExecute(); });
    ConnectTool(u"acGradation"_s, [this] { colourTools_->acGradationExecute(*curveDialog_); });
    ConnectTool(u"acSchwarzweiss"_s, [this] { colourTools_->acSchwarzweissExecute(); });
    ConnectTool(u"acColorConfig"_s, [this] { colourTools_->acColorConfigExecute(); });
    ConnectTool(u"acBeauty"_s, [this] { retouchTool_->acBeautyExecute(); });
}

void TmainFm::LeaveToolModes() {
    colourTools_->LeaveMode();
    retouchTool_->LeaveMode();
}

void TmainFm::UpdateActions() {
    actions_.Update({.imageLoaded = imageLoaded_,
                     .sheetCreated = sheetCreated_,
                     .templateLoaded = image_.LayerCount() >= 2,
                     .canUndo = image_.CanUndo(),
                     .layoutIndex = pictureCount_->currentIndex()},
                    *settings_);
}

/// Over the window that the user is in: one that is modal would keep a message below it.
void TmainFm::ShowMessage(const QString& text) {
    const controls::WaitCursorPause pause;
    QWidget* modal = QApplication::activeModalWidget();
    controls::ShowInformation(modal != nullptr ? modal : this, text);
}

std::optional<QStringList> TmainFm::EditTags() {
    const controls::WaitCursorPause pause;
    // Whose photo gets the tags is to be seen behind the editor.
    view_->Fit();
    if (tagEditor_->ShowEx() != controls::ModalResult::Ok) {
        return std::nullopt;
    }
    return tagEditor_->Lines();
}

void TmainFm::acSearchArchivExecute() {
    archiveActions_->acSearchArchivExecute();
}

/// The archive put a sheet in the place of the photo, or left nothing there.
void TmainFm::ArchivePhotoReplaced(bool created) {
    imageLoaded_ = created;
    sheetCreated_ = created;
    LeaveToolModes();
    actions_.SetChecked(u"acShowLayer"_s, false);
    view_->setVisible(created);
    emptyState_->setVisible(!created);
    if (!created) {
        statusPanels_->SetPath({});
    }
    view_->SetInteraction(
        {imaging::view::ImageView::Interaction::Zoom, imaging::view::ImageView::Interaction::Pan});
    acZoomFitExecute();
    UpdateActions();
    view_->setFocus();
}

void TmainFm::acPrintImageExecute() {
    const QString printer = printFlow_->PrintSheet(image_);
    if (!printer.isEmpty()) {
        constexpr int Milliseconds = 8000;
        statusPanels_->showMessage(u"Druckauftrag an „%1“ gesendet"_s.arg(printer), Milliseconds);
    }
}

void TmainFm::acPrinSetupExecute() {
    printFlow_->SetUpPrinter();
}

void TmainFm::acPrinterProfilDlgExecute() {
    printFlow_->ShowProfiles();
}

void TmainFm::acAboutExecute() {
    about_->exec();
}

void TmainFm::acShowConfigExecute() {
    settings_->ShowEx();
}

void TmainFm::acCloseExecute() {
    close();
}

}  // namespace kadrona::app
