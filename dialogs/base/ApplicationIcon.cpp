#include "dialogs/base/ApplicationIcon.h"

using namespace Qt::StringLiterals;

// Must stand outside of any namespace.
static void InitializeResources() {
    Q_INIT_RESOURCE(dialogs);
}

namespace kadrona::dialogs {

QIcon ApplicationIcon() {
    InitializeResources();
    return QIcon(u":/kadrona.svg"_s);
}

}  // namespace kadrona::dialogs
