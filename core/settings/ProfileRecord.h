#pragma once

#include <QLatin1StringView>
#include <array>
#include <string_view>

namespace kadrona::core {

/// A stored property of one control of the settings dialog.
enum class ProfileProperty {
    Checked,    ///< boolean "Checked"
    Text,       ///< text "Text"
    ItemIndex,  ///< integer "ItemIndex"; -1 none
    List,       ///< "ItemIndex", the list "Properties.Items" and "Text" together
};

/// One setting: the control that shows it, which is its name, what is stored of it, and its value
/// while nothing is stored.
struct ProfileEntry {
    QLatin1StringView control;
    ProfileProperty property;
    bool checked = false;
    int itemIndex = -1;
    QLatin1StringView text = {};

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

/// The archive's folder stands among the settings, but no profile keeps it: it is one for the user.
inline constexpr ProfileEntry ArchiveFolderEntry = ProfileEntry::Field("ImageDestinationDir");

/// The record's entry of a control; one that is not in the record does not compile.
consteval const ProfileEntry& EntryOf(std::string_view control) {
    for (const ProfileEntry& entry : ProfileRecord) {
        if (std::string_view(entry.control.data(), entry.control.size()) == control) {
            return entry;
        }
    }
    throw "no such setting";
}

}  // namespace kadrona::core
