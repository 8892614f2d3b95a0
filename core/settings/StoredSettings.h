#pragma once

#include "core/settings/Settings.h"
#include "platform/PropertyFile.h"

namespace kadrona::core {

/// The settings of one stored photo profile, read straight from its settings file, for making
/// sheets without a window. What the file does not hold has the settings dialog's design value.
class StoredSettings : public Settings {
 public:
    /// `profileFile` may be empty or missing: then every setting has its design value. Throws
    /// platform::FileError when an existing file cannot be read.
    explicit StoredSettings(const QString& profileFile);

    bool AutoWhiteBalance() const override;
    QString FileNameEd() const override;
    int FileTypCombo() const override;
    int FileVarCombo() const override;
    QString FrameSize() const override;
    bool ImageAutoSave() const override;
    bool ImageAutoSave2() const override;
    int ImageCount() const override;
    QString ImageDestinationDir() const override;
    QString ImageSaveDir() const override;
    bool ImgAutoRotate() const override;
    bool ImgRotateLeft() const override;
    bool ImgRotateRight() const override;
    bool PrintAfterCrop() const override;
    int PrintProfileBox() const override;
    bool RotateBeforeTileImg() const override;
    bool ScaleImageCk() const override;
    int SchabloneBox() const override;
    bool ShowBlackWhite() const override;
    bool ShowGradation() const override;
    bool ShowRotate() const override;
    bool WhiteBalancePipette() const override;

 private:
    bool Checked(const QString& control, bool fallback = false) const;
    int ItemIndex(const QString& control, int fallback) const;
    QString Text(const QString& control, const QString& fallback = {}) const;

    platform::PropertyFile file_;
};

}  // namespace kadrona::core
