// The archive window over 100,000 records (or as many as the argument says): how long it takes from
// the call to the first painted cards, and how long a frame takes while it is scrolled. In a window
// of 1920 x 1080 pixels, in processor time, so that whatever else the machine does is left out.
// Beside a server (tests/store/with-server bench_archive_window) first over the file and then over
// the server, in time that passes: waiting for an answer counts.

#include "dialogs/archive/ArchiveWindow.h"

#include <QApplication>
#include <QDir>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTimer>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <functional>

#include "bench/ArchiveRecords.h"
#include "bench/SilentInterface.h"
#include "controls/cards/CardGrid.h"
#include "controls/fields/FindPanel.h"
#include "controls/theme/Theme.h"
#include "core/Data.h"
#include "dialogs/archive/ImageTags.h"
#include "store/sqlite/SqliteDatabase.h"
#include "tests/support/TestServer.h"

using namespace Qt::StringLiterals;
using namespace kadrona;

namespace {

constexpr int Frames = 300;

double Now() {
    if (testing::OnServer()) {
        const std::chrono::duration<double, std::milli> passed =
            std::chrono::steady_clock::now().time_since_epoch();
        return passed.count();
    }
    return 1000.0 * static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

// Calls back once, after the watched widget was painted for the first time.
class FirstPaint : public QObject {
 public:
    FirstPaint(QWidget& widget, std::function<void()> painted) : painted_(std::move(painted)) {
        widget.installEventFilter(this);
    }

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Paint && painted_) {
            QTimer::singleShot(0, watched, std::exchange(painted_, {}));
        }
        return false;
    }

 private:
    std::function<void()> painted_;
};

void Report(const char* what, std::vector<double> times) {
    std::ranges::sort(times);
    std::printf("%-44s median %7.2f ms  worst %7.2f ms\n", what, times[times.size() / 2],
                times.back());
}

// A frame: `step` changes the window, which then paints at once what changed.
void MeasureFrames(const char* what, QWidget& window, const std::function<void(int)>& step) {
    std::vector<double> times;
    for (int frame = 0; frame < Frames; ++frame) {
        const double start = Now();
        step(frame);
        QEvent paint(QEvent::UpdateRequest);
        QCoreApplication::sendEvent(&window, &paint);
        times.push_back(Now() - start);
        QCoreApplication::processEvents();
    }
    Report(what, std::move(times));
}

void MeasureScrolling(dialogs::TfmImgSearch& window) {
    auto& grid = *window.findChild<controls::CardGrid*>();
    QScrollBar& bar = *grid.verticalScrollBar();
    MeasureFrames("frame, new cards at 24 pixels a frame", window,
                  [&](int) { bar.setValue(bar.value() + 24); });
    MeasureFrames("frame, new cards at 120 pixels a frame", window,
                  [&](int) { bar.setValue(bar.value() + 120); });
    MeasureFrames("frame, another place in the archive each", window,
                  [&](int frame) { bar.setValue(bar.maximum() / Frames * frame); });
    auto& find = *window.findChild<controls::FindPanel*>();
    const std::vector<QString> texts{u"großmann"_s, u"e"_s, u"kommtnichtvor"_s, {}};
    MeasureFrames("search and its first frame", window, [&](int frame) {
        find.SetText(texts[static_cast<size_t>(frame) % texts.size()]);
    });
}

void MeasureWindow(core::TData& data) {
    dialogs::TfmImageTagEdit tagEditor;
    dialogs::TfmImgSearch window(data, tagEditor);
    window.resize(1920, 1080);
    for (const char* what : {"window, first time", "window, again"}) {
        const bool again = qstrcmp(what, "window, again") == 0;
        const double start = Now();
        const FirstPaint paint(*window.findChild<controls::CardGrid*>()->viewport(), [&] {
            std::printf("%-44s        %7.2f ms\n", what, Now() - start);
            if (again) {
                MeasureScrolling(window);
            }
            window.reject();
        });
        window.ShowEx(u"/archive"_s);
    }
}

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    controls::ApplyTheme(application);
    const int count = argc > 1 ? std::atoi(argv[1]) : 100'000;
    const QTemporaryDir folder;
    const QString database = folder.filePath(u"Database"_s);
    QDir().mkpath(database);
    bench::MakeArchiveRecords(database, count);
    bench::SilentInterface ui;
    core::TData data(ui, {folder.path(), folder.path()});
    data.ConnectDB(database);
    data.CreateDB();
    std::printf("%d records\n", count);
    MeasureWindow(data);
    if (testing::OnServer()) {
        const store::ServerAddress server = testing::NewServerDatabase();
        store::SqliteDatabase source(database);
        const auto target = core::OpenServer(server, {.working = std::chrono::seconds(60)});
        core::TransferArchive(source, *target, platform::NoProgress);
        data.Archiving().Connect(server);
        std::printf("the same on a server\n");
        MeasureWindow(data);
    }
    return 0;
}
