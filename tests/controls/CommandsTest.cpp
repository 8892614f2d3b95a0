// The command bar and the application menu.

#include <QMenu>
#include <algorithm>

#include "controls/commands/ApplicationMenu.h"
#include "controls/commands/BarArrangement.h"
#include "controls/commands/CommandArea.h"
#include "controls/commands/CommandBar.h"
#include "controls/commands/LetterMenu.h"
#include "controls/commands/Separator.h"
#include "tests/support/Windows.h"

using namespace Qt::StringLiterals;

namespace kadrona::controls {
namespace {

// "P" pinned, "C" command, "|" separator, lower case: not available. All 10 wide, spacing 2,
// extension 8.
std::string Arranged(const std::string& items, int width) {
    std::vector<BarItem> bar;
    for (const char c : items) {
        const auto kind = c == '|'                 ? BarItem::Kind::Separator
                          : (c == 'P' || c == 'p') ? BarItem::Kind::Pinned
                                                   : BarItem::Kind::Command;
        bar.push_back({kind, 10, c == '|' || (c >= 'A' && c <= 'Z')});
    }
    const BarArrangement arrangement = ArrangeBar(bar, width, 2, 8);
    std::string shown;
    for (std::size_t i = 0; i < items.size(); ++i) {
        shown += arrangement.shown[i] ? items.substr(i, 1) : "";
    }
    return shown + (arrangement.extensionNeeded ? ">" : "");
}

TEST(ArrangeBar, GivesUpCommandsFromTheEndAndNeedlessSeparators) {
    struct Row {
        const char* items;
        int width;
        const char* shown;
    };
    constexpr int Wide = 1000;
    for (const auto& [items, width, shown] :
         {Row{"PCC|C|CC", Wide, "PCC|C|CC"}, Row{"PCC|c|CC", Wide, "PCC|CC"},
          Row{"pc|CC|c|c", Wide, "CC"}, Row{"|C||C|", Wide, "C|C"}, Row{"c|c", Wide, ""},
          Row{"CCC", 34, "CCC"}, Row{"CCC", 33, "CC>"}, Row{"CCC", 31, "C>"},
          Row{"PC|C|C", 60, "PC|C>"}, Row{"PC|C|C", 40, "PC>"}, Row{"CPC", 20, "P>"},
          Row{"CPC", 0, "P>"}, Row{"PCc", 22, "PC"}}) {
        EXPECT_EQ(Arranged(items, width), shown) << items << ' ' << width;
    }
}

class CommandBarTest : public ::testing::Test {
 protected:
    CommandBarTest() {
        crop_.setObjectName(u"acCrop"_s);
        undo_.setObjectName(u"acUndo"_s);
        about_.setObjectName(u"acAbout"_s);
        bar_.AddChoice(u"Anzahl"_s, box_, 46);
        bar_.AddAction(&crop_, Caption::Shown);
        bar_.AddSeparator();
        bar_.AddAction(&undo_);
        bar_.AddSeparator();
        bar_.AddAction(&about_);
        bar_.resize(bar_.sizeHint());
        bar_.show();
    }

    auto ShownSeparators() const {
        return std::count_if(bar_.children().begin(), bar_.children().end(), [](QObject* child) {
            const auto* separator = dynamic_cast<const Separator*>(child);
            return separator != nullptr && separator->isVisible();
        });
    }

    QToolButton* Button(const QString& name) const { return bar_.findChild<QToolButton*>(name); }

