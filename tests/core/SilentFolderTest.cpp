// An archive on a share that hangs: every look at it waits for ever.

#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

#include <QElapsedTimer>
#include <QFile>
#include <csignal>
#include <cstring>

#include "core/archive/ArchiveCheck.h"
#include "platform/AtomicFile.h"
#include "platform/FolderProbe.h"
#include "platform/FolderWatch.h"
#include "platform/SilenceWatch.h"
#include "tests/core/ArchiveFixture.h"
#include "tests/support/Errors.h"

namespace {

/// Empty while all folders answer.
QByteArray silent;  // NOLINT(cert-err58-cpp)
/// The program's, which whoever waits must not have inherited.
int handle = -1;
/// How long flushing a file takes.
unsigned flushMicroseconds = 0;

}  // namespace

extern "C" int WaitingStatfs(const char* path, void* disk) __asm__("statfs");
extern "C" int WaitingStatfs(const char* path, void* disk) {
    static auto* const real =
        reinterpret_cast<decltype(&WaitingStatfs)>(dlsym(RTLD_NEXT, "statfs"));
    while (!silent.isEmpty() && std::strcmp(path, silent.constData()) == 0 &&
           fcntl(handle, F_GETFD) < 0) {
        pause();
    }
    return real(path, disk);
}

extern "C" int SlowFsync(int file) __asm__("fsync");
extern "C" int SlowFsync(int file) {
    static auto* const real = reinterpret_cast<decltype(&SlowFsync)>(dlsym(RTLD_NEXT, "fsync"));
    usleep(flushMicroseconds);
    return real(file);
}

namespace kadrona::testing {

class SilentFolder : public Archive {
 protected:
    SilentFolder() { handle = dup(STDERR_FILENO); }
    ~SilentFolder() override {
        silent.clear();
        close(handle);
    }
    void FallSilent() {
        silent = QFile::encodeName(archiveFolder);
        since_.start();
    }
    void ExpectWord(const std::function<void()>& operation) const {
        EXPECT_TRUE(TextOf<platform::FileError>(operation).contains(u"antwortet nicht"_s));
        EXPECT_LT(since_.elapsed(), 2000);
    }

 private:
    QElapsedTimer since_;
};

TEST_F(SilentFolder, IsToldInsteadOfWaitedFor) {
    File(u"a\r\n"_s);
    FallSilent();
    ExpectWord([&] { File(u"b\r\n"_s); });
    EXPECT_EQ(Table().Ids().size(), 1U) << "not even an empty record";

    silent.clear();
    core::CheckArchive(data.ArchiveDatabase(), archiveFolder, platform::NoProgress);
    ExpectWord([&] {
        core::CheckArchive(data.ArchiveDatabase(), archiveFolder,
                           [&](const QString&, qint64, qint64) {
                               usleep(600'000);
                               FallSilent();
                           });
    });
}

TEST_F(SilentFolder, IsToldInTheMidstOfAFileToo) {
    File(u"a\r\n"_s);
    installation.Write("teller", "#!/bin/sh\necho \"$3\" >\"$0.told\"\n");
    QFile::setPermissions(installation.Path("teller"), QFile::ReadOwner | QFile::ExeOwner);
    platform::SilenceWatch::SetTeller(installation.Path("teller"));
    flushMicroseconds = 1'600'000;
    const auto told = [&] {
        return platform::ReadWholeFile(installation.Path("teller.told"), 1000);
    };
    File(u"b\r\n"_s);
    EXPECT_TRUE(told().contains(archiveFolder.toUtf8()));
    platform::WriteFileAtomically(installation.Path("a file"), "x");
    EXPECT_TRUE(told().contains("a file")) << told().toStdString();
    flushMicroseconds = 0;
    platform::SilenceWatch::SetTeller({});
    EXPECT_EQ(Table().Ids().size(), 2U);
}

TEST_F(SilentFolder, IsWatchedWithoutWaitingForIt) {
    platform::WriteFileAtomically(archiveFolder + u"/new.jpg"_s, "photo");
    platform::FolderWatch watch(archiveFolder, {u"*.jpg"_s});
    watch.Look();
    watch.Look();
    EXPECT_EQ(watch.Files().size(), 1);
    FallSilent();
    watch.Look();
    EXPECT_EQ(watch.Files().size(), 0);
    silent.clear();
    watch.Look();
    watch.Look();
    EXPECT_EQ(watch.Files().size(), 1);
    EXPECT_EQ(watch.TakeArrived(), QStringList()) << "not new because the share was away";
}

TEST_F(SilentFolder, IsToldFromAMissingOneWhereNoProcessTellsItsEnd) {
    auto* const before = std::signal(SIGCHLD, SIG_IGN);
    EXPECT_EQ(platform::LookAtFolder(archiveFolder), platform::FolderState::There);
    EXPECT_EQ(platform::LookAtFolder(archiveFolder + u"-none"_s), platform::FolderState::Missing);
    std::signal(SIGCHLD, before);
}

}  // namespace kadrona::testing
