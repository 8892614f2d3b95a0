#include "platform/DesktopAppearance.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusVariant>

#include "platform/SessionBus.h"

using namespace Qt::StringLiterals;

namespace kadrona::platform {

namespace {

constexpr QLatin1StringView Service = "org.freedesktop.portal.Desktop"_L1;
constexpr QLatin1StringView Path = "/org/freedesktop/portal/desktop"_L1;
constexpr QLatin1StringView Settings = "org.freedesktop.portal.Settings"_L1;
constexpr QLatin1StringView Group = "org.freedesktop.appearance"_L1;
constexpr QLatin1StringView Name = "color-scheme"_L1;
constexpr int MostMilliseconds = 200;

/// The portal wraps its answer once more for each of its own layers.
QVariant Unwrapped(QVariant value) {
    constexpr int MostLayers = 3;
    for (int i = 0; i < MostLayers && value.canConvert<QDBusVariant>(); ++i) {
        value = value.value<QDBusVariant>().variant();
    }
    return value;
}

}  // namespace

std::optional<bool> DesktopPrefersDark() {
    enum : uint { NoPreference, Dark, Light };
    if (!HasSessionBus()) {
        return std::nullopt;
    }
    QDBusConnection bus = QDBusConnection::sessionBus();
    // Asking for a service that does not run would start it, which takes longer than one waits.
    if (!bus.isConnected() || !bus.interface()->isServiceRegistered(Service)) {
        return std::nullopt;
    }
    QDBusMessage question = QDBusMessage::createMethodCall(Service, Path, Settings, u"Read"_s);
    question.setArguments({QString(Group), QString(Name)});
    const QDBusMessage answer = bus.call(question, QDBus::Block, MostMilliseconds);
    if (answer.type() != QDBusMessage::ReplyMessage || answer.arguments().isEmpty()) {
        return std::nullopt;
    }
    const uint preference = Unwrapped(answer.arguments().constFirst()).toUInt();
    return preference == NoPreference ? std::nullopt : std::optional(preference == Dark);
}

DesktopAppearanceWatch::DesktopAppearanceWatch() {
    if (!HasSessionBus()) {
        return;
    }
    QDBusConnection::sessionBus().connect(Service, Path, Settings, u"SettingChanged"_s, this,
                                          SLOT(SettingChanged(QString, QString)));
}

void DesktopAppearanceWatch::SettingChanged(const QString& group, const QString& name) {
    if (group == Group && name == Name) {
        Q_EMIT Changed();
    }
}

}  // namespace kadrona::platform
