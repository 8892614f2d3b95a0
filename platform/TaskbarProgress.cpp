#include "platform/TaskbarProgress.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QVariantMap>

#include "platform/SessionBus.h"

using namespace Qt::StringLiterals;

namespace kadrona::platform {

void ShowTaskbarProgress(const QString& desktopFile, std::optional<double> share) {
    if (!HasSessionBus()) {
        return;
    }
    QDBusMessage message =
        QDBusMessage::createSignal(u"/com/canonical/unity/launcherentry/1"_s,
                                   u"com.canonical.Unity.LauncherEntry"_s, u"Update"_s);
    message.setArguments({u"application://%1.desktop"_s.arg(desktopFile),
                          QVariantMap{{u"progress"_s, share.value_or(0)},
                                      {u"progress-visible"_s, share.has_value()}}});
    QDBusConnection::sessionBus().send(message);
}

}  // namespace kadrona::platform
