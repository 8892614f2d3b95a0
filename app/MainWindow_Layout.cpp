// What the main window is made of: command area, image view, status bar and their tips.

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QVBoxLayout>

#include "app/MainWindow.h"
#include "app/base/AtRest.h"
#include "app/face/FaceLine.h"
#include "app/opening/OpenActions.h"
#include "controls/commands/ApplicationMenu.h"
#include "controls/commands/CommandArea.h"
#include "controls/commands/LetterMenu.h"
#include "controls/commands/ScreenTip.h"
#include "controls/fields/ElidedLabel.h"
#include "controls/fields/FileDropTarget.h"
#include "controls/fields/IconLabel.h"
#include "controls/fields/PhotoStrip.h"
#include "controls/fields/StatusPanels.h"
#include "controls/theme/Icons.h"
#include "core/base/Product.h"
#include "core/sheet/SheetLayout.h"
#include "dialogs/base/ScrolledPage.h"
#include "dialogs/side/CheckSection.h"
#include "dialogs/side/SheetSection.h"
#include "dialogs/side/SidePanel.h"
#include "dialogs/side/TraySection.h"
#include "imaging/view/ImageView.h"

using namespace Qt::StringLiterals;

namespace kadrona::app {

using controls::Caption;

namespace {

/// Width of the picture count box's text area in pixels.
constexpr int PictureCountWidth = 46;

}  // namespace

void TmainFm::BuildCommandArea() {
    auto* area = new controls::CommandArea(u"Hauptmenu"_s, this);
    controls::ApplicationMenu& menu = area->Application().Menu();
    area->Application().AddAction(actions_[Action::Open]);
    area->Application().AddAction(actions_[Action::OpenWithProfile]);
    menu.AddSeparator();
    area->Application().AddAction(actions_[Action::Close]);
    menu.SetFootAction(actions_[Action::ShowConfig]);
    menu.SetSidePane(u"KDR Prof"_s,
                     u"Porträt öffnen, Schablone auf das Gesicht legen, Passbilder erstellen."_s);

    BuildFileMenu(*area);
    BuildEditBar(*area);
    setMenuWidget(area);
}

/// Its letters are those of the menu alone: the same actions stand elsewhere too.
void TmainFm::BuildFileMenu(controls::CommandArea& area) {
    QMenu* file = area.QuickAccess().AddMenu(u"Datei"_s, u"&Datei"_s);
    file->setToolTipsVisible(true);
    const auto add = [&](std::initializer_list<std::pair<Action, QChar>> entries) {
        for (const auto& [action, letter] : entries) {
            controls::SetMenuLetter(*actions_[action], letter);
            file->addAction(actions_[action]);
        }
    };
    add({{Action::Open, u'Ö'},
         {Action::SearchArchiv, u'R'},
         {Action::Save, u'S'},
         {Action::PrinSetup, u'D'},
         {Action::PrinterProfilDlg, u'P'},
         {Action::ShowConfig, u'E'}});
    file->addSeparator();
    add({{Action::Paste, u'F'},
         {Action::AddToSheet, u'Z'},
         {Action::UploadFile, u'O'},
         {Action::ArchivePhoto, u'A'},
         {Action::PrintAgain, u'N'}});
    recentMenu_ = file->addMenu(u"Zu&letzt geöffnet"_s);
    recentMenu_->setObjectName(u"RecentMenu"_s);
    QMenu* side = file->addMenu(u"Se&itenleiste"_s);
    side->setObjectName(u"SideMenu"_s);
    side->setToolTipsVisible(true);
    side->addAction(actions_[Action::ShowCheck]);
    side->addAction(actions_[Action::ShowSheet]);
    appearanceMenu_ = file->addMenu(u"Dars&tellung"_s);
    appearanceMenu_->setObjectName(u"AppearanceMenu"_s);
    file->addSeparator();
    add({{Action::Manual, u'H'}, {Action::Close, u'B'}});
}

void TmainFm::BuildEditBar(controls::CommandArea& area) {
    pictureCount_ = new QComboBox;
    pictureCount_->setObjectName(u"Anzahl"_s);
    for (const core::SheetLayout& layout : core::SheetLayouts) {
        pictureCount_->addItem(layout.name);
    }
    controls::CommandBar& bar = area.AddBar(u"Bearbeiten"_s);
    bar.AddChoice(u"Anzahl"_s, pictureCount_, PictureCountWidth);
    for (const Action action : {Action::Crop, Action::SaveImageFast, Action::PrintImage}) {
        bar.AddAction(actions_[action], Caption::Shown);
    }
    bar.AddSeparator();
    AddActions(bar, {Action::Undo, Action::Gradation, Action::Schwarzweiss, Action::RotateLeft,
                     Action::RotateRight, Action::RotateDlg});
    bar.AddAction(actions_[Action::SetWhitePoint], Caption::Shown);
    AddActions(bar, {Action::ColorConfig, Action::Beauty});
    bar.AddSeparator();
    AddActions(bar, {Action::ZoomFit, Action::ZoomFull, Action::ShowLayer, Action::AlignToFace});
    bar.AddSeparator();
    AddActions(bar, {Action::About});
}

void TmainFm::AddActions(controls::CommandBar& bar, std::initializer_list<Action> actions) {
    for (const Action action : actions) {
        bar.AddAction(actions_[action]);
    }
}

void TmainFm::BuildViewPanel() {
    auto* panel = new QWidget(this);
    panel->setObjectName(u"ViewPanel"_s);
    view_ = new imaging::view::ImageView(session_.Image(), panel);
    view_->setObjectName(u"View"_s);
    view_->hide();
    emptyState_ = BuildEmptyState();

    auto* layout = new QVBoxLayout(panel);
    layout->setContentsMargins({});
    layout->setSpacing(0);
    layout->addWidget(emptyState_, 1);
    layout->addWidget(view_, 1);
    faceLine_ = new FaceLine;
    faceLine_->hide();
    layout->addWidget(faceLine_);
    layout->addWidget(BuildSheetLine());
    photoStrip_ = new controls::PhotoStrip(u"Neue Fotos im beobachteten Ordner"_s);
    photoStrip_->setObjectName(u"PhotoStrip"_s);
    layout->addWidget(photoStrip_);

    BuildSidePanel();
    auto* centre = new QWidget(this);
    auto* row = new QHBoxLayout(centre);
    row->setContentsMargins({});
    row->setSpacing(0);
    row->addWidget(panel, 1);
    row->addWidget(sidePanel_);
    setCentralWidget(centre);
    for (const Action action : {Action::ShowCheck, Action::ShowSheet, Action::AddToSheet}) {
        addAction(actions_[action]);
    }
    TakeDrops(*panel);
}

void TmainFm::TakeDrops(QWidget& panel) {
    auto* drop = new controls::FileDropTarget(&panel);
    // What another program drops also arrives while an action waits for the print service.
    connect(drop, &controls::FileDropTarget::FilesDropped, this, [this](const QStringList& paths) {
        if (IsAtRest()) {
            OpenDroppedFiles(paths);
        }
    });
    connect(drop, &controls::FileDropTarget::PictureDropped, this, [this](const QByteArray& file) {
        if (IsAtRest()) {
            openActions_->OpenPicture(file, u"Bild"_s);
        }
    });
}

void TmainFm::BuildSidePanel() {
    sidePanel_ = new dialogs::SidePanel;
    checkSection_ = new dialogs::CheckSection;
    sidePanel_->AddSection(checkSection_);
    sheetSection_ = new dialogs::SheetSection;
    sidePanel_->AddSection(sheetSection_);
    traySection_ = new dialogs::TraySection;
    sidePanel_->AddSection(traySection_);
    // Not the link of the status bar, which is next.
    connect(sidePanel_, &dialogs::SidePanel::FocusLeft, view_, [this] {
        (view_->isVisible() ? static_cast<QWidget*>(view_) : emptyStateButton_)->setFocus();
    });
}

/// What can be made beside the prints, under a sheet.
QWidget* TmainFm::BuildSheetLine() {
    QAction* action = actions_[Action::UploadFile];
    auto* button = new QPushButton(action->icon(), action->text());
    button->setObjectName(u"UploadFileButton"_s);
    button->setToolTip(action->toolTip());
    connect(button, &QPushButton::clicked, action, &QAction::trigger);
    sheetLine_ = new QWidget;
    sheetLine_->setObjectName(u"SheetLine"_s);
    sheetLine_->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    auto* row = new QHBoxLayout(sheetLine_);
    row->setContentsMargins(8, 4, 8, 4);
    row->addStretch();
    row->addWidget(button);
    sheetLine_->hide();
    return sheetLine_;
}

QWidget* TmainFm::BuildEmptyState() {
    auto* empty = new QWidget;
    empty->setObjectName(u"EmptyState"_s);
    constexpr int SymbolSide = 64;
    auto* symbol = new controls::IconLabel(controls::Icon(u"open"_s), SymbolSide, empty);
    auto* hint = new QLabel(u"Ziehen Sie ein Foto hierher oder öffnen Sie eines."_s, empty);
    auto* open = new QPushButton(actions_[Action::Open]->icon(), u"Bild öffnen"_s, empty);
    open->setObjectName(u"EmptyStateOpenButton"_s);
    emptyStateButton_ = open;
    connect(open, &QPushButton::clicked, actions_[Action::Open], &QAction::trigger);

    auto* column = new QVBoxLayout(empty);
    column->setSpacing(16);
    column->addStretch(2);
    column->addWidget(symbol, 0, Qt::AlignHCenter);
    column->addWidget(hint, 0, Qt::AlignHCenter);
    column->addWidget(open, 0, Qt::AlignHCenter);
    column->addStretch(3);
    recentStrip_ = new controls::PhotoStrip(u"Zuletzt geöffnete Fotos"_s);
    recentStrip_->setObjectName(u"RecentStrip"_s);
    column->addWidget(recentStrip_);
    return new dialogs::ScrolledPage(empty);  // a small screen has no room for the strip
}

void TmainFm::BuildStatusBar() {
    statusPanels_ = new controls::StatusPanels(this);
    statusPanels_->setObjectName(u"StatusBar"_s);
    statusPanels_->SetCaption(u"Datei"_s, 40);
    statusPanels_->SetLink(core::MakerLine.toString(), 150);
    templateName_ = new controls::ElidedLabel(statusPanels_);
    templateName_->setObjectName(u"TemplateName"_s);
    templateName_->setToolTip(u"Schablone"_s);
    statusPanels_->addWidget(templateName_);
    setStatusBar(statusPanels_);
    connect(statusPanels_, &controls::StatusPanels::LinkClicked, this,
            &TmainFm::StatusBarPanel2Click);
}

void TmainFm::SetScreenTips() {
    using controls::SetScreenTip;
    SetScreenTip(pictureCount_, u"Bildanzahl"_s,
                 u"Wählen Sie hier die Anzahl der gewünschten Passbilder"_s);
    SetScreenTip(actions_[Action::Crop], u"Passbilder erstellen"_s,
                 u"Nach dem Sie ein Bild geöffnet haben, und die Schablone positioniert wurde, "
                 u"können Sie hier die gewünschte Anzahl Passbilder erstellen."_s);
    SetScreenTip(actions_[Action::PrintImage], u"Drucken"_s, u"Passbild drucken"_s);
    SetScreenTip(actions_[Action::PrinterProfilDlg], u"Druckprofil"_s,
                 u"Speichern Sie individuelle Drucker Einstellungen als Profil"_s);
    SetScreenTip(actions_[Action::Open], u"Bild öffnen"_s, u"Passbild öffnen"_s);
    SetScreenTip(actions_[Action::Beauty], u"Retusche"_s,
                 u"Mit gedrückter Shifttaste werden Pixel aufgenommen und ohne gedrückte "
                 u"Shifttaste kopiert."_s);
    SetScreenTip(actions_[Action::SaveImageFast], u"Speichern"_s,
                 u"Die Bildanzahl muss 1 x 1 betragen.\n"
                 u"Geben Sie den Dateinamen und das Ziel in den Einstellungen vor."_s);
}

}  // namespace kadrona::app
