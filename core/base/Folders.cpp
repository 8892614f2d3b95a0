#include "core/base/Folders.h"

#include "platform/Paths.h"

namespace kadrona::core {

using platform::JoinPath;

Folders::Folders(const QString& programFolder, const QString& commonAppData)
    : program(platform::WithoutTrailingSeparator(programFolder)),
      data(JoinPath(platform::WithoutTrailingSeparator(commonAppData), u"Kadrona")),
      templates(platform::TemplateFolder(program)) {
    if (!platform::CreateFolder(data)) {
        data.clear();
    }
    curves = JoinPath(data, u"Curves");
    database = JoinPath(data, u"Database");
}

Folders Folders::OfThisMachine() {
    return {platform::ProgramFolder(), platform::CommonAppDataFolder()};
}

}  // namespace kadrona::core
