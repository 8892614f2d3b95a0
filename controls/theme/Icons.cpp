#include "controls/theme/Icons.h"

#include <QLatin1StringView>
#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace kadrona::controls {
namespace {

// Each is a drawing in assets/icons: lines of one pixel on a grid of 22. The desktop's theme has
// some of them too, but another drawing for each size, so that they would change their look with
// the scale of the screen.
constexpr std::array Names{
    "about",
    "add",
    "align-face",
    "archive",
    "black-white",
    "clear",
    "colors",
    "create-photos",
    "delete",
    "edit",
    "folder",
    "gradation",
    "menu",
    "open",
    "open-with-profile",
    "print",
    "printer-profiles",
    "printer-setup",
    "quit",
    "retouch",
    "rotate-free",
    "rotate-left",
    "rotate-right",
    "save",
    "save-fast",
    "search",
    "settings",
    "tags",
    "template-hidden",
    "template-shown",
    "undo",
    "white-point",
    "zoom-fit",
    "zoom-full",
};

}  // namespace

QIcon Icon(const QString& name) {
    const bool known =
        std::ranges::any_of(Names, [&](const char* own) { return name == QLatin1StringView(own); });
    return known ? QIcon(u":/kadrona/icons/%1.svg"_s.arg(name)) : QIcon();
}

QStringList IconNames() {
    QStringList names;
    for (const char* name : Names) {
        names.append(QString::fromLatin1(name));
    }
    return names;
}

}  // namespace kadrona::controls
