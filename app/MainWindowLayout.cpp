// What the main window is made of: command area, image view, status bar and their tips.

#include <QComboBox>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QVBoxLayout>

#include "app/MainWindow.h"
#include "controls/commands/ApplicationMenu.h"
#include "controls/commands/CommandArea.h"
#include "controls/commands/ScreenTip.h"
#include "controls/fields/FileDropTarget.h"
#include "controls/fields/StatusPanels.h"
#include "controls/theme/Icons.h"
#include "core/base/Product.h"
#include "core/sheet/SheetLayout.h"
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
    area->Application().AddAction(actions_[u"acOpen"_s]);
    area->Application().AddAction(actions_[u"acOpenWithProfile"_s]);
    menu.AddSeparator();
    area->Application().AddAction(actions_[u"acClose"_s]);
    menu.SetFootAction(actions_[u"acShowConfig"_s]);
    menu.SetSidePane(u"KDR Prof"_s,
                     u"Porträt öffnen, Schablone auf das Gesicht legen, Passbilder erstellen."_s);

    QMenu* file = area->QuickAccess().AddMenu(u"Datei"_s, u"&Datei"_s);
    file->setToolTipsVisible(true);
    for (const QString& name : {u"acOpen"_s, u"acSearchArchiv"_s, u"acSave"_s, u"acPrinSetup"_s,
                                u"acPrinterProfilDlg"_s, u"acShowConfig"_s}) {
        file->addAction(actions_[name]);
    }
    file->addSeparator();
    file->addAction(actions_[u"acClose"_s]);

    BuildEditBar(*area);
    setMenuWidget(area);
}

void TmainFm::BuildEditBar(controls::CommandArea& area) {
    pictureCount_ = new QComboBox;
    pictureCount_->setObjectName(u"Anzahl"_s);
    for (const core::SheetLayout& layout : core::SheetLayouts) {
        pictureCount_->addItem(layout.name);
    }
    controls::CommandBar& bar = area.AddBar(u"Bearbeiten"_s);
    bar.AddChoice(u"Anzahl"_s, pictureCount_, PictureCountWidth);
    for (const QString& name : {u"acCrop"_s, u"acSaveImageFast"_s, u"acPrintImage"_s}) {
        bar.AddAction(actions_[name], Caption::Shown);
    }
    bar.AddSeparator();
    for (const QString& name : {u"acUndo"_s, u"acGradation"_s, u"acSchwarzweiss"_s,
                                u"acRotateLeft"_s, u"acRotateRight"_s, u"acRotateDlg"_s}) {
        bar.AddAction(actions_[name]);
    }
    bar.AddAction(actions_[u"acSetWhitePoint"_s], Caption::Shown);
    bar.AddAction(actions_[u"acColorConfig"_s]);
    bar.AddAction(actions_[u"acBeauty"_s]);
    bar.AddSeparator();
    for (const QString& name : {u"acZoomFit"_s, u"acZoomFull"_s, u"acShowLayer"_s}) {
        bar.AddAction(actions_[name]);
    }
    bar.AddSeparator();
    bar.AddAction(actions_[u"acAbout"_s]);
}

void TmainFm::BuildViewPanel() {
    viewPanel_ = new QWidget(this);
    viewPanel_->setObjectName(u"ViewPanel"_s);
    view_ = new imaging::view::ImageView(image_, viewPanel_);
    view_->setObjectName(u"View"_s);
    view_->installEventFilter(this);
    view_->hide();
    emptyState_ = new QWidget(viewPanel_);
    emptyState_->setObjectName(u"EmptyState"_s);
    auto* symbol = new QLabel(emptyState_);
    symbol->setPixmap(controls::Icon(u"open"_s).pixmap(QSize(64, 64), devicePixelRatioF()));
    auto* hint = new QLabel(u"Ziehen Sie ein Foto hierher oder öffnen Sie eines."_s, emptyState_);
    auto* open = new QPushButton(actions_[u"acOpen"_s]->icon(), u"Bild öffnen"_s, emptyState_);
    open->setObjectName(u"EmptyStateOpenButton"_s);
    connect(open, &QPushButton::clicked, actions_[u"acOpen"_s], &QAction::trigger);

    auto* column = new QVBoxLayout(emptyState_);
    column->setSpacing(16);
    column->addStretch(2);
    column->addWidget(symbol, 0, Qt::AlignHCenter);
    column->addWidget(hint, 0, Qt::AlignHCenter);
    column->addWidget(open, 0, Qt::AlignHCenter);
    column->addStretch(3);

    auto* layout = new QVBoxLayout(viewPanel_);
    layout->setContentsMargins({});
    layout->addWidget(emptyState_);
    layout->addWidget(view_);
    setCentralWidget(viewPanel_);

    connect(view_, &imaging::view::ImageView::LayerChangedByUser, this, &TmainFm::ViewLayerNotify);
    connect(view_, &imaging::view::ImageView::MousePressed, this, &TmainFm::ViewMouseDown);
    auto* drop = new controls::FileDropTarget(viewPanel_);
    connect(drop, &controls::FileDropTarget::FilesDropped, this, &TmainFm::OpenDroppedFiles);
}

void TmainFm::BuildStatusBar() {
    statusPanels_ = new controls::StatusPanels(this);
    statusPanels_->setObjectName(u"StatusBar"_s);
    statusPanels_->SetCaption(u"Datei"_s, 40);
    statusPanels_->SetLink(core::MakerLine.toString(), 150);
    setStatusBar(statusPanels_);
    connect(statusPanels_, &controls::StatusPanels::LinkClicked, this,
            &TmainFm::StatusBarPanel2Click);
}

void TmainFm::SetScreenTips() {
    using controls::SetScreenTip;
    SetScreenTip(pictureCount_, u"Bildanzahl"_s,
                 u"Wählen Sie hier die Anzahl der gewünschten Passbilder"_s);
    SetScreenTip(actions_[u"acCrop"_s], u"Passbilder erstellen"_s,
                 u"Nach dem Sie ein Bild geöffnet haben, und die Schablone positioniert wurde, "
                 u"können Sie hier die gewünschte Anzahl Passbilder erstellen."_s);
    SetScreenTip(actions_[u"acPrintImage"_s], u"Drucken"_s, u"Passbild drucken"_s);
    SetScreenTip(actions_[u"acPrinterProfilDlg"_s], u"Druckprofil"_s,
                 u"Speichern Sie individuelle Drucker Einstellungen als Profil"_s);
    SetScreenTip(actions_[u"acOpen"_s], u"Bild öffnen"_s, u"Passbild öffnen"_s);
    SetScreenTip(actions_[u"acBeauty"_s], u"Retusche"_s,
                 u"Mit gedrückter Shifttaste werden Pixel aufgenommen und ohne gedrückte "
                 u"Shifttaste kopiert."_s);
    SetScreenTip(actions_[u"acSaveImageFast"_s], u"Speichern"_s,
                 u"Die Bildanzahl muss 1 x 1 betragen.\n"
                 u"Geben Sie den Dateinamen und das Ziel in den Einstellungen vor."_s);
}

}  // namespace kadrona::app
