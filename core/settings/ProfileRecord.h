#pragma once

#include <QLatin1StringView>
#include <array>

namespace kadrona::core {

/// A stored property of one control of the settings dialog.
enum class ProfileProperty {
    Checked,    ///< boolean "Checked"
    Text,       ///< text "Text"
    ItemIndex,  ///< integer "ItemIndex"; -1 none
    List,       ///< "ItemIndex", the list "Properties.Items" and "Text" together
};

struct ProfileEntry {
    QLatin1StringView control;
    ProfileProperty property;
};

/// The complete photo profile: the 21 controls of the settings dialog that a profile keeps, with
/// what is kept of each.
inline constexpr std::array ProfileRecord{
    ProfileEntry{QLatin1StringView("AutoWhiteBalance"), ProfileProperty::Checked},
    ProfileEntry{QLatin1StringView("FileNameEd"), ProfileProperty::Text},
    ProfileEntry{QLatin1StringView("FileTypCombo"), ProfileProperty::ItemIndex},
    ProfileEntry{QLatin1StringView("FileVarCombo"), ProfileProperty::ItemIndex},
    ProfileEntry{QLatin1StringView("FrameSize"), ProfileProperty::Text},
    ProfileEntry{QLatin1StringView("ImageAutoSave"), ProfileProperty::Checked},
    ProfileEntry{QLatin1StringView("ImageAutoSave2"), ProfileProperty::Checked},
    ProfileEntry{QLatin1StringView("ImageCount"), ProfileProperty::ItemIndex},
    ProfileEntry{QLatin1StringView("ImageSaveDir"), ProfileProperty::Text},
    ProfileEntry{QLatin1StringView("ImgAutoRotate"), ProfileProperty::Checked},
    ProfileEntry{QLatin1StringView("ImgRotateLeft"), ProfileProperty::Checked},
    ProfileEntry{QLatin1StringView("ImgRotateRight"), ProfileProperty::Checked},
    ProfileEntry{QLatin1StringView("PrintAfterCrop"), ProfileProperty::Checked},
    ProfileEntry{QLatin1StringView("PrintProfileBox"), ProfileProperty::List},
    ProfileEntry{QLatin1StringView("RotateBeforeTileImg"), ProfileProperty::Checked},
    ProfileEntry{QLatin1StringView("ScaleImageCk"), ProfileProperty::Checked},
    ProfileEntry{QLatin1StringView("SchabloneBox"), ProfileProperty::List},
    ProfileEntry{QLatin1StringView("ShowBlackWhite"), ProfileProperty::Checked},
    ProfileEntry{QLatin1StringView("ShowGradation"), ProfileProperty::Checked},
    ProfileEntry{QLatin1StringView("ShowRotate"), ProfileProperty::Checked},
    ProfileEntry{QLatin1StringView("WhiteBalancePipette"), ProfileProperty::Checked},
};

}  // namespace kadrona::core
