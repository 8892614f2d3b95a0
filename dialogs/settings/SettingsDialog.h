#pragma once

#include <QDialog>
#include <functional>

#include "controls/messages/ModalResult.h"
#include "core/archive/ArchiveServer.h"
#include "core/settings/Settings.h"
#include "dialogs/settings/ProfilePropertyStore.h"

class QCheckBox;
class QComboBox;
class QLineEdit;
class QListWidget;
class QPushButton;
class QRadioButton;
class QTabWidget;
class QVBoxLayout;

namespace kadrona::controls {
class ClearableComboBox;
class PathEdit;
}  // namespace kadrona::controls

namespace kadrona::core {
class TData;
struct UploadFigures;
}  // namespace kadrona::core

namespace kadrona::dialogs {

class ArchiveServerEdit;
class UploadFiguresEdit;
class PaperFields;

/// "Einstellungen". Its controls are the one live record of the active photo profile: every other
/// part of the program reads a setting from here at the moment of use. Lives from start to end.
class TEinstellungenFm : public QDialog, public core::Settings {
    Q_OBJECT

 public:
    explicit TEinstellungenFm(core::TData& data, QWidget* parent = nullptr);

    /// Called with the index of ImageCount whenever it changes or a profile is activated.
    void SetImageCountHandler(std::function<void(int)> handler) {
        imageCountHandler_ = std::move(handler);
    }

    /// Fills the lists, then binds and restores the start profile.
    void InitPropertys();

    /// Shows the dialog modally with a fresh list of printer profiles; Ok or Cancel.
    controls::ModalResult ShowEx();

    /// Makes a profile the active one; with `storeFirst` the one before is stored.
    void AktivateProfileByName(const QString& name, bool storeFirst);

    /// Fills the box with the printer profiles that there are now. The choice is kept by its text;
    /// where that is gone nothing is chosen.
    void RefreshPrinterProfiles();

    /// Takes the default printer profile and the immediate printing back and stores the settings.
    void ResetPrintDefaults();

    /// Shows and stores own figures for portals.
    void KeepUploadFigures(bool own, const core::UploadFigures& figures);
    /// The choice of what sheets are made on, which others may show as well.
    PaperFields& SheetFields() { return *sheetFields_; }
    /// Stores what the active profile keeps besides its record.
    void StoreAdditions() const { propertyStore_.StoreAdditions(); }

    // core::Settings
    bool Checked(const core::ProfileEntry& entry) const override;
    int ItemIndex(const core::ProfileEntry& entry) const override;
    QString Text(const core::ProfileEntry& entry) const override;
    int Number(const core::ProfileEntry& entry) const override;

 Q_SIGNALS:
    /// A setting that shows or hides actions changed.
    void SettingsChanged();

 protected:
    void showEvent(QShowEvent* event) override;
    void done(int result) override;

 private:
    // Construction (SettingsDialog_Layout.cpp)
    void BuildControls();
    QWidget* BuildProfilePanel();
    void ShowAllTabs();
    void MakeGeneralControls();
    QVBoxLayout* AddPage(const QString& title);
    void FillGeneralPage(QVBoxLayout& layout);
    void FillOptionsPage(QVBoxLayout& layout);
    static void FillCheckPage(QVBoxLayout& layout);
    void FillFilesPage(QVBoxLayout& layout);
    void FillPropertyStore();

    // Behaviour (SettingsDialog.cpp)
    void ConnectControls();
    void Bind(const QString& name);
    void ShowTodaysLists();
    void ActivateSelected(bool storeFirst);
    void FormShow();
    void FormClose();
    void ProfileListBoxClick();
    void btnNewClick();
    void btnDeleteClick();
    void ImageAutoSaveClick();
    void ImageAutoSave2Click();
    void ImageCountPropertiesChange();
    void FolderButtonClick(controls::PathEdit& field);
    void WhiteBalancePipettePropertiesChange();
    void UpdateDeleteButton();
    void SelectActiveProfile();
    void SelectProfile(int row);
    QString SelectedProfile() const;
    void TakeOverFrameSize();
    void TakeOverServer();

    core::TData& data_;
    ProfilePropertyStore propertyStore_;
    /// The name of the profile that the store is bound to.
    QString activeProfile_;
    std::function<void(int)> imageCountHandler_;

    QTabWidget* pages_;
    UploadFiguresEdit* uploadFigures_;
    controls::PathEdit* watchedFolder_;
    PaperFields* sheetFields_;
    QListWidget* profileListBox_;
    QPushButton* btnNew_;
    QPushButton* btnDelete_;
    controls::PathEdit* imageDestinationDir_;
    /// Of all profiles, as the user's values have them.
    struct {
        QString archive;
        QString watched;
    } storedFolders_;
    /// Of all profiles, too.
    ArchiveServerEdit* archiveServer_;
    core::ArchiveServer storedServer_;
    controls::PathEdit* imageSaveDir_;
    QCheckBox* imageAutoSave_;
    QCheckBox* imageAutoSave2_;
    QLineEdit* fileNameEd_;
    QComboBox* fileVarCombo_;
    QComboBox* fileTypCombo_;
    QCheckBox* scaleImageCk_;
    controls::ClearableComboBox* schabloneBox_;
    QComboBox* imageCount_;
    controls::ClearableComboBox* printProfileBox_;
    QLineEdit* frameSize_;
    QCheckBox* printAfterCrop_;
    QCheckBox* rotateBeforeTileImg_;
    QCheckBox* autoWhiteBalance_;
    QCheckBox* showBlackWhite_;
    QCheckBox* showGradation_;
    QCheckBox* showRotate_;
    QCheckBox* whiteBalancePipette_;
    QRadioButton* imgAutoRotate_;
    QRadioButton* imgRotateRight_;
    QRadioButton* imgRotateLeft_;
};

}  // namespace kadrona::dialogs
