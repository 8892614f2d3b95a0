// The controls of the settings dialog and what a profile keeps of them.

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QRegularExpressionValidator>
#include <QTabBar>
#include <QTabWidget>
#include <QVBoxLayout>

#include "controls/fields/ClearableComboBox.h"
#include "controls/fields/KeptSelection.h"
#include "controls/fields/MissingFolder.h"
#include "controls/fields/PathEdit.h"
#include "controls/fields/WrappingCheckBox.h"
#include "core/settings/ProfileRecord.h"
#include "core/sheet/SheetLayout.h"
#include "dialogs/base/PageKeys.h"
#include "dialogs/base/ScrolledPage.h"
#include "dialogs/base/WindowPlacement.h"
#include "dialogs/settings/ArchiveServerEdit.h"
#include "dialogs/settings/SettingsDialog.h"
#include "dialogs/settings/UploadFiguresEdit.h"
#include "dialogs/side/PaperFields.h"

using namespace Qt::StringLiterals;

namespace kadrona::dialogs {

namespace {

template <typename Control, typename... Arguments>
Control* Named(const QString& name, Arguments... arguments) {
    auto* control = new Control(arguments...);
    control->setObjectName(name);
    return control;
}

QComboBox* ChoiceBox(const QString& name, const QStringList& items) {
    auto* box = Named<QComboBox>(name);
    box->addItems(items);
    return box;
}

/// A label over a field; the label's mnemonic leads to the field.
QVBoxLayout* Captioned(const QString& caption, QWidget* field) {
    auto* label = new QLabel(caption);
    label->setBuddy(field);
    field->setAccessibleName(QString(caption).remove(u'&'));
    auto* column = new QVBoxLayout;
    column->setSpacing(4);
    column->addWidget(label);
    column->addWidget(field);
    return column;
}

QHBoxLayout* Row(std::initializer_list<std::pair<QLayout*, int>> cells) {
    auto* row = new QHBoxLayout;
    row->setSpacing(12);
    for (const auto& [cell, stretch] : cells) {
        row->addLayout(cell, stretch);
    }
    return row;
}

/// Separates the page's groups of settings without a frame around each.
constexpr int GroupSpacing = 8;

}  // namespace

void TEinstellungenFm::BuildControls() {
    setObjectName(u"EinstellungenFm"_s);
    setWindowTitle(u"Einstellungen"_s);
    pages_ = Named<QTabWidget>(u"PageControl"_s);
    pages_->setAccessibleName(u"Seiten der Einstellungen"_s);
    TurnPagesByKeys(*pages_, *this);
    auto* columns = new QHBoxLayout;
    columns->setSpacing(16);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(columns, 1);
    columns->addWidget(BuildProfilePanel());
    columns->addWidget(pages_, 1);
    FillGeneralPage(*AddPage(u"Allgemein"_s));
    FillOptionsPage(*AddPage(u"Optionen"_s));
    FillCheckPage(*AddPage(u"Prüfung"_s));
    FillFilesPage(*AddPage(u"Dateien"_s));
    sheetFields_ = new PaperFields;
    AddPage(u"Blatt"_s)->addWidget(sheetFields_);
    archiveServer_ = new ArchiveServerEdit;
    AddPage(u"Server"_s)->addWidget(archiveServer_);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    buttons->button(QDialogButtonBox::Close)->setText(u"&Schließen"_s);
    buttons->button(QDialogButtonBox::Close)->setObjectName(u"btnClose"_s);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::accept);
    layout->addWidget(buttons);
}

/// The column of a new page. The page stands where it stays before it is filled: wherever a page
/// goes, the style sheet looks at each of its controls anew, which takes a fifth of the start.
QVBoxLayout* TEinstellungenFm::AddPage(const QString& title) {
    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    pages_->addTab(new ScrolledPage(page), title);
    auto* column = new QVBoxLayout;
    layout->addLayout(column);
    layout->addStretch();
    return column;
}

/// On a small screen the list of profiles gives way to the tabs, as far as both have room.
void TEinstellungenFm::ShowAllTabs() {
    ensurePolished();
    pages_->tabBar()->ensurePolished();
    const int tabs = pages_->tabBar()->sizeHint().width();
    pages_->setMinimumWidth(0);
    const int others = minimumSizeHint().width() - pages_->minimumSizeHint().width();
    const int room = WithinScreen(*this, {QWIDGETSIZE_MAX, 0}).width() - others;
    pages_->setMinimumWidth(tabs <= room ? tabs : 0);
}

