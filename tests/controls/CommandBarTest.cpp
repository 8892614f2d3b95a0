#include <gtest/gtest.h>

#include <QAction>
#include <QComboBox>
#include <QMenu>
#include <QTest>

#include "controls/BarArrangement.h"
#include "controls/CommandBar.h"
#include "controls/Separator.h"

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

TEST(ArrangeBar, SeparatorsStandOnlyBetweenShownItems) {
    constexpr int Wide = 1000;
    EXPECT_EQ(Arranged("PCC|C|CC", Wide), "PCC|C|CC");
    EXPECT_EQ(Arranged("PCC|c|CC", Wide), "PCC|CC");
    EXPECT_EQ(Arranged("pc|CC|c|c", Wide), "CC");
    EXPECT_EQ(Arranged("|C||C|", Wide), "C|C");
    EXPECT_EQ(Arranged("c|c", Wide), "");
}

TEST(ArrangeBar, GivesUpCommandsFromTheEnd) {
    EXPECT_EQ(Arranged("CCC", 34), "CCC");
    EXPECT_EQ(Arranged("CCC", 33), "CC>");
    EXPECT_EQ(Arranged("CCC", 31), "C>");
    EXPECT_EQ(Arranged("PC|C|C", 60), "PC|C>");
    EXPECT_EQ(Arranged("PC|C|C", 40), "PC>");
    EXPECT_EQ(Arranged("CPC", 20), "P>");
    EXPECT_EQ(Arranged("CPC", 0), "P>");
}

TEST(ArrangeBar, HiddenCommandsAreNotMissed) {
    EXPECT_EQ(Arranged("PCc", 22), "PC");
    EXPECT_EQ(Arranged("Pcc", 10), "P");
}

class CommandBarTest : public testing::Test {
 protected:
    CommandBarTest() {
        box_->addItems({u"2 x 4"_s, u"3 x 3"_s});
        bar_.AddChoice(u"Anzahl"_s, box_, 46);
        bar_.AddAction(&crop_, Caption::Shown);
        bar_.AddSeparator();
        bar_.AddAction(&undo_);
        bar_.AddSeparator();
        bar_.AddAction(&about_);
        bar_.resize(bar_.sizeHint());
        bar_.show();
    }

    static QAction& Named(QAction& action, const QString& name) {
        action.setObjectName(name);
        return action;
    }

    int ShownSeparators() const {
        int count = 0;
        for (const QObject* child : bar_.children()) {
            const auto* separator = dynamic_cast<const Separator*>(child);
            count += separator != nullptr && separator->isVisible() ? 1 : 0;
        }
        return count;
    }

    QToolButton* Button(const QString& name) const { return bar_.findChild<QToolButton*>(name); }

    QAction crop_{u"Passbilder erstellen"_s};
    QAction undo_{u"Rückgängig"_s};
    QAction about_{u"Über"_s};
    bool named_ = !Named(crop_, u"acCrop"_s).objectName().isEmpty() &&
                  !Named(undo_, u"acUndo"_s).objectName().isEmpty() &&
                  !Named(about_, u"acAbout"_s).objectName().isEmpty();
    QComboBox* box_ = new QComboBox;
    CommandBar bar_{u"Bearbeiten"_s};
};

TEST_F(CommandBarTest, ButtonsFollowTheirActions) {
    ASSERT_NE(Button(u"acCropButton"_s), nullptr);
    EXPECT_EQ(ShownSeparators(), 2);
    undo_.setVisible(false);
    EXPECT_FALSE(Button(u"acUndoButton"_s)->isVisible());
    EXPECT_EQ(ShownSeparators(), 1);
    EXPECT_FALSE(Button(u"ExtensionButton"_s)->isVisible());
    undo_.setVisible(true);
    EXPECT_TRUE(Button(u"acUndoButton"_s)->isVisible());
    EXPECT_EQ(ShownSeparators(), 2);
    undo_.setEnabled(false);
    EXPECT_FALSE(Button(u"acUndoButton"_s)->isEnabled());
}

TEST_F(CommandBarTest, WhatDoesNotFitIsInTheMenu) {
    bar_.resize(bar_.sizeHint().width() - 1, bar_.height());
    ASSERT_TRUE(Button(u"ExtensionButton"_s)->isVisible());
    EXPECT_FALSE(Button(u"acAboutButton"_s)->isVisible());
    auto* menu = bar_.findChild<QMenu*>(u"ExtensionMenu"_s);
    Q_EMIT menu->aboutToShow();
    EXPECT_TRUE(menu->actions().contains(&about_));
    EXPECT_FALSE(menu->actions().contains(&crop_));

    bar_.resize(bar_.minimumSizeHint().width(), bar_.height());
    EXPECT_FALSE(Button(u"acCropButton"_s)->isVisible());
    EXPECT_TRUE(box_->isVisible());
    EXPECT_LE(box_->mapTo(&bar_, box_->rect().topRight()).x(),
              Button(u"ExtensionButton"_s)->geometry().left());
}

TEST_F(CommandBarTest, ShortcutsWorkFromTheMenuToo) {
    about_.setShortcut(QKeySequence(Qt::CTRL | Qt::Key_G));
    int triggered = 0;
    QObject::connect(&about_, &QAction::triggered, [&triggered] { ++triggered; });
    bar_.resize(bar_.minimumSizeHint().width(), bar_.height());
    bar_.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&bar_));
    ASSERT_FALSE(Button(u"acAboutButton"_s)->isVisible());
    QTest::keyClick(&bar_, Qt::Key_G, Qt::ControlModifier);
    EXPECT_EQ(triggered, 1);
}

TEST_F(CommandBarTest, TheChoiceIsWideEnoughForItsItems) {
    EXPECT_GE(box_->width(), box_->fontMetrics().horizontalAdvance(u"2 x 4"_s) + 20);
    EXPECT_GE(box_->width(), 46);
    EXPECT_EQ(box_->accessibleName(), u"Anzahl"_s);
}

}  // namespace
}  // namespace kadrona::controls
