#pragma once

#include <QLatin1StringView>
#include <algorithm>
#include <array>
#include <string_view>

namespace kadrona::core {

/// A stored property of one control of the settings dialog.
enum class ProfileProperty {
    Checked,    ///< boolean "Checked"
    Text,       ///< text "Text"
    ItemIndex,  ///< integer "ItemIndex"; -1 none
    List,       ///< "ItemIndex", the list "Properties.Items" and "Text" together
    Number,     ///< integer "Value", in the smallest step that the control takes
};

/// One setting: the control that shows it, which is its name, what is stored of it, and its value
/// while nothing is stored.
struct ProfileEntry {
    QLatin1StringView control;
    ProfileProperty property;
    bool checked = false;
    int itemIndex = -1;
    QLatin1StringView text = {};
    int number = 0;

    static constexpr ProfileEntry Switch(const char* control, bool checked = false) {
        return {QLatin1StringView(control), ProfileProperty::Checked, checked};
    }
    static constexpr ProfileEntry Field(const char* control, const char* text = "") {
        return {QLatin1StringView(control), ProfileProperty::Text, false, -1,
                QLatin1StringView(text)};
    }
    static constexpr ProfileEntry Choice(const char* control, int itemIndex) {
        return {QLatin1StringView(control), ProfileProperty::ItemIndex, false, itemIndex};
    }
    /// Nothing is chosen at first.
    static constexpr ProfileEntry List(const char* control) {
        return {QLatin1StringView(control), ProfileProperty::List};
    }
    static constexpr ProfileEntry Number(const char* control, int number) {
        return {QLatin1StringView(control), ProfileProperty::Number, false, -1, {}, number};
    }
};

/// The complete photo profile: the 21 controls of the settings dialog that a profile keeps, with
/// what is kept of each.
inline constexpr std::array ProfileRecord{
    ProfileEntry::Switch("AutoWhiteBalance"),    ProfileEntry::Field("FileNameEd", "Bildname"),
    ProfileEntry::Choice("FileTypCombo", 0),     ProfileEntry::Choice("FileVarCombo", 0),
    ProfileEntry::Field("FrameSize", "25"),      ProfileEntry::Switch("ImageAutoSave"),
    ProfileEntry::Switch("ImageAutoSave2"),      ProfileEntry::Choice("ImageCount", 0),
    ProfileEntry::Field("ImageSaveDir"),         ProfileEntry::Switch("ImgAutoRotate", true),
    ProfileEntry::Switch("ImgRotateLeft"),       ProfileEntry::Switch("ImgRotateRight"),
    ProfileEntry::Switch("PrintAfterCrop"),      ProfileEntry::List("PrintProfileBox"),
    ProfileEntry::Switch("RotateBeforeTileImg"), ProfileEntry::Switch("ScaleImageCk"),
    ProfileEntry::List("SchabloneBox"),          ProfileEntry::Switch("ShowBlackWhite"),
    ProfileEntry::Switch("ShowGradation"),       ProfileEntry::Switch("ShowRotate"),
    ProfileEntry::Switch("WhiteBalancePipette"),
};

/// What a profile keeps besides its record: the record is what other programs and older versions
/// read, so its file stays as it is and these go into a file of their own (AdditionsFile). A
/// profile without one has the values given here.
inline constexpr std::array ProfileAdditions{
    ProfileEntry::Choice("AlignToFace", 1),
    ProfileEntry::Switch("AskBeforeCut", true),
    ProfileEntry::Switch("KeepOriginals"),
    ProfileEntry::Switch("OpenNewestPhoto"),
    ProfileEntry::Switch("TagsInSavedFiles", true),
    ProfileEntry::Switch("TagsInUploadFiles"),
    ProfileEntry::Switch("UploadOwnFigures"),
    ProfileEntry::Number("UploadWidthFrom", 0),
    ProfileEntry::Number("UploadWidthTo", 0),
    ProfileEntry::Number("UploadHeightFrom", 0),
    ProfileEntry::Number("UploadHeightTo", 0),
    ProfileEntry::Number("UploadKilobytesFrom", 0),
    ProfileEntry::Number("UploadKilobytesTo", 0),
    // What sheets are made on. Lengths are tenths of a millimetre.
    ProfileEntry::Choice("SheetPaper", 0),
    ProfileEntry::Number("SheetPaperWidth", 1000),
    ProfileEntry::Number("SheetPaperHeight", 1500),
    ProfileEntry::Switch("SheetFill"),
    ProfileEntry::Number("SheetGap", 20),
    ProfileEntry::Number("SheetEdge", 30),
    ProfileEntry::Choice("SheetMarks", 0),
    ProfileEntry::Switch("SheetText"),
    ProfileEntry::Switch("GridGapInMillimetres"),
    ProfileEntry::Number("GridGap", 20),
};

/// The archive's folder stands among the settings, but no profile keeps it: it is one for the user.
inline constexpr ProfileEntry ArchiveFolderEntry = ProfileEntry::Field("ImageDestinationDir");

/// Whether a profile keeps the entry in its additions.
constexpr bool IsAddition(const ProfileEntry& entry) {
    return std::ranges::any_of(ProfileAdditions, [&](const ProfileEntry& addition) {
        return addition.control == entry.control;
    });
}

/// The entry of a control; one that no profile keeps does not compile.
consteval const ProfileEntry& EntryOf(std::string_view control) {
    const auto isOf = [&](const ProfileEntry& entry) {
        return std::string_view(entry.control.data(), size_t(entry.control.size())) == control;
    };
    if (const auto* found = std::ranges::find_if(ProfileRecord, isOf);
        found != ProfileRecord.end()) {
        return *found;
    }
    if (const auto* found = std::ranges::find_if(ProfileAdditions, isOf);
        found != ProfileAdditions.end()) {
        return *found;
    }
    throw "no such setting";
}

}  // namespace kadrona::core
