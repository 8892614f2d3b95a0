#include "dialogs/SettingsDialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QScopeGuard>
#include <QShowEvent>
#include <QSignalBlocker>
#include <QTabWidget>

#include "controls/fields/ClearableComboBox.h"
#include "controls/fields/PathEdit.h"
#include "controls/messages/ActionGuard.h"
#include "controls/messages/MessageBoxes.h"
#include "core/Data.h"
#include "core/sheet/SheetLayout.h"

using namespace Qt::StringLiterals;

namespace kadrona::dialogs {

using platform::Error;

namespace {

const QString StandardProfile = u"Standard Profile"_s;

/// Upper case letter by letter: unlike QString::toUpper it keeps "ß", so that the index still finds
/// the name.
QString UpperCase(QString text) {
    for (QChar& letter : text) {
        letter = letter.toUpper();
    }
    return text;
}

void Refill(QComboBox& box, const QStringList& items) {
    box.clear();
    box.addItems(items);
    box.setCurrentIndex(-1);
}

void RequireFolder(const QString& path) {
    if (path.isEmpty()) {
        throw Error(u"Bitte geben Sie ein Verzeichnis an!"_s);
    }
    if (!QDir(path).exists()) {
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
    for (controls::PathEdit* field : {imageDestinationDir_, imageSaveDir_}) {
        connect(field, &controls::PathEdit::BrowseRequested, this,
                [this, field] { FolderButtonClick(*field); });
    }
    for (QCheckBox* box :
         {showBlackWhite_, showGradation_, showRotate_, whiteBalancePipette_, printAfterCrop_}) {
        connect(box, &QCheckBox::toggled, this, &TEinstellungenFm::SettingsChanged);
    }
}

void TEinstellungenFm::InitPropertys() {
    frameSize_->setText(QString::number(data_.FrameSize()));
    Refill(*schabloneBox_, data_.GetSchablonenList());
    Refill(*printProfileBox_, data_.GetPrinterProfileList());
    {
        const QSignalBlocker quiet(profileListBox_);
        profileListBox_->clear();
        profileListBox_->addItems(data_.GetProfileList());
        if (profileListBox_->count() > 0) {
            data_.LoadProfile(StandardProfile, propertyStore_);
        } else if (data_.SaveNewProfile(StandardProfile, propertyStore_)) {
            profileListBox_->addItem(StandardProfile);
        }
        profileListBox_->setCurrentRow(0);
    }
    propertyStore_.Restore();
    imageDestinationDir_->setText(core::TData::GetArchivPath());
    UpdateDeleteButton();
    TakeOverFrameSize();
}

controls::ModalResult TEinstellungenFm::ShowEx() {
    RefreshPrinterProfiles();
    const controls::ModalResult result = controls::ShowModal(*this);
    TakeOverFrameSize();
    return result;
}

void TEinstellungenFm::RefreshPrinterProfiles() {
    const int remembered = printProfileBox_->currentIndex();
    Refill(*printProfileBox_, data_.GetPrinterProfileList());
    if (printProfileBox_->count() > remembered) {
        printProfileBox_->setCurrentIndex(remembered);
    }
}

void TEinstellungenFm::ResetPrintDefaults() {
    Refill(*printProfileBox_, data_.GetPrinterProfileList());
    printAfterCrop_->setChecked(false);
    propertyStore_.Store();
}

void TEinstellungenFm::AktivateProfileByName(const QString& name, bool storeFirst) {
    if (storeFirst) {
        propertyStore_.Store();
    }
    data_.LoadProfile(name, propertyStore_);
    propertyStore_.Restore();
    TakeOverFrameSize();
    ImageCountPropertiesChange();
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

/// A restored profile brings back the printer list of the day it was stored; the dialog shows the
/// one of today.
void TEinstellungenFm::ActivateSelected(bool storeFirst) {
    AktivateProfileByName(SelectedProfile(), storeFirst);
    RefreshPrinterProfiles();
}

void TEinstellungenFm::FormShow() {
    pages_->setCurrentIndex(0);
    ActivateSelected(false);
}

/// The archive folder is kept even where the profile cannot be stored.
void TEinstellungenFm::FormClose() {
    const auto keepArchiveFolder =
        qScopeGuard([this] { core::TData::SetArchivPath(imageDestinationDir_->text()); });
    propertyStore_.Store();
}

void TEinstellungenFm::ProfileListBoxClick() {
    UpdateDeleteButton();
    ActivateSelected(true);
}

/// The found place is compared with the first entry, not with "not found": a name that only the
/// first entry bears gives that profile a new file.
void TEinstellungenFm::btnNewClick() {
    while (const auto name = controls::AskForLine(this, u"New Profile"_s, u"Name"_s)) {
        const QString shownName = UpperCase(*name);
        const auto found =
            profileListBox_->findItems(shownName, Qt::MatchFixedString);  // whatever its case
        if (!found.isEmpty() && profileListBox_->row(found.first()) > 0) {
            controls::ShowInformation(this, u"Wählen Sie bitte einen eindeutigen Namen aus"_s);
            continue;
        }
        if (data_.SaveNewProfile(*name, propertyStore_)) {
            propertyStore_.Restore();
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

/// Selects without activating.
void TEinstellungenFm::SelectProfile(int row) {
    const QSignalBlocker quiet(profileListBox_);
    profileListBox_->setCurrentRow(row);
    UpdateDeleteButton();
}

QString TEinstellungenFm::SelectedProfile() const {
    const QListWidgetItem* item = profileListBox_->currentItem();
    return item != nullptr ? item->text() : StandardProfile;
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

}  // namespace kadrona::dialogs
