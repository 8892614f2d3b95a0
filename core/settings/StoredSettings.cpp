#include "core/settings/StoredSettings.h"

#include "core/Data.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

StoredSettings::StoredSettings(const QString& profileFile) : file_(profileFile) {}

bool StoredSettings::Checked(const QString& control, bool fallback) const {
    return file_.ReadBoolean(control, u"Checked"_s).value_or(fallback);
}

int StoredSettings::ItemIndex(const QString& control, int fallback) const {
    return file_.ReadInteger(control, u"ItemIndex"_s).value_or(fallback);
}

QString StoredSettings::Text(const QString& control, const QString& fallback) const {
    return file_.ReadText(control, u"Text"_s).value_or(fallback);
}

bool StoredSettings::AutoWhiteBalance() const {
    return Checked(u"AutoWhiteBalance"_s);
}
QString StoredSettings::FileNameEd() const {
    return Text(u"FileNameEd"_s, u"Bildname"_s);
}
int StoredSettings::FileTypCombo() const {
    return ItemIndex(u"FileTypCombo"_s, 0);
}
int StoredSettings::FileVarCombo() const {
    return ItemIndex(u"FileVarCombo"_s, 0);
}
QString StoredSettings::FrameSize() const {
    return Text(u"FrameSize"_s, u"25"_s);
}
bool StoredSettings::ImageAutoSave() const {
    return Checked(u"ImageAutoSave"_s);
}
bool StoredSettings::ImageAutoSave2() const {
    return Checked(u"ImageAutoSave2"_s);
}
int StoredSettings::ImageCount() const {
    return ItemIndex(u"ImageCount"_s, 0);
}
QString StoredSettings::ImageDestinationDir() const {
    return TData::GetArchivPath();
}
QString StoredSettings::ImageSaveDir() const {
    return Text(u"ImageSaveDir"_s);
}
bool StoredSettings::ImgAutoRotate() const {
    return Checked(u"ImgAutoRotate"_s, true);
}
bool StoredSettings::ImgRotateLeft() const {
    return Checked(u"ImgRotateLeft"_s);
}
bool StoredSettings::ImgRotateRight() const {
    return Checked(u"ImgRotateRight"_s);
}
bool StoredSettings::PrintAfterCrop() const {
    return Checked(u"PrintAfterCrop"_s);
}
int StoredSettings::PrintProfileBox() const {
    return ItemIndex(u"PrintProfileBox"_s, -1);
}
bool StoredSettings::RotateBeforeTileImg() const {
    return Checked(u"RotateBeforeTileImg"_s);
}
bool StoredSettings::ScaleImageCk() const {
    return Checked(u"ScaleImageCk"_s);
}
int StoredSettings::SchabloneBox() const {
    return ItemIndex(u"SchabloneBox"_s, -1);
}
bool StoredSettings::ShowBlackWhite() const {
    return Checked(u"ShowBlackWhite"_s);
}
bool StoredSettings::ShowGradation() const {
    return Checked(u"ShowGradation"_s);
}
bool StoredSettings::ShowRotate() const {
    return Checked(u"ShowRotate"_s);
}
bool StoredSettings::WhiteBalancePipette() const {
    return Checked(u"WhiteBalancePipette"_s);
}

}  // namespace kadrona::core
