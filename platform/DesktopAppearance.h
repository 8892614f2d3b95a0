#pragma once

#include <QObject>
#include <optional>

namespace kadrona::platform {

/// Whether the desktop's user wants dark windows; nothing where the desktop does not say or does
/// not answer within a fifth of a second.
///
/// Asked is "color-scheme" of the desktop portal's settings
/// (https://flatpak.github.io/xdg-desktop-portal/docs/doc-org.freedesktop.portal.Settings.html),
/// which GNOME, KDE and others answer alike.
std::optional<bool> DesktopPrefersDark();

/// Tells when that changes.
class DesktopAppearanceWatch : public QObject {
    Q_OBJECT

 public:
    DesktopAppearanceWatch();

 Q_SIGNALS:
    void Changed();

 private Q_SLOTS:
    void SettingChanged(const QString& group, const QString& name);
};

}  // namespace kadrona::platform
