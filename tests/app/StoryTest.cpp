// Stories that drive the real windows by their object names.

#include <QComboBox>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMimeData>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include "core/sheet/PhotoLoading.h"
#include "core/sheet/SheetLayout.h"
#include "dialogs/SettingsDialog.h"
#include "platform/UserRegistry.h"
#include "tests/app/StoryFixture.h"
#include "tests/support/Input.h"

using namespace Qt::StringLiterals;

namespace kadrona::testing {

TEST_F(Story, AFirstStartShowsTheEmptyWindowInItsDesignedSize) {
    EXPECT_EQ(window->windowTitle(), u"Kadrona 6.0 Prof"_s);
    EXPECT_EQ(window->size(), QSize(772, 675));
    EXPECT_FALSE(window->View().isVisible());
    EXPECT_TRUE(window->findChild<QWidget*>(u"EmptyState"_s)->isVisible());
    EXPECT_FALSE(IsEnabled(u"acCrop"_s));
    EXPECT_TRUE(IsEnabled(u"acOpen"_s));
}

TEST_F(Story, APhotoBecomesASheet) {
    Open("photo.png");
    EXPECT_TRUE(window->View().isVisible());
    EXPECT_TRUE(IsEnabled(u"acCrop"_s));
    EXPECT_FALSE(IsEnabled(u"acSave"_s));

    const QPoint from = OnScreen({100, 100});
    const QPoint to = OnScreen({300, 400});
    Drag(window->View(), {from, (from + to) / 2, to});
    EXPECT_NEAR(Template().x(), 200, 3);
    EXPECT_NEAR(Template().y(), 300, 3);

    const QRect cut = Template();
    Trigger(u"acCrop"_s);
    EXPECT_EQ(Image().Photo().Size(), QSize(4 * 375, 2 * 475));
    EXPECT_EQ(Image().Resolution().value, 254);
    EXPECT_FALSE(IsEnabled(u"acCrop"_s));
    EXPECT_TRUE(IsEnabled(u"acSave"_s));
    EXPECT_FALSE(IsEnabled(u"acUndo"_s));
    EXPECT_EQ(window->Data().ReadLayerPosFromIni(u"Pass.msk 1200x1600"_s), cut);

    Open("photo.png");
    EXPECT_EQ(Template(), cut) << "the place is remembered";
    EXPECT_TRUE(IsEnabled(u"acCrop"_s));
}

TEST_F(Story, TheTemplateStaysInsideThePhotoAndCanBeHidden) {
    Open("photo.png");
    const QPoint inside = OnScreen({100, 100});
    Drag(window->View(), {inside, inside + QPoint(40, 40), inside + QPoint(4000, 4000)});
    EXPECT_EQ(Template().topLeft(), QPoint(1200 - 350, 1600 - 450));

    Trigger(u"acShowLayer"_s);
    EXPECT_TRUE(IsChecked(u"acShowLayer"_s));
    EXPECT_FALSE(Image().LayerAt(1).visible);
    EXPECT_EQ(Image().CurrentLayer(), 0);
    Trigger(u"acShowLayer"_s);
    EXPECT_TRUE(Image().LayerAt(1).visible);
    EXPECT_EQ(Image().CurrentLayer(), 1);

    window->Actions().SetChecked(app::Action::Beauty, true);
    Trigger(u"acShowLayer"_s);
    EXPECT_TRUE(Image().LayerAt(1).visible) << "nothing while the retouch stamp is on";
    Trigger(u"acCrop"_s);
    EXPECT_EQ(Image().LayerCount(), 2) << "nor are photos made";
}

TEST_F(Story, ABrightPhotoWarnsAndIsMadeAllTheSame) {
    SavePhoto("bright.png", QSize(600, 800), 191);
    SavePhoto("limit.png", QSize(600, 800), 190);
    Open("limit.png");
    Trigger(u"acCrop"_s);
    Open("bright.png");
    driver.Press(u"MessageBox"_s, u"OkButton"_s);
    Trigger(u"acCrop"_s);
    EXPECT_EQ(Image().Photo().Columns(), 4);
}

TEST_F(Story, AnUnreadablePhotoIsReportedAndTheNextOneOpens) {
    Open("photo.png");
    installation.Write("broken.jpg", "no photo");
    for (const char* name : {"broken.jpg", "missing.jpg", "program"}) {
        driver.Press(u"MessageBox"_s, u"OkButton"_s);
        window->OpenDroppedFiles({installation.Path(name)});
        EXPECT_TRUE(Image().IsEmpty()) << name;
        EXPECT_TRUE(window->findChild<QWidget*>(u"EmptyState"_s)->isVisible()) << name;
        EXPECT_FALSE(IsEnabled(u"acCrop"_s)) << name;
        for (const QString& action :
             {u"acRotateLeft"_s, u"acRotateDlg"_s, u"acZoomFit"_s, u"acZoomFull"_s,
              u"acShowLayer"_s, u"acUndo"_s, u"acSetWhitePoint"_s, u"acGradation"_s,
              u"acSchwarzweiss"_s, u"acColorConfig"_s, u"acBeauty"_s, u"acCrop"_s}) {
            Trigger(action);
            EXPECT_EQ(window->View().Tool(), nullptr) << action.toStdString();
        }
        EXPECT_FALSE(IsChecked(u"acBeauty"_s));
    }
    Open("photo.png");
    EXPECT_TRUE(IsEnabled(u"acCrop"_s));
}

TEST_F(Story, QuarterTurnsAreUndoneOneByOne) {
    Open("photo.png");
    Trigger(u"acRotateLeft"_s);
    EXPECT_EQ(Image().Photo().Size(), QSize(1600, 1200));
    EXPECT_EQ(Image().CurrentLayer(), 1);
    Trigger(u"acRotateRight"_s);
    EXPECT_EQ(Image().UndoCount(), 2);
    Trigger(u"acUndo"_s);
    EXPECT_EQ(Image().Photo().Size(), QSize(1600, 1200));
    Trigger(u"acUndo"_s);
    EXPECT_EQ(Image().Photo().Size(), QSize(1200, 1600));
    EXPECT_FALSE(IsEnabled(u"acUndo"_s));
    for (int i = 0; i < 11; ++i) {
        Trigger(u"acRotateLeft"_s);
    }
    EXPECT_EQ(Image().UndoCount(), 10);
}

TEST_F(Story, AQuarterTurnNeverLeavesTheTemplateOutside) {
    Open("photo.png");
    Image().SetLayerRectangle(1, QRect(850, 1150, 350, 450));
    Trigger(u"acRotateLeft"_s);
    EXPECT_EQ(Template(), QRect(850, 750, 350, 450));
    Trigger(u"acUndo"_s);
    EXPECT_EQ(Template(), QRect(850, 1150, 350, 450)) << "back where the turn took it from";
    Trigger(u"acRotateLeft"_s);
    Image().SetLayerRectangle(1, QRect(1250, 0, 350, 450));
    Trigger(u"acUndo"_s);
    EXPECT_EQ(Template(), QRect(850, 1150, 350, 450)) << "where it lay before the turn";
}

TEST_F(Story, TheOpenDialogStartsInTheLastFolderAfterActivatingTheStandardProfile) {
    Open("photo.png");
    driver.Expect(u"OpenDialog"_s, [this](QWidget& shown) {
        auto& dialog = dynamic_cast<QFileDialog&>(shown);
        EXPECT_EQ(dialog.directory().absolutePath(), QFileInfo(installation.Path("x")).path());
        EXPECT_EQ(dialog.nameFilters().size(), 14);
        dialog.reject();
    });
    Trigger(u"acOpen"_s);
    EXPECT_EQ(Image().LayerCount(), 2) << "cancelling changes nothing";
}

TEST_F(Story, OpeningWithAProfileTakesItsCountAndAPlainOpenGoesBack) {
    auto* settings = window->findChild<dialogs::TEinstellungenFm*>();
    driver.Expect(u"EinstellungenFm"_s, [](QWidget& shown) { shown.close(); });
    Trigger(u"acShowConfig"_s);
    driver.Expect(u"EinstellungenFm"_s, [&](QWidget& shown) {
        driver.Expect(u"LineDialog"_s, [](QWidget& line) {
            line.findChild<QLineEdit*>(u"LineEdit"_s)->setText(u"Laden"_s);
            line.findChild<QPushButton*>(u"OkButton"_s)->click();
        });
        shown.findChild<QPushButton*>(u"btnNew"_s)->click();
        shown.findChild<QComboBox*>(u"ImageCount"_s)->setCurrentIndex(6);
        shown.close();
    });
    Trigger(u"acShowConfig"_s);
    auto* count = window->findChild<QComboBox*>(u"Anzahl"_s);
    settings->AktivateProfileByName(u"Standard Profile"_s, false);
    EXPECT_EQ(count->currentIndex(), 0);

    driver.Press(u"ProfileDlgFM"_s, u"btnCancel"_s);
    Trigger(u"acOpenWithProfile"_s);
    EXPECT_EQ(count->currentIndex(), 0);
    driver.Expect(u"ProfileDlgFM"_s, [](QWidget& shown) {
        shown.findChild<QListWidget*>(u"ProfileListBox"_s)->setCurrentRow(1);
        shown.findChild<QPushButton*>(u"btnOK"_s)->click();
    });
    driver.Expect(u"OpenDialog"_s, [](QWidget& shown) { shown.close(); });
    Trigger(u"acOpenWithProfile"_s);
    EXPECT_EQ(count->currentIndex(), 6) << "the chosen profile stays active";
    driver.Expect(u"OpenDialog"_s, [](QWidget& shown) { shown.close(); });
    Trigger(u"acOpen"_s);
    EXPECT_EQ(count->currentIndex(), 0);
}

TEST_F(Story, CtrlAndSpacePanWhileHeld) {
    using Interaction = imaging::view::ImageView::Interaction;
    Open("photo.png");
    const imaging::view::ImageView::Interactions both{Interaction::Zoom, Interaction::Pan};
    EXPECT_EQ(window->View().CurrentInteraction(), both);
    for (const Qt::Key key : {Qt::Key_Control, Qt::Key_Space}) {
        QTest::keyPress(&window->View(), key);
        EXPECT_EQ(window->View().CurrentInteraction(), Interaction::Pan);
        QTest::keyPress(&window->View(), Qt::Key_Control);
        const QRect before = Template();
        const QPoint at = OnScreen({100, 100});
        Drag(window->View(), {at, at + QPoint(30, 30)});
        EXPECT_EQ(Template(), before);
        QTest::keyRelease(&window->View(), key);
        EXPECT_EQ(window->View().CurrentInteraction(), both);
    }
    QTest::keyPress(&window->View(), Qt::Key_Control);
    QFocusEvent leaving(QEvent::FocusOut);
    QCoreApplication::sendEvent(&window->View(), &leaving);
    EXPECT_EQ(window->View().CurrentInteraction(), both) << "the key is let go elsewhere";
}

TEST_F(Story, ASecondStartRestoresTheWindowAndTheCounter) {
    window.reset();
    platform::WriteRegistryInteger(u"DBCount"_s, 41);
    Start();
    window->move(30, 40);
    window->resize(790, 690);
    window->close();
    Start();
    EXPECT_EQ(window->pos(), QPoint(30, 40));
    EXPECT_EQ(window->size(), QSize(790, 690));
    EXPECT_FALSE(window->isMaximized());
    platform::WriteRegistryInteger(u"DBCount"_s, 0);
    window.reset();
    EXPECT_EQ(platform::ReadRegistryInteger(u"DBCount"_s), 41) << "written back as it was read";

    Start();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window.get()));
    window->showMaximized();
    for (int start = 0; start < 2; ++start) {
        window->close();
        Start();
        EXPECT_TRUE(window->isMaximized());
    }
    window->showNormal();
    EXPECT_EQ(window->pos(), QPoint(30, 40)) << "the place does not drift";

    for (const char* edge : {"PosX=0\nPosY=40", "PosX=30\nPosY=0", "PosX=90000\nPosY=90000"}) {
        installation.Write("common/Kadrona/kdr.ini",
                           "[mainFm]\n" + QByteArray(edge) + "\nWidth=900\nHeight=700\n");
        Start();
        EXPECT_EQ(window->size(), QSize(772, 675)) << edge;
    }
}

