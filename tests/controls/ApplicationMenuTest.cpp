#include "controls/commands/ApplicationMenu.h"
#include "controls/commands/CommandArea.h"
#include "tests/support/Windows.h"

using namespace Qt::StringLiterals;

namespace kadrona::controls {
namespace {

class ApplicationMenuTest : public ::testing::Test {
 protected:
    ApplicationMenuTest() {
        for (QAction* action : {&open_, &profile_, &quit_, &settings_}) {
            QObject::connect(action, &QAction::triggered, [this, action] {
                EXPECT_FALSE(Menu().isVisible()) << "an action may open a dialog";
                triggered_ += action->objectName();
            });
        }
        area_.Application().AddAction(&open_);
        area_.Application().AddAction(&profile_);
        Menu().AddSeparator();
        area_.Application().AddAction(&quit_);
        Menu().SetSidePane(u"KDR Prof"_s);
        Menu().SetFootAction(&settings_);
        area_.show();
        area_.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&area_));
    }

    ApplicationMenu& Menu() { return area_.Application().Menu(); }
    QString Focused() { return Menu().focusWidget()->objectName(); }
    void Press(Qt::Key key) { QTest::keyClick(Menu().focusWidget(), key); }

    struct NamedAction : QAction {
        NamedAction(const QString& name, const QString& text) : QAction(text) {
            setObjectName(name);
        }
    };
    NamedAction open_{u"acOpen"_s, u"&Öffnen"_s};
    NamedAction profile_{u"acOpenWithProfile"_s, u"Mit Einstellungen öffnen"_s};
    NamedAction quit_{u"acClose"_s, u"Beenden"_s};
    NamedAction settings_{u"acShowConfig"_s, u"Einstellungen"_s};
    CommandArea area_{u"Hauptmenu"_s};
    QStringList triggered_;
};

TEST_F(ApplicationMenuTest, KeysOpenItAndEscapeClosesIt) {
    for (const auto& [key, modifier] :
         {std::pair(Qt::Key_H, Qt::AltModifier), std::pair(Qt::Key_F10, Qt::NoModifier)}) {
        QTest::keyClick(&area_, key, modifier);
        EXPECT_TRUE(Menu().isVisible());
        Press(Qt::Key_Escape);
        EXPECT_FALSE(Menu().isVisible());
    }
    EXPECT_TRUE(triggered_.isEmpty());
}

TEST_F(ApplicationMenuTest, ArrowsGoRoundWhatCanBeUsed) {
    profile_.setEnabled(false);
    quit_.setVisible(false);
    area_.Application().OpenMenu();
    const QString first = u"acOpenMenuItem"_s;
    const QString last = u"acShowConfigFootButton"_s;
    EXPECT_EQ(Focused(), first);
    for (const auto& [key, reached] :
         {std::pair(Qt::Key_Down, last), std::pair(Qt::Key_Down, first),
          std::pair(Qt::Key_Up, last), std::pair(Qt::Key_Home, first),
          std::pair(Qt::Key_B, first)}) {
        Press(key);
        EXPECT_EQ(Focused(), reached);
    }
    Menu().hide();
}

TEST_F(ApplicationMenuTest, EnterSpaceAndClickTrigger) {
    const auto open = [this] { area_.Application().OpenMenu(); };
    open();
    Press(Qt::Key_Return);
    open();
    Press(Qt::Key_B);
    Press(Qt::Key_Space);
    open();
    Menu().findChild<QPushButton*>(u"acShowConfigFootButton"_s)->click();
    open();
    QTest::mouseClick(Menu().findChild<QWidget*>(u"acOpenWithProfileMenuItem"_s), Qt::LeftButton);
    open_.setShortcut(QKeySequence(Qt::CTRL | Qt::Key_N));
    QTest::keyClick(&area_, Qt::Key_N, Qt::ControlModifier);
    EXPECT_EQ(triggered_.join(u' '), u"acOpen acClose acShowConfig acOpenWithProfile acOpen"_s);
}

}  // namespace
}  // namespace kadrona::controls