QWidget* TEinstellungenFm::BuildProfilePanel() {
    auto* heading = new QLabel(u"Profil&e"_s);
    QFont bold = heading->font();
    bold.setBold(true);
    heading->setFont(bold);
    profileListBox_ = Named<QListWidget>(u"ProfileListBox"_s);
    profileListBox_->setAccessibleName(u"Profile"_s);
    profileListBox_->setMinimumWidth(120);
    controls::KeepSelection(*profileListBox_);
    heading->setBuddy(profileListBox_);
    btnNew_ = Named<QPushButton>(u"btnNew"_s, u"&Neu"_s);
    btnDelete_ = Named<QPushButton>(u"btnDelete"_s, u"&Löschen"_s);
    // Enter in a field must not make a profile.
    btnNew_->setAutoDefault(false);
    btnDelete_->setAutoDefault(false);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(btnNew_);
    buttons->addWidget(btnDelete_);

    auto* panel = new QWidget;
    auto* layout = new QVBoxLayout(panel);
    layout->setContentsMargins({});
    layout->addWidget(heading);
    layout->addWidget(profileListBox_, 1);
    layout->addLayout(buttons);
    panel->setMaximumWidth(240);
    return panel;
}

void TEinstellungenFm::MakeGeneralControls() {
    imageDestinationDir_ = Named<controls::PathEdit>(u"ImageDestinationDir"_s);
    imageAutoSave_ = Named<controls::WrappingCheckBox>(u"ImageAutoSave"_s,
                                                       u"&Automatisch im Bildarchiv speichern"_s);
    imageSaveDir_ = Named<controls::PathEdit>(u"ImageSaveDir"_s);
    imageAutoSave2_ =
        Named<controls::WrappingCheckBox>(u"ImageAutoSave2"_s, u"A&utomatisch speichern"_s);
    fileNameEd_ = Named<QLineEdit>(u"FileNameEd"_s);
    fileVarCombo_ =
        ChoiceBox(u"FileVarCombo"_s, {u"LEER"_s, u"DATUM"_s, u"UID"_s, u"Zufall 8 Zeichen"_s,
                                      u"Zufall 6 Zeichen"_s, u"Zufall 4 Zeichen"_s});
    fileTypCombo_ = ChoiceBox(u"FileTypCombo"_s, {u"JPG"_s, u"JP2"_s});
    scaleImageCk_ = Named<controls::WrappingCheckBox>(
        u"ScaleImageCk"_s, u"Bild auf Ausgabegröße der Bundesdruckerei s&kalieren"_s);
    schabloneBox_ = Named<controls::ClearableComboBox>(
        u"SchabloneBox"_s, u"Schablonen, drücken Sie  ENTF um einen Eintrag zu löschen"_s);
    QStringList layouts;
    for (const core::SheetLayout& layout : core::SheetLayouts) {
        layouts.append(layout.name);
    }
    imageCount_ = ChoiceBox(u"ImageCount"_s, layouts);
    printProfileBox_ = Named<controls::ClearableComboBox>(
        u"PrintProfileBox"_s, u"Druckprofile, drücken Sie  ENTF um einen Eintrag zu löschen"_s);
    for (QComboBox* box : {schabloneBox_, printProfileBox_}) {
        // A long name must not make the page wider than a small screen.
        constexpr int LeastLetters = 16;
        box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
        box->setMinimumContentsLength(LeastLetters);
    }
    frameSize_ = Named<QLineEdit>(u"FrameSize"_s);
    frameSize_->setValidator(
        new QRegularExpressionValidator(QRegularExpression(u"\\d+"_s), frameSize_));
    printAfterCrop_ = Named<controls::WrappingCheckBox>(
        u"PrintAfterCrop"_s, u"B&ild sofort Drucken (Nur mit Standard Druckprofil möglich)"_s);
    rotateBeforeTileImg_ = Named<controls::WrappingCheckBox>(
        u"RotateBeforeTileImg"_s,
        u"Bild vor dem Druck 90° dre&hen (Achtung bei 10x15 nur bis max. 6 Bilder)"_s);
    fileNameEd_->setAccessibleName(u"Dateiname"_s);
}

void TEinstellungenFm::FillGeneralPage(QVBoxLayout& layout) {
    MakeGeneralControls();
    auto* nameColumn = new QVBoxLayout;
    nameColumn->addStretch();
    nameColumn->addWidget(fileNameEd_);

    layout.addLayout(Captioned(u"&Bildarchiv Verzeichnis"_s, imageDestinationDir_));
    layout.addWidget(new controls::MissingFolder(*imageDestinationDir_));
    layout.addWidget(imageAutoSave_);
    layout.addWidget(Named<controls::WrappingCheckBox>(
        u"KeepOriginals"_s, u"&Originale mitarchivieren (braucht mehr Platz)"_s));
    layout.addSpacing(GroupSpacing);
    layout.addLayout(Captioned(u"Bild Speichern &Verzeichnis"_s, imageSaveDir_));
    layout.addWidget(
        new controls::MissingFolder(*imageSaveDir_, controls::MissingFolder::Creation::Offered));
    layout.addWidget(imageAutoSave2_);
    layout.addLayout(Row({{nameColumn, 3},
                          {Captioned(u"Va&riable"_s, fileVarCombo_), 2},
                          {Captioned(u"&Format"_s, fileTypCombo_), 1}}));
    layout.addWidget(scaleImageCk_);
    layout.addSpacing(GroupSpacing);
    auto* defaults = new QGridLayout;
    defaults->setHorizontalSpacing(12);
    defaults->setColumnStretch(0, 1);
    defaults->addLayout(Captioned(u"Standard S&chablone"_s, schabloneBox_), 0, 0);
    defaults->addLayout(Captioned(u"Standard Bildan&zahl"_s, imageCount_), 0, 1);
    defaults->addLayout(Captioned(u"Standard &Druckprofil"_s, printProfileBox_), 1, 0);
    defaults->addLayout(Captioned(u"Bildabstand &Pixel"_s, frameSize_), 1, 1);
    layout.addLayout(defaults);
    layout.addWidget(printAfterCrop_);
    layout.addWidget(rotateBeforeTileImg_);
}