TEST_F(Story, TheStatusBarNamesTheTemplateAndItsLinkTheMaker) {
    Open("photo.png", 1);
    EXPECT_EQ(window->findChild<QLabel*>(u"TemplateName"_s)->text(), u"USA"_s);
    driver.Press(u"fmAbout"_s, u"btnOk"_s);
    window->findChild<QAbstractButton*>(u"StatusPanel2"_s)->click();
    driver.Press(u"fmAbout"_s, u"btnOk"_s);
    Trigger(u"acAbout"_s);
}

TEST_F(Story, AReadOnlyLayoutFileIsReportedAndTheWindowCloses) {
    installation.Write("common/Kadrona/kdr.ini", "[old]\nPosX=1\n");
    QFile(installation.DataFile("kdr.ini")).setPermissions(QFile::ReadOwner);
    driver.Press(u"MessageBox"_s, u"OkButton"_s);
    EXPECT_TRUE(window->close());
}

TEST_F(Story, ADamagedTemplateLeavesThePhotoWithoutOne) {
    installation.Write("program/Schablonen/USA.msk", QByteArray("\xff\xff\xff\x7f", 4));
    driver.Expect(u"SchabloneFm"_s, [this](QWidget& shown) {
        driver.Press(u"MessageBox"_s, u"OkButton"_s);
        shown.findChild<QListWidget*>(u"lbSchablonen"_s)->setCurrentRow(1);
        shown.findChild<QPushButton*>(u"btnOk"_s)->click();
    });
    window->OpenDroppedFiles({installation.Path("photo.png")});
    EXPECT_EQ(Image().LayerCount(), 1);
    EXPECT_FALSE(IsEnabled(u"acCrop"_s));
}

}  // namespace kadrona::testing
