#include <gtest/gtest.h>

#include <QLineEdit>
#include <QSignalSpy>
#include <QTest>
#include <QToolButton>

#include "controls/fields/FindPanel.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace kadrona::controls {
namespace {

class FindPanelTest : public ::testing::Test {
 protected:
    FindPanelTest() { panel.show(); }

    QStringList Searches() const {
        QStringList texts;
        for (const auto& call : searched) {
            texts += call.value(0).toString();
        }
        return texts;
    }

    /// The toolkit's own, the last one in the field.
    QToolButton* ClearButton() const { return edit.findChildren<QToolButton*>().last(); }

    FindPanel panel;
    QLineEdit& edit = *panel.findChild<QLineEdit*>(u"FindEdit"_s);
    QSignalSpy searched{&panel, &FindPanel::Searched};
    QSignalSpy left{&panel, &FindPanel::Left};
};

TEST_F(FindPanelTest, SearchesOnceTheUserPauses) {
    panel.SetDelay(30ms);
    QTest::keyClicks(&edit, u"Meier"_s);
    EXPECT_EQ(searched.count(), 0);
    EXPECT_TRUE(searched.wait(2000));
    EXPECT_EQ(Searches(), QStringList(u"Meier"_s));
}

TEST_F(FindPanelTest, ReturnAndDownSearchAtOnceAndLeave) {
    panel.SetDelay(1h);
    QTest::keyClicks(&edit, u"ab"_s);
    QTest::keyClick(&edit, Qt::Key_Return);
    QTest::keyClick(&edit, Qt::Key_Down);
    EXPECT_EQ(Searches(), QStringList(u"ab"_s));
    EXPECT_EQ(left.count(), 2);
}

TEST_F(FindPanelTest, EscapeAndTheButtonClear) {
    panel.SetDelay(1ms);
    QWidget window;
    panel.setParent(&window);
    panel.SetText(u"a"_s);
    QTest::keyClick(&edit, Qt::Key_Escape);
    EXPECT_TRUE(panel.Text().isEmpty());
    panel.SetText(u"b"_s);
    ClearButton()->click();
    EXPECT_TRUE(QTest::qWaitFor([&] { return searched.count() == 4; }));
    EXPECT_EQ(Searches(), QStringList({u"a"_s, u""_s, u"b"_s, u""_s}));

    QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, {});
    QCoreApplication::sendEvent(&edit, &escape);
    EXPECT_FALSE(escape.isAccepted());  // closes the window
    panel.setParent(nullptr);
}

}  // namespace
}  // namespace kadrona::controls
