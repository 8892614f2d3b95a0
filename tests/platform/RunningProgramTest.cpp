#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>
#include <atomic>
#include <memory>
#include <thread>

#include "platform/RunningProgram.h"

namespace kadrona::platform {

using namespace Qt::StringLiterals;
using Role = RunningProgram::Role;

TEST(RunningProgram, TheFirstGetsWhatLaterStartsAreAskedAndAnotherFollowsIt) {
    QTemporaryDir folder;
    qputenv("XDG_RUNTIME_DIR", QFile::encodeName(folder.path()));
    QByteArrayList requests;
    auto first = std::make_unique<RunningProgram>();
    EXPECT_EQ(first->Start(u"here"_s, {}), Role::First);
    first->Listen();
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
    EXPECT_EQ(requests, QByteArrayList{"a photo"});
    EXPECT_EQ(RunningProgram().Start(u"elsewhere"_s, {}), Role::First);
    first.reset();
    EXPECT_EQ(RunningProgram().Start(u"here"_s, {}), Role::First);
    // Where others could take the first one's place nobody is asked.
    QFile::setPermissions(folder.path(), QFile::Permissions(0x7777));
    EXPECT_EQ(RunningProgram().Start(u"here"_s, {}), Role::Alone);
}

}  // namespace kadrona::platform
