// Files dragged with the mouse from another X11 client onto the main window.

#include <gtest/gtest.h>

#include <QListWidget>
#include <QProcess>
#include <QPushButton>
#include <QTest>

#include "app/MainWindow.h"
#include "imaging/view/ImageView.h"
#include "tests/support/CoreFakes.h"
#include "tests/support/ModalDriver.h"

using namespace Qt::StringLiterals;

namespace kadrona::testing {

struct DropCase {
    const char* offered;
    /// What the source is told. "Taken, but nothing done" reaches a source of our own toolkit as
    /// "copy"; what counts is that it is never "move".
    const char* answered;
};

class Drop : public ::testing::TestWithParam<DropCase> {
 protected:
    static void Xdotool(const QStringList& arguments) {
        QProcess process;
        process.start(u"xdotool"_s, arguments);
        // The window under test must answer while the mouse moves.
        while (process.state() != QProcess::NotRunning) {
            QTest::qWait(5);
        }
        ASSERT_EQ(process.exitCode(), 0) << arguments.join(u' ').toStdString();
    }

    static void MoveMouse(QPoint to) {
        Xdotool({u"mousemove"_s, QString::number(to.x()), QString::number(to.y())});
        QTest::qWait(30);
    }

    QString PhotoNamed(const char* name, int side) {
        QImage photo(side, side, QImage::Format_RGB32);
        photo.fill(Qt::gray);
        EXPECT_TRUE(photo.save(installation.Path(name)));
        return installation.Path(name);
    }

    Installation installation;
};

TEST_P(Drop, OpensTheFirstFileAndNeverLetsTheSourceDeleteIt) {
    const QStringList files{PhotoNamed("first.png", 500), PhotoNamed("second.png", 600)};
    app::TmainFm window(installation.Folders());
    window.CreateReusedWindows();
    window.move(300, 60);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    QProcess source;
    source.start(QStringLiteral(DRAG_SOURCE),
                 QStringList(QLatin1StringView(GetParam().offered)) + files);
    Xdotool({u"search"_s, u"--sync"_s, u"--onlyvisible"_s, u"--name"_s, u"Drag source"_s});
    ModalDriver driver;
    driver.Expect(u"SchabloneFm"_s, [](QWidget& shown) {
        shown.findChild<QListWidget*>(u"lbSchablonen"_s)->setCurrentRow(0);
        shown.findChild<QPushButton*>(u"btnOk"_s)->click();
    });

    const QPoint target = window.centralWidget()->mapToGlobal(QPoint(200, 200));
    MoveMouse({100, 140});
    Xdotool({u"mousedown"_s, u"1"_s});
    for (int step = 1; step <= 10; ++step) {
        MoveMouse(QPoint(100, 140) + (target - QPoint(100, 140)) * step / 10);
    }
    Xdotool({u"mouseup"_s, u"1"_s});
    QString done;
    EXPECT_TRUE(QTest::qWaitFor([&] {
        done += QString::fromUtf8(source.readAllStandardOutput());
        return done.endsWith(u'\n') && !window.View().Image().IsEmpty();
    }));
    EXPECT_EQ(done.trimmed(), QLatin1StringView(GetParam().answered));
    EXPECT_EQ(window.View().Image().Photo().Size(), QSize(500, 500));
    QTest::qWait(50);
    source.kill();
    source.waitForFinished();
}

INSTANTIATE_TEST_SUITE_P(Actions, Drop,
                         ::testing::Values(DropCase{"copy", "copy"}, DropCase{"link", "link"},
                                           DropCase{"move", "copy"}),
                         [](const auto& info) { return std::string(info.param.offered); });

}  // namespace kadrona::testing
