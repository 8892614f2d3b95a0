// The index of the printer profiles.

#include "core/Data.h"
#include "platform/IniFile.h"
#include "platform/Paths.h"

namespace kadrona::core {

QStringList TData::GetPrinterProfileList() const {
    return platform::IniFile(platform::JoinPath(dataFolder_, u"Printerprofiles42.ini")).Sections();
}

}  // namespace kadrona::core
