#include "core/settings/AdditionsFile.h"

#include <QFileInfo>

#include "platform/Paths.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

QString AdditionsFile(const QString& settingsFile) {
    if (settingsFile.isEmpty()) {
        return {};
    }
    const QFileInfo file(settingsFile);
    return platform::JoinPath(file.path(), file.completeBaseName() + u".additions"_s);
}

}  // namespace kadrona::core
