#pragma once

#include <QString>

#include "core/settings/ProfileRecord.h"

namespace kadrona::core {

/// In the order of the choice's items.
enum class FaceAlignment { Never, Propose, Always };

/// The live settings: every getter bears the name of the settings dialog's control that holds the
/// value and reads it at the moment of the call. Nobody keeps a copy.
///
/// What answers (the dialog's controls, a stored profile, a test) implements the four that take an
/// entry of ProfileRecord or ProfileAdditions.
class Settings {
 public:
    virtual ~Settings() = default;

    virtual bool Checked(const ProfileEntry& entry) const = 0;
    /// -1 is no choice.
    virtual int ItemIndex(const ProfileEntry& entry) const = 0;
    /// The text of a field, or of a list's choice.
    virtual QString Text(const ProfileEntry& entry) const = 0;
    /// In the unit that the getter names.
    virtual int Number(const ProfileEntry& entry) const = 0;

    /// Automatic white balance when a photo is opened.
    bool AutoWhiteBalance() const { return Checked(EntryOf("AutoWhiteBalance")); }
    /// Prefix of generated file names.
    QString FileNameEd() const { return Text(EntryOf("FileNameEd")); }
    /// 0 "JPG", 1 "JP2".
    int FileTypCombo() const { return ItemIndex(EntryOf("FileTypCombo")); }
    /// Variable part of generated file names, 0 to 5.
    int FileVarCombo() const { return ItemIndex(EntryOf("FileVarCombo")); }
    /// White gap between the photos of a sheet in pixels, as the text of its field.
    QString FrameSize() const { return Text(EntryOf("FrameSize")); }
    /// File every single photo in the archive.
    bool ImageAutoSave() const { return Checked(EntryOf("ImageAutoSave")); }
    /// Save right after the photos were made.
    bool ImageAutoSave2() const { return Checked(EntryOf("ImageAutoSave2")); }
    /// Index of the sheet layout that new photos start with; -1 none.
    int ImageCount() const { return ItemIndex(EntryOf("ImageCount")); }
    /// Folder of the archive; not part of a profile.
    QString ImageDestinationDir() const { return Text(ArchiveFolderEntry); }
    /// Folder that saved photos go to.
    QString ImageSaveDir() const { return Text(EntryOf("ImageSaveDir")); }
    /// What turns a photo after it was opened: its own orientation, or a fixed quarter turn.
    bool ImgAutoRotate() const { return Checked(EntryOf("ImgAutoRotate")); }
    bool ImgRotateLeft() const { return Checked(EntryOf("ImgRotateLeft")); }
    bool ImgRotateRight() const { return Checked(EntryOf("ImgRotateRight")); }
    /// Print right after the photos were made.
    bool PrintAfterCrop() const { return Checked(EntryOf("PrintAfterCrop")); }
    /// Index of the default printer profile in the list of the day it was stored; -1 none.
    int PrintProfileBox() const { return ItemIndex(EntryOf("PrintProfileBox")); }
    /// Its name.
    QString PrintProfileBoxText() const { return Text(EntryOf("PrintProfileBox")); }
    /// Turn the single photo by 90 degrees before it is repeated.
    bool RotateBeforeTileImg() const { return Checked(EntryOf("RotateBeforeTileImg")); }
    /// Scale quickly saved photos to 413 by 531 pixels.
    bool ScaleImageCk() const { return Checked(EntryOf("ScaleImageCk")); }
    /// Index of the default template in the list of the day it was stored; -1 none.
    int SchabloneBox() const { return ItemIndex(EntryOf("SchabloneBox")); }
    /// Its name.
    QString SchabloneBoxText() const { return Text(EntryOf("SchabloneBox")); }
    /// The four that follow switch a tool off when on, whatever their names say.
    bool ShowBlackWhite() const { return Checked(EntryOf("ShowBlackWhite")); }
    bool ShowGradation() const { return Checked(EntryOf("ShowGradation")); }
    bool ShowRotate() const { return Checked(EntryOf("ShowRotate")); }
    bool WhiteBalancePipette() const { return Checked(EntryOf("WhiteBalancePipette")); }

    // Additions
    /// When the template is placed by the photo's face.
    FaceAlignment AlignToFace() const {
        return static_cast<FaceAlignment>(ItemIndex(EntryOf("AlignToFace")));
    }
    /// Ask before photos are made that miss a published rule.
    bool AskBeforeCut() const { return Checked(EntryOf("AskBeforeCut")); }
    /// Keep the photo as it was opened beside the archived one.
    bool KeepOriginals() const { return Checked(EntryOf("KeepOriginals")); }
    /// Open a photo that arrives in the watched folder.
    bool OpenNewestPhoto() const { return Checked(EntryOf("OpenNewestPhoto")); }
    /// Write the archive's tags into files that are saved, and into those for portals.
    bool TagsInSavedFiles() const { return Checked(EntryOf("TagsInSavedFiles")); }
    bool TagsInUploadFiles() const { return Checked(EntryOf("TagsInUploadFiles")); }
    /// Make files for portals by the figures below and not by the template's. Pixels and kilobytes;
    /// 0 is no limit.
    bool UploadOwnFigures() const { return Checked(EntryOf("UploadOwnFigures")); }
    int UploadWidthFrom() const { return Number(EntryOf("UploadWidthFrom")); }
    int UploadWidthTo() const { return Number(EntryOf("UploadWidthTo")); }
    int UploadHeightFrom() const { return Number(EntryOf("UploadHeightFrom")); }
    int UploadHeightTo() const { return Number(EntryOf("UploadHeightTo")); }
    int UploadKilobytesFrom() const { return Number(EntryOf("UploadKilobytesFrom")); }
    int UploadKilobytesTo() const { return Number(EntryOf("UploadKilobytesTo")); }
    /// The paper of sheets: 0 none, then the papers that have a name, then one of the own size.
    int SheetPaper() const { return ItemIndex(EntryOf("SheetPaper")); }
    /// The own size and what follows in tenths of a millimetre.
    int SheetPaperWidth() const { return Number(EntryOf("SheetPaperWidth")); }
    int SheetPaperHeight() const { return Number(EntryOf("SheetPaperHeight")); }
    /// As many photos as the paper takes.
    bool SheetFill() const { return Checked(EntryOf("SheetFill")); }
    int SheetGap() const { return Number(EntryOf("SheetGap")); }
    int SheetEdge() const { return Number(EntryOf("SheetEdge")); }
    /// Index of the kinds of cutting marks.
    int SheetMarks() const { return ItemIndex(EntryOf("SheetMarks")); }
    /// A line of text in the free edge.
    bool SheetText() const { return Checked(EntryOf("SheetText")); }
    /// The gap of the bare grid is GridGap, in place of FrameSize.
    bool GridGapInMillimetres() const { return Checked(EntryOf("GridGapInMillimetres")); }
    int GridGap() const { return Number(EntryOf("GridGap")); }
};

/// The gap between photos in pixels: the decimal value of the FrameSize text. Throws
/// platform::Error where the text is no whole number.
int FrameSizeOf(const Settings& settings);

}  // namespace kadrona::core
