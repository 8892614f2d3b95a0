#include "controls/theme/Icons.h"

#include <QLatin1StringView>
#include <array>

using namespace Qt::StringLiterals;

namespace kadrona::controls {
namespace {

struct IconEntry {
    const char* name;
    const char* breezeName;  // null: the theme has no picture that says the same
};

// Each name has a drawing of its own in assets/icons, in the measure of the Breeze theme: lines of
// one pixel on a grid of 22.
constexpr std::array Icons{
    IconEntry{"about", "help-about"},
    IconEntry{"add", "list-add"},
    IconEntry{"archive", nullptr},
    IconEntry{"black-white", nullptr},
    IconEntry{"clear", nullptr},
    IconEntry{"colors", "adjustrgb"},
    IconEntry{"create-photos", nullptr},
    IconEntry{"delete", "edit-delete"},
    IconEntry{"edit", "document-edit"},
    IconEntry{"folder", "document-open-folder"},
    IconEntry{"gradation", nullptr},
    IconEntry{"menu", "application-menu"},
    IconEntry{"open", "document-open-folder"},
    IconEntry{"open-with-profile", nullptr},
    IconEntry{"print", "document-print"},
    IconEntry{"printer-profiles", nullptr},
    IconEntry{"printer-setup", nullptr},
    IconEntry{"quit", nullptr},
    IconEntry{"retouch", nullptr},
    IconEntry{"rotate-free", nullptr},
    IconEntry{"rotate-left", nullptr},
    IconEntry{"rotate-right", nullptr},
    IconEntry{"save", "document-save"},
    IconEntry{"save-fast", nullptr},
    IconEntry{"search", "edit-find"},
    IconEntry{"settings", "configure"},
    IconEntry{"tags", nullptr},
    IconEntry{"template-hidden", nullptr},
    IconEntry{"template-shown", nullptr},
    IconEntry{"undo", "edit-undo"},
    IconEntry{"white-point", "color-picker"},
    IconEntry{"zoom-fit", "zoom-fit-best"},
    IconEntry{"zoom-full", nullptr},
};

}  // namespace

QIcon Icon(const QString& name) {
    for (const IconEntry& entry : Icons) {
        if (name != QLatin1StringView(entry.name)) {
            continue;
        }
        const QString breezeName = QString::fromLatin1(entry.breezeName);
        // Another theme's picture may differ in weight and meaning from the ones beside it.
        if (!breezeName.isEmpty() && QIcon::themeName() == u"breeze"_s &&
            QIcon::hasThemeIcon(breezeName)) {
            return QIcon::fromTheme(breezeName);
        }
        return QIcon(u":/kadrona/icons/%1.svg"_s.arg(name));
    }
    return QIcon::fromTheme(name);
}

QStringList IconNames() {
    QStringList names;
    for (const IconEntry& entry : Icons) {
        names.append(QString::fromLatin1(entry.name));
    }
    return names;
}

}  // namespace kadrona::controls
