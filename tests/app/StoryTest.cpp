// Stories that drive the real windows by their object names.

#include <QFileDialog>
#include <QMenu>

#include "app/StartRequests.h"
#include "controls/commands/ScreenTip.h"
#include "controls/fields/PhotoStrip.h"
#include "core/base/RecentPhotos.h"
#include "core/sheet/PhotoLoading.h"
#include "core/templates/LayoutFile.h"
#include "platform/AtomicFile.h"
#include "platform/UserRegistry.h"
#include "tests/app/StoryFixture.h"

using namespace Qt::StringLiterals;

namespace kadrona::testing {

TEST_F(Story, AFirstStartShowsTheEmptyWindowInItsDesignedSize) {
    EXPECT_EQ(window->windowTitle(), u"Kadrona 6.0 Prof"_s);
    EXPECT_EQ(window->size(), QSize(772, 675));
    EXPECT_FALSE(window->View().isVisible());
    EXPECT_TRUE(Child<QWidget>(*window, "EmptyState").isVisible());
    EXPECT_TRUE(IsEnabled(u"acOpen"_s) && !IsEnabled(u"acCrop"_s));
}

TEST_F(Story, TheManualOpensOverTheWindowAndOverADialogThatKeepsItFromInput) {
    const auto isOver = [](const QWidget& parent) {
        auto* manual = parent.findChild<QDialog*>(u"ManualWindow"_s, Qt::FindDirectChildrenOnly);
        return manual != nullptr && manual->isVisible();
    };
    const QString folder = window->Data().ProgramFolder() + u"/Handbuch"_s;
    ASSERT_TRUE(QDir().mkpath(folder));
    QFile text(folder + u"/Handbuch.md"_s);
    ASSERT_TRUE(text.open(QIODevice::WriteOnly) && text.write("# Handbuch\n") > 0);
    text.close();
    Trigger(u"acManual"_s);
    EXPECT_TRUE(isOver(*window));
    QDialog dialog(window.get());
    dialog.setModal(true);
    dialog.show();
    QTest::keyClick(&dialog, Qt::Key_F1);
    EXPECT_TRUE(isOver(dialog));
}

TEST_F(Story, APhotoBecomesASheet) {
    Open("photo.png");
    EXPECT_TRUE(window->View().isVisible());
    EXPECT_TRUE(IsEnabled(u"acCrop"_s) && !IsEnabled(u"acSave"_s));
    const QPoint from = OnScreen({100, 100});
    const QPoint to = OnScreen({300, 400});
    Drag(window->View(), {from, (from + to) / 2, to});
    EXPECT_LE((Template().topLeft() - QPoint(200, 300)).manhattanLength(), 6);
    const QRect cut = Template();
    Trigger(u"acCrop"_s);
    EXPECT_EQ(Image().Photo().Size(), QSize(4 * 375, 2 * 475));
    EXPECT_EQ(Image().Resolution().value, 254);
    EXPECT_TRUE(IsEnabled(u"acSave"_s) && !IsEnabled(u"acCrop"_s) && !IsEnabled(u"acUndo"_s));
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

    for (const bool hidden : {true, false}) {
        Trigger(u"acShowLayer"_s);
        EXPECT_EQ(IsChecked(u"acShowLayer"_s), hidden);
        EXPECT_EQ(Image().LayerAt(1).visible, !hidden);
        EXPECT_EQ(Image().CurrentLayer(), hidden ? 0 : 1);
    }
    window->Actions().SetChecked(app::Action::Beauty, true);
    Trigger(u"acShowLayer"_s);
    EXPECT_TRUE(Image().LayerAt(1).visible) << "nothing while the retouch stamp is on";
    Trigger(u"acCrop"_s);
    EXPECT_EQ(Image().LayerCount(), 2) << "nor are photos made";
}

TEST_F(Story, ABrightPhotoWarnsAndIsMadeAllTheSame) {
    for (const int value : {190, 191}) {
        SavePhoto("bright.png", QSize(600, 800), value);
        Open("bright.png");
        if (value > 190) {
            driver.Answer(core::TooBrightWarning);
        }
        Trigger(u"acCrop"_s);
        EXPECT_EQ(Image().Photo().Columns(), 4);
    }
}

TEST_F(Story, AnUnreadablePhotoIsReportedAndTheNextOneOpens) {
    Open("photo.png");
    installation.Write("broken.jpg", "no photo");
    for (const char* name : {"broken.jpg", "missing.jpg", "program"}) {
        driver.Press(u"MessageBox"_s, u"OkButton"_s);
        window->OpenDroppedFiles({installation.Path(name)});
        EXPECT_TRUE(Image().IsEmpty()) << name;
        EXPECT_TRUE(Child<QWidget>(*window, "EmptyState").isVisible()) << name;
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

TEST_F(Story, LaterStartsPhotosWaitForWhatIsUnderWayAndForEachOther) {
    Open("photo.png");
    SavePhoto("next.png", QSize(600, 800), 90);
    app::StartRequests requests(*window);
    requests.Ask({.photo = installation.Path("next.png")});
    requests.Ask({.photo = installation.Path("photo.png")});
    ExpectTemplate();
    ExpectTemplate();
    QEventLoop program;
    QTimer::singleShot(0, &program, [&] {
        QEventLoop action;  // as while the print service is asked
        QTimer::singleShot(500, &action, &QEventLoop::quit);
        action.exec();
        EXPECT_EQ(Image().Photo().Size(), QSize(1200, 1600));
        program.quit();
    });
    program.exec();
    EXPECT_TRUE(QTest::qWaitFor([this] {
        return core::RecentPhotos().Photos().size() == 2 &&
               Image().Photo().Size() == QSize(1200, 1600);
    }));

    // What was finished meanwhile is not closed unasked.
    requests.Ask({.photo = installation.Path("next.png")});
    QTimer::singleShot(0, &program, [&] {
        Trigger(u"acCrop"_s);
        QEventLoop action;
        QTimer::singleShot(100, &action, &QEventLoop::quit);
        action.exec();
        driver.Answer({u"next.png"_s, u"fertigen Passbilder"_s}, u"NoButton"_s);
        QTimer::singleShot(500, &program, &QEventLoop::quit);
    });
    program.exec();
    EXPECT_TRUE(IsEnabled(u"acPrintImage"_s));
}

TEST_F(Story, AnOpenedPhotoFillsTheWindowAsItGrowsUntilTheUserFitsIt) {
    Open("photo.png");
    window->View().repaint();
    const auto zoomAfter = [this](QSize by) {
        window->resize(window->size() + by);
        QTest::qWait(50);
        return window->View().ZoomPercent();
    };
    const double before = window->View().ZoomPercent();
    EXPECT_LT(zoomAfter({0, -100}), before);
    Trigger(u"acZoomFit"_s);
    window->View().repaint();
    const double fitted = window->View().ZoomPercent();
    EXPECT_EQ(zoomAfter({0, 100}), fitted);
}

TEST_F(Story, QuarterTurnsAreUndoneOneByOne) {
    Open("photo.png");
    Trigger(u"acRotateLeft"_s);
    EXPECT_EQ(Image().CurrentLayer(), 1);
    Trigger(u"acRotateRight"_s);
    for (const QSize& size : {QSize(1200, 1600), QSize(1600, 1200)}) {
        EXPECT_EQ(Image().Photo().Size(), size);
        Trigger(u"acUndo"_s);
    }
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
        EXPECT_EQ(dialog.nameFilters().size(), 17);
        const QString all = dialog.nameFilters().constLast();
        EXPECT_TRUE(all.contains(u"*.jpg "_s) && all.contains(u"*.heic "_s)) << all.toStdString();
        dialog.reject();
    });
    Trigger(u"acOpen"_s);
    EXPECT_EQ(Image().LayerCount(), 2) << "cancelling changes nothing";
}

TEST_F(Story, OpeningWithAProfileTakesItsCountAndAPlainOpenGoesBack) {
    auto& settings = Child<dialogs::TEinstellungenFm>(*window);
    auto& count = Child<QComboBox>(*window, "Anzahl");
    driver.Close(u"EinstellungenFm"_s);
    Trigger(u"acShowConfig"_s);
    driver.Expect(u"EinstellungenFm"_s, [&](QWidget& shown) {
        driver.Enter(u"LineDialog"_s, u"LineEdit"_s, u"Laden"_s);
        ClickButton(shown, "btnNew");
        Child<QComboBox>(shown, "ImageCount").setCurrentIndex(6);
        shown.close();
    });
    Trigger(u"acShowConfig"_s);
    settings.AktivateProfileByName(u"Standard Profile"_s, false);
    EXPECT_EQ(count.currentIndex(), 0);

    driver.Press(u"ProfileDlgFM"_s, u"btnCancel"_s);
    Trigger(u"acOpenWithProfile"_s);
    EXPECT_EQ(count.currentIndex(), 0);
    driver.Expect(u"ProfileDlgFM"_s, [](QWidget& shown) {
        Child<QListWidget>(shown, "ProfileListBox").setCurrentRow(1);
        ClickButton(shown, "btnOK");
    });
    driver.Close(u"OpenDialog"_s);
    Trigger(u"acOpenWithProfile"_s);
    EXPECT_EQ(count.currentIndex(), 6) << "the chosen profile stays active";
    driver.Close(u"OpenDialog"_s);
    Trigger(u"acOpen"_s);
    EXPECT_EQ(count.currentIndex(), 0);
}

TEST_F(Story, CtrlAndSpacePanWhileHeld) {
    using Interaction = imaging::view::ImageView::Interaction;
    Open("photo.png");
    imaging::view::ImageView& view = window->View();
    const imaging::view::ImageView::Interactions both{Interaction::Zoom, Interaction::Pan};
    EXPECT_EQ(view.CurrentInteraction(), both);
    for (const Qt::Key key : {Qt::Key_Control, Qt::Key_Space}) {
        QTest::keyPress(&view, key);
        EXPECT_EQ(view.CurrentInteraction(), Interaction::Pan);
        QTest::keyPress(&view, Qt::Key_Control);
        const QRect before = Template();
        Drag(view, {OnScreen({100, 100}), OnScreen({200, 200})});
        EXPECT_EQ(Template(), before);
        QTest::keyRelease(&view, key);
        EXPECT_EQ(view.CurrentInteraction(), both);
    }
    QTest::keyPress(&view, Qt::Key_Control);
    QFocusEvent leaving(QEvent::FocusOut);
    QCoreApplication::sendEvent(&view, &leaving);
    EXPECT_EQ(view.CurrentInteraction(), both) << "the key is let go elsewhere";
}

TEST_F(Story, ASecondStartRestoresTheWindowAndTheCounter) {
    window.reset();
    platform::WriteRegistryInteger(u"DBCount"_s, 41);
    Start();
    window->move(30, 40);
    window->resize(790, 690);
    const core::LayoutFile stored(installation.Path("common/Kadrona"));
    EXPECT_TRUE(QTest::qWaitFor([&] {
        return stored.Read(u"mainFm"_s) == QRect(30, 40, 790, 690);
    })) << "the display may go without a word";
    window->close();
    Start();
    EXPECT_EQ(window->pos(), QPoint(30, 40));
    EXPECT_EQ(window->size(), QSize(790, 690));
    EXPECT_FALSE(window->isMaximized());
    platform::WriteRegistryInteger(u"DBCount"_s, 0);
    window.reset();
    EXPECT_EQ(platform::ReadRegistryInteger(u"DBCount"_s), 41) << "written back as it was read";
    Start();
    const QString registry = platform::RegistryFolder();
    ASSERT_TRUE(QFile::rename(registry, registry + u" weg"_s));
    platform::WriteFileAtomically(registry, QByteArray("no folder"));
    window.reset();  // and not a word
    ASSERT_TRUE(QFile::remove(registry) && QFile::rename(registry + u" weg"_s, registry));

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
    installation.Write("common/Kadrona/kdr.ini",
                       "[mainFm]\nPosX=300\nPosY=200\nWidth=1600\nHeight=675\n");
    Start();  // it was saved on a larger screen
    EXPECT_TRUE(window->screen()->availableGeometry().contains(window->frameGeometry()));
}

TEST_F(Story, TheStatusBarNamesTheTemplateAndItsLinkTheMaker) {
    Open("photo.png", 1);
    EXPECT_EQ(Child<QLabel>(*window, "TemplateName").text(), u"USA"_s);
    EXPECT_EQ(window->View().accessibleDescription(), u"Schablone: USA"_s);
    driver.Press(u"fmAbout"_s, u"btnOk"_s);
    ClickButton(*window, "StatusPanel2");
    QDir().mkpath(installation.Path("bilder"));
    Setting<QLineEdit>("ImageDestinationDir").setText(installation.Path("bilder"));
    driver.Expect(u"fmAbout"_s, [this](QWidget& shown) {
        EXPECT_TRUE(Child<QLabel>(shown, "Folders").text().contains(installation.Path("bilder")));
        ClickButton(shown, "btnOk");
    });
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
        Child<QListWidget>(shown, "lbSchablonen").setCurrentRow(1);
        ClickButton(shown, "btnOk");
    });
    window->OpenDroppedFiles({installation.Path("photo.png")});
    EXPECT_EQ(Image().LayerCount(), 1);
    EXPECT_FALSE(IsEnabled(u"acCrop"_s));
}

