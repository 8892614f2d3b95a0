#pragma once

#include <QString>

namespace kadrona::core {

/// The live settings: every getter bears the name of the settings dialog's control that holds the
/// value and reads it at the moment of the call. Nobody keeps a copy.
class Settings {
 public:
    virtual ~Settings() = default;

    /// Automatic white balance when a photo is opened.
    virtual bool AutoWhiteBalance() const = 0;
    /// Prefix of generated file names.
    virtual QString FileNameEd() const = 0;
    /// 0 "JPG", 1 "JP2".
    virtual int FileTypCombo() const = 0;
    /// Variable part of generated file names, 0 to 5.
    virtual int FileVarCombo() const = 0;
    /// White gap between the photos of a sheet in pixels, as the text of its field.
    virtual QString FrameSize() const = 0;
    /// File every single photo in the archive.
    virtual bool ImageAutoSave() const = 0;
    /// Save right after the photos were made.
    virtual bool ImageAutoSave2() const = 0;
    /// Index of the sheet layout that new photos start with; -1 none.
    virtual int ImageCount() const = 0;
    /// Folder of the archive; not part of a profile.
    virtual QString ImageDestinationDir() const = 0;
    /// Folder that saved photos go to.
    virtual QString ImageSaveDir() const = 0;
    /// What turns a photo after it was opened: its own orientation, or a fixed quarter turn.
    virtual bool ImgAutoRotate() const = 0;
    virtual bool ImgRotateLeft() const = 0;
    virtual bool ImgRotateRight() const = 0;
    /// Print right after the photos were made.
    virtual bool PrintAfterCrop() const = 0;
    /// Index of the default printer profile; -1 none.
    virtual int PrintProfileBox() const = 0;
    /// Turn the single photo by 90 degrees before it is repeated.
    virtual bool RotateBeforeTileImg() const = 0;
    /// Scale quickly saved photos to 413 by 531 pixels.
    virtual bool ScaleImageCk() const = 0;
    /// Index of the default template; -1 none.
    virtual int SchabloneBox() const = 0;
    /// The four that follow switch a tool off when on, whatever their names say.
    virtual bool ShowBlackWhite() const = 0;
    virtual bool ShowGradation() const = 0;
    virtual bool ShowRotate() const = 0;
    virtual bool WhiteBalancePipette() const = 0;
};

/// The gap between photos in pixels: the decimal value of the FrameSize text. Throws
/// platform::Error where the text is no whole number.
int FrameSizeOf(const Settings& settings);

}  // namespace kadrona::core
