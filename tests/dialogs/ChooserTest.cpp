#include <gtest/gtest.h>

#include <QListWidget>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QToolButton>

#include "dialogs/ProfileChooser.h"
#include "dialogs/TemplateChooser.h"
#include "tests/support/CoreFakes.h"
#include "tests/support/ModalDriver.h"

using namespace Qt::StringLiterals;

namespace kadrona::testing {

class TemplateChooser : public ::testing::Test {
 protected:
    TemplateChooser() {
        chooser.SetTemplates({u"A"_s, u"B"_s, u"C"_s});
        chooser.SetRotationHandler([this](int degrees) { turns.append(degrees); });
        chooser.findChild<QTimer*>(u"Timer"_s)->setInterval(20);
    }

    QListWidget& List() { return *chooser.findChild<QListWidget*>(u"lbSchablonen"_s); }

    FakeSettings settings;
    ModalDriver driver;
    QList<int> turns;
    dialogs::TSchabloneFm chooser{settings};
};

TEST_F(TemplateChooser, ConfirmsItselfWithTheDefaultTemplate) {
    settings[u"SchabloneBox"_s] = 1;
    driver.Expect(u"SchabloneFm"_s, [](QWidget&) {});
    EXPECT_EQ(chooser.ShowEx(), controls::ModalResult::Ok);
    EXPECT_EQ(chooser.SelectedTemplate(), 1);
}

TEST_F(TemplateChooser, CannotBeClosedWithoutASelection) {
    driver.Expect(u"SchabloneFm"_s, [this](QWidget& shown) {
        QTest::qWait(60);
        QTest::keyClick(&shown, Qt::Key_Escape);
        shown.close();
        shown.findChild<QPushButton*>(u"btnOk"_s)->click();
        EXPECT_TRUE(shown.isVisible());
        QTest::keyClick(&List(), Qt::Key_Home);
        EXPECT_EQ(chooser.SelectedTemplate(), 0);
        List().setCurrentRow(2);
        shown.findChild<QPushButton*>(u"btnOk"_s)->click();
    });
    EXPECT_EQ(chooser.ShowEx(), controls::ModalResult::Ok);
    EXPECT_EQ(chooser.SelectedTemplate(), 2);
}

TEST_F(TemplateChooser, TurnsThePhotoByItsButtonsAndTheSettings) {
    settings[u"SchabloneBox"_s] = 0;
    settings[u"ImgRotateLeft"_s] = true;
    settings[u"ImgRotateRight"_s] = true;
    chooser.findChild<QTimer*>(u"Timer"_s)->setInterval(10000);
    driver.Expect(u"SchabloneFm"_s, [this](QWidget& shown) {
        EXPECT_EQ(turns, (QList<int>{+90, -90}));
        shown.findChild<QToolButton*>(u"btnRotateRight"_s)->click();
        EXPECT_EQ(turns.last(), -90);
        QTest::keyClick(&shown, Qt::Key_Escape);
    });
    EXPECT_EQ(chooser.ShowEx(), controls::ModalResult::Cancel);
    EXPECT_FALSE(chooser.findChild<QTimer*>(u"Timer"_s)->isActive());
}

TEST(ProfileChooser, ChoosesByDoubleClickAndFailsOnAnEmptyList) {
    dialogs::TProfileDlgFM chooser;
    ModalDriver driver;
    chooser.SetProfiles({u"A"_s, u"B"_s});
    driver.Expect(u"ProfileDlgFM"_s, [](QWidget& shown) {
        auto* list = shown.findChild<QListWidget*>(u"ProfileListBox"_s);
        EXPECT_EQ(list->currentRow(), 0);
        const QPoint second = list->visualItemRect(list->item(1)).center();
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, second);
        QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, second);
    });
    EXPECT_EQ(chooser.ShowEx(), controls::ModalResult::Ok);
    EXPECT_EQ(chooser.SelectedProfile(), u"B"_s);

    chooser.SetProfiles({});
    driver.Press(u"ProfileDlgFM"_s, u"btnOK"_s);
    EXPECT_EQ(chooser.ShowEx(), controls::ModalResult::Ok);
    EXPECT_THROW(chooser.SelectedProfile(), platform::Error);
}

}  // namespace kadrona::testing
