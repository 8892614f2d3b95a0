#include "dialogs/settings/SettingsDialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QDoubleSpinBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QShowEvent>
#include <QSignalBlocker>
#include <QTabWidget>

#include "controls/fields/ClearableComboBox.h"
#include "controls/fields/PathEdit.h"
#include "controls/fields/RememberedChoice.h"
#include "controls/messages/ActionGuard.h"
#include "controls/messages/MessageBoxes.h"
#include "core/Data.h"
#include "core/settings/WatchedFolder.h"
#include "core/sheet/SheetLayout.h"
#include "dialogs/archive/ArchiveTransferDialog.h"
#include "dialogs/base/WindowPlacement.h"
#include "dialogs/settings/ArchiveServerEdit.h"
#include "dialogs/settings/UploadFiguresEdit.h"
#include "platform/FolderProbe.h"
#include "platform/HarmlessText.h"

using namespace Qt::StringLiterals;

namespace kadrona::dialogs {

using platform::Error;

namespace {

/// What the store is bound to while no profile is.
const QString NoFile = u"empty"_s;

/// Upper case letter by letter, as far as the index still finds the name by it: "ß" stays, and so
/// do letters whose upper case belongs to another letter, such as the dotless i.
QString UpperCase(QString text) {
    for (QChar& letter : text) {
        const QChar upper = letter.toUpper();
        letter = upper.toLower() == letter.toLower() ? upper : letter;
    }
    return text;
}

/// A name that could not stand in the index, or would stand there as something else.
bool IsUnfit(const QString& name) {
    return name.contains(u']') || platform::HarmlessLine(name) != name;
}

/// The choice goes on where its text is among the new items.
void Refill(QComboBox& box, const QStringList& items) {
    const int place = box.currentIndex();
    const int kept = place < 0 ? -1 : controls::RememberedChoice(items, box.currentText(), place);
    box.clear();
    box.addItems(items);
    box.setCurrentIndex(kept);
}

void RequireFolder(const QString& path) {
    if (path.isEmpty()) {
        throw Error(u"Bitte geben Sie ein Verzeichnis an!"_s);
    }
    if (platform::LookAtFolder(path) != platform::FolderState::There) {
        throw Error(u"Das Verzeichnis ist ungültig!"_s);
    }
}

}  // namespace

TEinstellungenFm::TEinstellungenFm(core::TData& data, QWidget* parent)
    : QDialog(parent), data_(data) {
    BuildControls();
    FillPropertyStore();
    ConnectControls();
}

void TEinstellungenFm::ConnectControls() {
    const auto guarded = [this](void (TEinstellungenFm::*handler)()) {
        return [this, handler] { controls::Guarded(this, [&] { (this->*handler)(); }); };
    };
    connect(profileListBox_, &QListWidget::currentRowChanged, this,
            guarded(&TEinstellungenFm::ProfileListBoxClick));
    connect(btnNew_, &QPushButton::clicked, this, guarded(&TEinstellungenFm::btnNewClick));
    connect(btnDelete_, &QPushButton::clicked, this, guarded(&TEinstellungenFm::btnDeleteClick));
    connect(imageAutoSave_, &QCheckBox::clicked, this,
            guarded(&TEinstellungenFm::ImageAutoSaveClick));
    connect(imageAutoSave2_, &QCheckBox::clicked, this,
            guarded(&TEinstellungenFm::ImageAutoSave2Click));
    connect(imageCount_, &QComboBox::currentIndexChanged, this,
            &TEinstellungenFm::ImageCountPropertiesChange);
    connect(whiteBalancePipette_, &QCheckBox::toggled, this,
            &TEinstellungenFm::WhiteBalancePipettePropertiesChange);
    for (controls::PathEdit* field : {imageDestinationDir_, imageSaveDir_, watchedFolder_}) {
        connect(field, &controls::PathEdit::BrowseRequested, this,
                [this, field] { FolderButtonClick(*field); });
    }
    connect(archiveServer_, &ArchiveServerEdit::TransferRequested, this, [this] {
        controls::Guarded(
            this, [this] { TransferArchiveTo(archiveServer_->Server().address, data_, this); });
    });
    for (QCheckBox* box :
         {showBlackWhite_, showGradation_, showRotate_, whiteBalancePipette_, printAfterCrop_}) {
        connect(box, &QCheckBox::toggled, this, &TEinstellungenFm::SettingsChanged);
    }
}

void TEinstellungenFm::InitPropertys() {
    frameSize_->setText(QString::number(data_.FrameSize()));
    // First: what follows may fail.
    storedFolders_ = {core::TData::GetArchivPath(), core::WatchedFolder()};
    imageDestinationDir_->setText(storedFolders_.archive);
    watchedFolder_->setText(storedFolders_.watched);
    ShowTodaysLists();
    {
        const QSignalBlocker quiet(profileListBox_);
        profileListBox_->clear();
        profileListBox_->addItems(data_.GetProfileList());
        if (profileListBox_->count() == 0 &&
            data_.SaveNewProfile(core::StandardProfile, propertyStore_)) {
            profileListBox_->addItem(core::StandardProfile);
        }
        profileListBox_->setCurrentRow(0);
    }
    UpdateDeleteButton();
    Bind(core::StandardProfile);
    TakeOverFrameSize();
    storedServer_ = core::StoredArchiveServer();
    archiveServer_->SetServer(storedServer_);
}

controls::ModalResult TEinstellungenFm::ShowEx() {
    RefreshPrinterProfiles();
    ShowAllTabs();
    FitToScreen(*this);
    CentreOnParent(*this);
    const controls::ModalResult result = controls::ShowModal(*this);
    TakeOverFrameSize();
    return result;
}

void TEinstellungenFm::RefreshPrinterProfiles() {
    Refill(*printProfileBox_, data_.GetPrinterProfileList());
}

/// A restored profile brings back the lists of the day it was stored; the dialog shows those of
/// today.
void TEinstellungenFm::ShowTodaysLists() {
    Refill(*schabloneBox_, data_.GetSchablonenList());
    RefreshPrinterProfiles();
}

void TEinstellungenFm::ResetPrintDefaults() {
    RefreshPrinterProfiles();
    printProfileBox_->setCurrentIndex(-1);
    printAfterCrop_->setChecked(false);
    propertyStore_.Store();
}

void TEinstellungenFm::KeepUploadFigures(bool own, const core::UploadFigures& figures) {
    findChild<QCheckBox*>(u"UploadOwnFigures"_s)->setChecked(own);
    uploadFigures_->SetFigures(figures);
    propertyStore_.StoreAdditions();
}

void TEinstellungenFm::AktivateProfileByName(const QString& name, bool storeFirst) {
    if (storeFirst) {
        propertyStore_.Store();
    } else if (data_.ProfileFile(name) != propertyStore_.StorageFile()) {
        // Else the profile would have no values of its own when it is activated again.
        propertyStore_.StoreUnwritten();
    }
    Bind(name);
    TakeOverFrameSize();
    ImageCountPropertiesChange();
}

/// Where the profile cannot be read the one before stays bound: what the controls show is its, and
/// must not be stored as another one's.
void TEinstellungenFm::Bind(const QString& name) {
    const QString before = propertyStore_.StorageFile();
    try {
        data_.LoadProfile(name, propertyStore_);
        propertyStore_.Restore();
    } catch (...) {
        propertyStore_.SetStorageFile(before);
        throw;
    }
    activeProfile_ = name;
}

void TEinstellungenFm::showEvent(QShowEvent* event) {
    if (!event->spontaneous()) {
        controls::Guarded(this, [this] { FormShow(); });
    }
    QDialog::showEvent(event);
}

void TEinstellungenFm::done(int result) {
    controls::Guarded(this, [this] { FormClose(); });
    QDialog::done(result);
}

void TEinstellungenFm::ActivateSelected(bool storeFirst) {
    try {
        AktivateProfileByName(SelectedProfile(), storeFirst);
    } catch (...) {
        SelectActiveProfile();
        throw;
    }
    ShowTodaysLists();
}

void TEinstellungenFm::FormShow() {
    pages_->setCurrentIndex(0);
    profileListBox_->setFocus();
    ActivateSelected(false);
}

/// The folders are kept even where the profile cannot be stored. One that the user left alone is
/// not stored: its field is empty where it could not be read.
void TEinstellungenFm::FormClose() {
    controls::Guarded(this, [this] { propertyStore_.Store(); });
    if (imageDestinationDir_->text() != storedFolders_.archive) {
        core::TData::SetArchivPath(imageDestinationDir_->text());
        storedFolders_.archive = imageDestinationDir_->text();
    }
    if (watchedFolder_->text() != storedFolders_.watched) {
        core::SetWatchedFolder(watchedFolder_->text());
        storedFolders_.watched = watchedFolder_->text();
    }
    TakeOverServer();
}

/// The archive is opened anew only where it is to lie elsewhere.
void TEinstellungenFm::TakeOverServer() {
    const core::ArchiveServer server = archiveServer_->Server();
    if (server == storedServer_) {
        return;
    }
    core::StoreArchiveServer(server);
    const bool elsewhere = server.used || storedServer_.used;
    storedServer_ = server;
    if (elsewhere) {
        data_.OpenDatabase();
    }
}

void TEinstellungenFm::ProfileListBoxClick() {
    UpdateDeleteButton();
    ActivateSelected(true);
}

/// The found place is compared with the first entry, not with "not found": the very name that only
/// the first entry bears gives that profile a new file.
void TEinstellungenFm::btnNewClick() {
    QString typed;
    while (const auto answer = controls::AskForLine(this, u"New Profile"_s, u"Name"_s, typed)) {
        typed = *answer;
        // A name that differs from another one by its blanks alone would look the same.
        const QString name = answer->trimmed();
        if (IsUnfit(name)) {
            controls::ShowInformation(this,
                                      u"Der Name darf weder „]“ noch Steuerzeichen enthalten."_s);
            continue;
        }
        const QString shownName = UpperCase(name);
        const auto found =
            profileListBox_->findItems(shownName, Qt::MatchFixedString);  // whatever its case
        if (!found.isEmpty() &&
            (profileListBox_->row(found.first()) > 0 || name.size() < answer->size())) {
            controls::ShowInformation(this, u"Wählen Sie bitte einen eindeutigen Namen aus"_s);
            continue;
        }
        propertyStore_.StoreUnwritten();
        if (data_.SaveNewProfile(name, propertyStore_)) {
            propertyStore_.Restore();
            activeProfile_ = name;
            const QSignalBlocker quiet(profileListBox_);
            profileListBox_->addItem(shownName);
            SelectProfile(profileListBox_->count() - 1);
        }
        return;
    }
}

void TEinstellungenFm::btnDeleteClick() {
    if (!controls::AskYesNo(this, u"Soll das Einstellungsprofil wirklich gelöscht werden?"_s,
                            controls::Severity::Warning)) {
        return;
    }
    const int row = profileListBox_->currentRow();
    if (row <= 0) {
        return;
    }
    data_.DeleteProfile(SelectedProfile());
    propertyStore_.SetStorageFile(NoFile);
    {
        const QSignalBlocker quiet(profileListBox_);
        delete profileListBox_->takeItem(row);
    }
    SelectProfile(0);
    ActivateSelected(false);
}

void TEinstellungenFm::ImageAutoSaveClick() {
    if (imageAutoSave_->isChecked()) {
        RequireFolder(imageDestinationDir_->text());
    }
}

void TEinstellungenFm::ImageAutoSave2Click() {
    if (!imageAutoSave2_->isChecked()) {
        return;
    }
    RequireFolder(imageSaveDir_->text());
    if (imageCount_->currentIndex() != core::SinglePhotoLayout) {
        throw Error(u"Die Bildanzahl muss 1x1 betragen!"_s);
    }
    if (fileNameEd_->text().isEmpty()) {
        throw Error(u"Geben Sie einen Dateinamen an!"_s);
    }
}

void TEinstellungenFm::ImageCountPropertiesChange() {
    if (imageCountHandler_) {
        imageCountHandler_(imageCount_->currentIndex());
    }
}

void TEinstellungenFm::FolderButtonClick(controls::PathEdit& field) {
    const QString start = QDir(field.text()).exists() ? field.text() : QString();
    if (const auto folder = controls::ChooseFolder(this, start)) {
        field.setText(*folder);
    }
}

/// The pipette stays switched off while the white balance is automatic.
void TEinstellungenFm::WhiteBalancePipettePropertiesChange() {
    if (autoWhiteBalance_->isChecked()) {
        whiteBalancePipette_->setChecked(true);
    }
}

void TEinstellungenFm::UpdateDeleteButton() {
    btnDelete_->setEnabled(profileListBox_->currentRow() >= 1);
}

void TEinstellungenFm::SelectActiveProfile() {
    const auto found = profileListBox_->findItems(activeProfile_, Qt::MatchFixedString);
    if (!found.isEmpty()) {
        SelectProfile(profileListBox_->row(found.first()));
    }
}

/// Selects without activating.
void TEinstellungenFm::SelectProfile(int row) {
    const QSignalBlocker quiet(profileListBox_);
    profileListBox_->setCurrentRow(row);
    UpdateDeleteButton();
}

QString TEinstellungenFm::SelectedProfile() const {
    const QListWidgetItem* item = profileListBox_->currentItem();
    return item != nullptr ? item->text() : core::StandardProfile;
}

void TEinstellungenFm::TakeOverFrameSize() {
    data_.SetFrameSize(core::FrameSizeOf(*this));
}

bool TEinstellungenFm::Checked(const core::ProfileEntry& entry) const {
    return findChild<QAbstractButton*>(entry.control)->isChecked();
}

int TEinstellungenFm::ItemIndex(const core::ProfileEntry& entry) const {
    return findChild<QComboBox*>(entry.control)->currentIndex();
}

QString TEinstellungenFm::Text(const core::ProfileEntry& entry) const {
    if (entry.property == core::ProfileProperty::List) {
        return findChild<QComboBox*>(entry.control)->currentText();
    }
    return findChild<QLineEdit*>(entry.control)->text();
}

int TEinstellungenFm::Number(const core::ProfileEntry& entry) const {
    return controls::StepsOf(*findChild<QDoubleSpinBox*>(entry.control));
}

}  // namespace kadrona::dialogs
