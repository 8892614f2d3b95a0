#include "core/templates/LayoutFile.h"

#include "platform/IniFile.h"
#include "platform/Paths.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

LayoutFile::LayoutFile(const QString& dataFolder) : path_(PathIn(dataFolder)) {}

QString LayoutFile::PathIn(const QString& dataFolder) {
    return platform::JoinPath(dataFolder, u"kdr.ini");
}

QRect LayoutFile::Read(const QString& section) const {
    const platform::IniFile file(path_);
    return {file.ReadInteger(section, u"PosX"_s), file.ReadInteger(section, u"PosY"_s),
            file.ReadInteger(section, u"Width"_s), file.ReadInteger(section, u"Height"_s)};
}

void LayoutFile::Save(const QString& section, const QRect& rectangle) const {
    platform::IniFile::Change(path_, [&](platform::IniFile& file) {
        file.WriteInteger(section, u"PosX"_s, rectangle.x());
        file.WriteInteger(section, u"PosY"_s, rectangle.y());
        file.WriteInteger(section, u"Width"_s, rectangle.width());
        file.WriteInteger(section, u"Height"_s, rectangle.height());
    });
}

}  // namespace kadrona::core