void TEinstellungenFm::FillOptionsPage(QVBoxLayout& layout) {
    autoWhiteBalance_ =
        Named<controls::WrappingCheckBox>(u"AutoWhiteBalance"_s, u"&Automatischer Weißabgleich"_s);
    showBlackWhite_ = Named<controls::WrappingCheckBox>(u"ShowBlackWhite"_s,
                                                        u"Schwar&zweiß Funktion deaktivieren"_s);
    showGradation_ = Named<controls::WrappingCheckBox>(u"ShowGradation"_s,
                                                       u"&Gradation Funktion deaktivieren"_s);
    showRotate_ = Named<controls::WrappingCheckBox>(u"ShowRotate"_s,
                                                    u"Schrittweise &Bilddrehung deaktivieren"_s);
    whiteBalancePipette_ = Named<controls::WrappingCheckBox>(
        u"WhiteBalancePipette"_s, u"&Weißabgleich Pipette deaktivieren"_s);
    imgAutoRotate_ = Named<QRadioButton>(u"ImgAutoRotate"_s, u"Bild a&utomatisch drehen"_s);
    imgRotateRight_ = Named<QRadioButton>(u"ImgRotateRight"_s, u"Bild nach &Rechts drehen"_s);
    imgRotateLeft_ = Named<QRadioButton>(u"ImgRotateLeft"_s, u"B&ild nach Links drehen"_s);

    for (QCheckBox* box :
         {autoWhiteBalance_, showBlackWhite_, showGradation_, showRotate_, whiteBalancePipette_}) {
        layout.addWidget(box);
    }
    layout.addSpacing(2 * GroupSpacing);
    layout.addWidget(new QLabel(u"Bilddrehung  nach dem Öffnen"_s));
    for (QRadioButton* button : {imgAutoRotate_, imgRotateRight_, imgRotateLeft_}) {
        layout.addWidget(button);
    }
}

/// What a profile keeps besides its record stands on pages of its own.
void TEinstellungenFm::FillCheckPage(QVBoxLayout& layout) {
    auto* alignToFace = ChoiceBox(u"AlignToFace"_s, {u"nie"_s, u"vorschlagen"_s, u"immer"_s});
    auto* askBeforeCut = Named<controls::WrappingCheckBox>(
        u"AskBeforeCut"_s, u"&Vor dem Zuschneiden fragen, wenn etwas nicht erfüllt ist"_s);

    layout.addLayout(Captioned(u"Schablone am &Gesicht ausrichten"_s, alignToFace));
    layout.addSpacing(GroupSpacing);
    layout.addWidget(askBeforeCut);
}

void TEinstellungenFm::FillFilesPage(QVBoxLayout& layout) {
    auto* own = Named<controls::WrappingCheckBox>(
        u"UploadOwnFigures"_s, u"Datei für Online-Antrag nach eigenen &Werten"_s);
    uploadFigures_ = new UploadFiguresEdit;
    uploadFigures_->setEnabled(own->isChecked());
    connect(own, &QCheckBox::toggled, uploadFigures_, &QWidget::setEnabled);
    watchedFolder_ = Named<controls::PathEdit>(u"WatchedFolder"_s);
    layout.addWidget(Named<controls::WrappingCheckBox>(
        u"TagsInSavedFiles"_s, u"Schlüsselworte des Archivs in gespeicherte Bil&der schreiben"_s));
    layout.addWidget(Named<controls::WrappingCheckBox>(
        u"TagsInUploadFiles"_s,
        u"Schlüsselworte des Archivs in Dateien für Online-&Anträge schreiben"_s));
    layout.addSpacing(2 * GroupSpacing);
    layout.addWidget(own);
    layout.addWidget(uploadFigures_);
    layout.addSpacing(2 * GroupSpacing);
    layout.addLayout(
        Captioned(u"Neue Fotos aus diesem &Ordner zeigen (Karte, Kamera)"_s, watchedFolder_));
    layout.addWidget(new controls::MissingFolder(*watchedFolder_));
    layout.addWidget(
        Named<controls::WrappingCheckBox>(u"OpenNewestPhoto"_s, u"Das neues&te gleich öffnen"_s));
}

void TEinstellungenFm::FillPropertyStore() {
    for (const core::ProfileEntry& entry : core::ProfileRecord) {
        propertyStore_.Add(entry, *findChild<QWidget*>(entry.control));
    }
    for (const core::ProfileEntry& entry : core::ProfileAdditions) {
        propertyStore_.Add(entry, *findChild<QWidget*>(entry.control));
    }
}

}  // namespace kadrona::dialogs
