#include "app/AppearanceActions.h"

#include <QActionGroup>
#include <QApplication>
#include <QMenu>
#include <array>

#include "app/face/FaceLine.h"
#include "controls/messages/ActionGuard.h"
#include "controls/theme/Theme.h"
#include "imaging/view/ImageView.h"
#include "platform/Error.h"
#include "platform/UserRegistry.h"

using namespace Qt::StringLiterals;

namespace kadrona::app {

namespace {

const QString ChoiceValue = u"Appearance"_s;

/// As they are stored.
enum AppearanceChoice : int { AsDesktop, AlwaysLight, AlwaysDark };

AppearanceChoice ChosenAppearance() {
    try {
        const int value = platform::ReadRegistryInteger(ChoiceValue);
        return value == AlwaysLight || value == AlwaysDark ? static_cast<AppearanceChoice>(value)
                                                           : AsDesktop;
    } catch (const platform::Error&) {
        return AsDesktop;
    }
}

bool DesktopIsDark() {
    // Before the program's own colours take their place.
    static const bool hasDarkColours =
        QApplication::palette().color(QPalette::Window).lightness() < 128;
    return platform::DesktopPrefersDark().value_or(hasDarkColours);
}

}  // namespace

void ApplyChosenAppearance() {
    const bool desktopIsDark = DesktopIsDark();
    const AppearanceChoice choice = ChosenAppearance();
    const bool dark = choice == AlwaysDark || (choice == AsDesktop && desktopIsDark);
    controls::ApplyTheme(*qApp, dark ? controls::Appearance::Dark : controls::Appearance::Light);
    QPalette view = QApplication::palette();
    view.setColor(QPalette::Base, controls::Colors().view);
    for (const QMetaObject& shown :
         {imaging::view::ImageView::staticMetaObject, FaceLine::staticMetaObject}) {
        QApplication::setPalette(view, shown.className());
    }
}

AppearanceActions::AppearanceActions(QMenu& menu) {
    auto* group = new QActionGroup(&menu);
    struct Row {
        AppearanceChoice choice;
        QString name;
        QString text;
    };
    const std::array rows{
        Row{AsDesktop, u"acAppearanceDesktop"_s, u"Wie die &Arbeitsumgebung"_s},
        Row{AlwaysLight, u"acAppearanceLight"_s, u"&Hell"_s},
        Row{AlwaysDark, u"acAppearanceDark"_s, u"&Dunkel"_s},
    };
    const AppearanceChoice chosen = ChosenAppearance();
    for (const Row& row : rows) {
        QAction* action = menu.addAction(row.text);
        action->setObjectName(row.name);
        action->setCheckable(true);
        action->setChecked(row.choice == chosen);
        group->addAction(action);
        connect(action, &QAction::triggered, this, [&menu, choice = row.choice] {
            controls::Guarded(&menu,
                              [choice] { platform::WriteRegistryInteger(ChoiceValue, choice); });
            ApplyChosenAppearance();
        });
    }
    connect(&desktop_, &platform::DesktopAppearanceWatch::Changed, this, &ApplyChosenAppearance);
}

}  // namespace kadrona::app
