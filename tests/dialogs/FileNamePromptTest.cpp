#include <gtest/gtest.h>

#include <QClipboard>
#include <QGuiApplication>
#include <QLineEdit>
#include <QTest>

#include "dialogs/FileNamePrompt.h"
#include "tests/support/CoreFakes.h"
#include "tests/support/ModalDriver.h"

using namespace Qt::StringLiterals;

namespace kadrona::testing {

class FileNamePrompt : public ::testing::Test {
 protected:
    static core::NameSources March() {
        core::NameSources sources;
        sources.now = [] { return QDateTime({2026, 3, 7}, {12, 0}); };
        return sources;
    }

    QLineEdit& Edit() { return *prompt.findChild<QLineEdit*>(u"FileNameEdit"_s); }

    Installation installation;
    ModalDriver driver;
    dialogs::TFileNameFm prompt{March()};
};

TEST_F(FileNamePrompt, SwallowsWhatItsNamesMustNotHold) {
    driver.Expect(u"FileNameFm"_s, [this](QWidget& shown) {
        EXPECT_EQ(shown.findChild<QLineEdit*>(u"PraefixText"_s)->text(), u"2026-03-07"_s);
        EXPECT_TRUE(Edit().hasFocus());
        QTest::keyClicks(&Edit(), u"a!b(c)d.e/f;g<h>i?j[k\\l]m{n}o"_s);
        EXPECT_EQ(Edit().text(), u"abcdefghijklmno"_s);
        Edit().clear();
        QTest::keyClicks(&Edit(), u"a:*\"|-_,'"_s);
        EXPECT_EQ(Edit().text(), u"a:*\"|-_,'"_s) << "all others are let through";
        Edit().selectAll();
        QTest::keyClicks(&Edit(), u"/"_s);
        EXPECT_EQ(Edit().selectedText(), u"a:*\"|-_,'"_s) << "swallowed, not typed over";
        QGuiApplication::clipboard()->setText(u"(../x)"_s);
        Edit().paste();
        EXPECT_EQ(Edit().text(), u"x"_s);
        QTest::keyClick(&shown, Qt::Key_Escape);
    });
    EXPECT_EQ(prompt.ShowEx(installation.Path("")), controls::ModalResult::Cancel);
}

TEST_F(FileNamePrompt, StaysOpenWithoutANameAndForAnExistingFile) {
    installation.Write("2026-03-07-max.jpg", "taken");
    driver.Expect(u"FileNameFm"_s, [this](QWidget& shown) {
        QTest::keyClick(&Edit(), Qt::Key_Return);
        EXPECT_TRUE(shown.isVisible());
        QTest::keyClicks(&Edit(), u"max"_s);
        driver.Press(u"MessageBox"_s, u"OkButton"_s);
        QTest::keyClick(&Edit(), Qt::Key_Return);
        EXPECT_TRUE(shown.isVisible());
        QTest::keyClicks(&Edit(), u"2"_s);
        QTest::keyClick(&Edit(), Qt::Key_Return);
    });
    const QString folder = QFileInfo(installation.Path("x")).path();
    EXPECT_EQ(prompt.ShowEx(folder), controls::ModalResult::Ok);
    EXPECT_EQ(prompt.Path(), folder + u"/2026-03-07-max2.jpg"_s);

    driver.Expect(u"FileNameFm"_s, [this](QWidget& shown) {
        EXPECT_EQ(Edit().text(), QString());
        shown.close();
    });
    prompt.ShowEx(folder);
}

}  // namespace kadrona::testing