TEST_F(Story, RemembersOpenedPhotosUntilTheListIsClearedOrSwitchedOff) {
    SavePhoto("second.png", QSize(800, 1000), 200);
    Open("photo.png");
    Open("second.png");
    Open("photo.png");
    Start();
    auto& strip = Child<controls::PhotoStrip>(*window, "RecentStrip");
    ASSERT_EQ(strip.count(), 2);
    EXPECT_LT(window->minimumSizeHint().height(), 356) << "half of 1366 x 768 with a frame";
    EXPECT_EQ(strip.item(1)->toolTip(), controls::PlainTip(installation.Path("second.png")));
    EXPECT_EQ(strip.item(1)->icon().pixmap(96).toImage().pixelColor(40, 40), QColor(200, 200, 200));
    ExpectTemplate();
    Q_EMIT strip.itemClicked(strip.item(1));
    EXPECT_EQ(window->Session().FileName(), installation.Path("second.png"));

    const auto choose = [this](const char* entry) {
        auto& menu = Child<QMenu>(*window, "RecentMenu");
        Q_EMIT menu.aboutToShow();
        Child<QAction>(menu, entry).trigger();
    };
    platform::WriteRegistryText(u"OpenFolder"_s, u"/customer"_s);
    core::RecentPhotos otherWindow;
    choose("acRecentClear");
    EXPECT_EQ(strip.count(), 0);
    EXPECT_EQ(platform::ReadRegistryText(u"OpenFolder"_s), QString());
    otherWindow.Add({u"/third.png"_s, {}});
    EXPECT_EQ(otherWindow.Photos().size(), 1) << "what was cleared stays so";
    choose("acRecentKeep");
    Open("photo.png");
    Start();
    EXPECT_EQ(Child<controls::PhotoStrip>(*window, "RecentStrip").count(), 0);
}

}  // namespace kadrona::testing
