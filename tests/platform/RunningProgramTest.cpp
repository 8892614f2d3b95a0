#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <algorithm>
#include <atomic>
#include <memory>
#include <thread>
#include <vector>

#include "platform/AtomicFile.h"
#include "platform/RunningProgram.h"
#include "platform/StandingWindows.h"

namespace kadrona::platform {

using namespace Qt::StringLiterals;
using Role = RunningProgram::Role;

namespace {

/// As a start whose patience is at its end.
void LeaveWithoutWaiting(const QString& folder, const QByteArray& request) {
    const QString name = QDir(folder).entryList({u"*.socket"_s}, QDir::System).value(0);
    const QByteArray path = QFile::encodeName(folder + u'/' + name);
    sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
    std::ranges::copy(path, std::begin(address.sun_path));
    const int connection = socket(AF_UNIX, SOCK_SEQPACKET, 0);
    ASSERT_EQ(connect(connection, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    ASSERT_EQ(send(connection, request.constData(), size_t(request.size()), 0), request.size());
    close(connection);
}

}  // namespace

TEST(StandingWindows, AreThoseOfOtherProgramsThatRun) {
    QTemporaryDir folder;
    qputenv("XDG_RUNTIME_DIR", QFile::encodeName(folder.path()));
    const QString killed = folder.filePath(u"kadrona-window-2147483647"_s);
    WriteFileAtomically(killed, "1 2");
    WriteFileAtomically(folder.filePath(u"kadrona-window-1"_s), "300 -40");
    {
        StandingWindows windows;
        windows.Tell({5, 6});
        EXPECT_EQ(windows.Others(), std::vector<QPoint>({{300, -40}}));
        EXPECT_FALSE(QFile::exists(killed));
    }
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files).size(), 1) << "its own is taken back";
}

TEST(RunningProgram, TheFirstGetsWhatLaterStartsAreAskedAndAnotherFollowsIt) {
    QTemporaryDir folder;
    qputenv("XDG_RUNTIME_DIR", QFile::encodeName(folder.path()));
    QByteArrayList requests;
    auto first = std::make_unique<RunningProgram>();
    EXPECT_EQ(first->Start(u"here"_s, {}), Role::First);
    first->Listen([](const QByteArray& request) { return request != "another form"; });
    QObject::connect(first.get(), &RunningProgram::Requested,
                     [&requests](const QByteArray& request) { requests += request; });
    // The first one's event loop runs meanwhile, as in a program of its own.
    const auto later = [](const QByteArray& request) {
        std::atomic<bool> ended = false;
        Role role = Role::First;
        std::thread thread([&] {
            role = RunningProgram().Start(u"here"_s, request);
            ended = true;
        });
        while (!ended) {
            QCoreApplication::processEvents();
        }
        thread.join();
        QCoreApplication::processEvents();
        return role;
    };
    EXPECT_EQ(later("a photo"), Role::HandedOver);
    EXPECT_EQ(later({}), Role::Alone);
    EXPECT_EQ(later(QByteArray(RunningProgram::LongestRequest + 1, 'x')), Role::Alone);
    EXPECT_EQ(later("another form"), Role::Alone);
    LeaveWithoutWaiting(folder.path(), "given up");
    QCoreApplication::processEvents();
    QCoreApplication::processEvents();
    EXPECT_EQ(requests, QByteArrayList{"a photo"});
    EXPECT_EQ(RunningProgram().Start(u"elsewhere"_s, {}), Role::First);
    first.reset();
    EXPECT_EQ(RunningProgram().Start(u"here"_s, {}), Role::First);
    // Where others could take the first one's place nobody is asked.
    QFile::setPermissions(folder.path(), QFile::Permissions(0x7777));
    EXPECT_EQ(RunningProgram().Start(u"here"_s, {}), Role::Alone);
}

}  // namespace kadrona::platform