    QAction crop_{u"Passbilder erstellen"_s};
    QAction undo_{u"Rückgängig"_s};
    QAction about_{u"Über"_s};
    QComboBox* box_ = new QComboBox;
    CommandBar bar_{u"Bearbeiten"_s};
};

TEST_F(CommandBarTest, ButtonsFollowTheirActions) {
    for (const bool visible : {true, false, true}) {
        undo_.setVisible(visible);
        EXPECT_EQ(Button(u"acUndoButton"_s)->isVisible(), visible);
        EXPECT_EQ(ShownSeparators(), visible ? 2 : 1);
        EXPECT_FALSE(Button(u"ExtensionButton"_s)->isVisible());
    }
    undo_.setEnabled(false);
    EXPECT_FALSE(Button(u"acUndoButton"_s)->isEnabled());

    QSignalSpy triggered(&crop_, &QAction::triggered);
    QTest::keyClick(Button(u"acCropButton"_s), Qt::Key_Return);
    EXPECT_EQ(triggered.count(), 1);
}

TEST_F(CommandBarTest, GroupsThatDoNotFitStandInASecondRowThenInTheMenu) {
    const int oneRow = bar_.sizeHint().height();
    EXPECT_EQ(bar_.heightForWidth(bar_.sizeHint().width()), oneRow);
    const int narrow = bar_.sizeHint().width() - 1;
    bar_.resize(narrow, bar_.heightForWidth(narrow));
    EXPECT_GT(bar_.height(), oneRow);
    const QRect above = Button(u"acUndoButton"_s)->geometry();
    const QRect below = Button(u"acAboutButton"_s)->geometry();
    EXPECT_TRUE(Button(u"acAboutButton"_s)->isVisible());
    EXPECT_GT(below.top(), above.bottom());
    EXPECT_LT(below.bottom(), bar_.height());
    EXPECT_LT(below.left(), above.left());
    EXPECT_EQ(ShownSeparators(), 1);
    EXPECT_FALSE(Button(u"ExtensionButton"_s)->isVisible());

    bar_.resize(bar_.minimumSizeHint().width(), bar_.height());
    ASSERT_TRUE(Button(u"ExtensionButton"_s)->isVisible());
    EXPECT_FALSE(Button(u"acCropButton"_s)->isVisible());
    EXPECT_FALSE(Button(u"acAboutButton"_s)->isVisible());
    auto* menu = bar_.findChild<QMenu*>(u"ExtensionMenu"_s);
    Q_EMIT menu->aboutToShow();
    EXPECT_TRUE(menu->actions().contains(&about_));
    EXPECT_TRUE(menu->actions().contains(&crop_));
    EXPECT_TRUE(box_->isVisible());
    EXPECT_LE(box_->mapTo(&bar_, box_->rect().topRight()).x(),
              Button(u"ExtensionButton"_s)->geometry().left());

    about_.setShortcut(QKeySequence(Qt::CTRL | Qt::Key_G));
    QSignalSpy triggered(&about_, &QAction::triggered);
    bar_.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&bar_));
    QTest::keyClick(&bar_, Qt::Key_G, Qt::ControlModifier);
    EXPECT_EQ(triggered.count(), 1);
}

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

TEST(LetterMenu, ALetterTriggersItsOnlyEntryAndMovesAmongSeveral) {
    QWidget window;
    LetterMenu menu(&window);
    QStringList triggered;
    for (const QString& caption : {u"Öffnen"_s, u"Drucker"_s, u"Druck Profile"_s, u"&Zuletzt"_s}) {
        menu.addAction(caption, [&triggered, caption] { triggered.append(caption); });
    }
    menu.addAction(u"Ordner"_s)->setEnabled(false);
    QAction* another = menu.addAction(u"Drehen"_s, [&triggered] { triggered.append(u"r"_s); });
    SetMenuLetter(*another, u'r');
    menu.popup({});
    for (const QString& letter : {u"d"_s, u"d"_s, u"x"_s}) {
        QTest::keyClicks(&menu, letter);
    }
    EXPECT_EQ(menu.activeAction()->text(), u"Druck Profile"_s);
    EXPECT_TRUE(menu.isVisible() && triggered.isEmpty());
    for (const auto& [key, letter] : {std::pair(Qt::Key_Odiaeresis, u"ö"_s), {Qt::Key_Z, u"z"_s}}) {
        menu.popup({});
        QTest::sendKeyEvent(QTest::Click, &menu, key, letter, Qt::NoModifier);
        EXPECT_FALSE(menu.isVisible());
    }
    menu.popup({});
    QTest::keyClicks(&menu, u"r"_s);
    EXPECT_EQ(triggered.join(u'|'), u"Öffnen|&Zuletzt|r"_s);
    EXPECT_EQ(another->text(), u"Drehen"_s);
}

}  // namespace
}  // namespace kadrona::controls
