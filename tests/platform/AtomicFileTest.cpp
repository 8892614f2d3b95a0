#include <gtest/gtest.h>

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "platform/AtomicFile.h"
#include "platform/Error.h"
#ifdef Q_OS_LINUX
#include "tests/support/FileSizeLimit.h"
#include "tests/support/HostileFolders.h"
#endif
#include <string>

namespace kadrona::platform {
namespace {

using namespace Qt::StringLiterals;

std::string WriteErrorText(const QString& path, const QString& reason) {
    return u"Die Datei „%1“ konnte nicht geschrieben werden: %2."_s.arg(path, reason).toStdString();
}

template <typename Action>
std::string ErrorText(Action action) {
    try {
        action();
    } catch (const FileError& error) {
        return error.what();
    }
    return "no error";
}

class AtomicFileTest : public ::testing::Test {
 protected:
    QString Path() const { return folder_.filePath(u"Blatt.jpg"_s); }

    static QStringList Names(const QString& folder) {
        return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }

    /// Checks that writing 1 MB in each of two ways fails for `reason` and leaves the old content
    /// and nothing else.
    void ExpectOldFileAfterFailure(const QString& path, const QString& reason) const {
        const QByteArray big(1'000'000, 'x');
        const std::string expected = WriteErrorText(path, reason);
        EXPECT_EQ(ErrorText([&] { WriteFileAtomically(path, big); }), expected);
        EXPECT_EQ(ErrorText([&] {
                      AtomicFile file(path);
                      for (int i = 0; i < big.size(); i += 1000) {
                          file.Device().write(big.sliced(i, 1000));
                      }
                      file.Commit();
                  }),
                  expected);
        EXPECT_EQ(ReadWholeFile(path, 100), "old"_ba);
        EXPECT_EQ(Names(QFileInfo(path).path()), QStringList{u"Blatt.jpg"_s});
    }

    QTemporaryDir folder_;
};

TEST_F(AtomicFileTest, AppearsOnlyOnCommit) {
    WriteFileAtomically(Path(), "old"_ba);
    {
        AtomicFile abandoned(Path());
        abandoned.Device().write("new"_ba);
    }
    EXPECT_EQ(ReadWholeFile(Path(), 3), "old"_ba);
    AtomicFile file(Path());
    file.Device().write("new 1"_ba);
    EXPECT_EQ(ReadWholeFile(Path(), 3), "old"_ba);
    file.Commit();
    EXPECT_EQ(ReadWholeFile(Path(), 5), "new 1"_ba);
    EXPECT_EQ(Names(folder_.path()), QStringList{u"Blatt.jpg"_s});
}

TEST_F(AtomicFileTest, RemovesWhatAKilledProgramLeftADayAgo) {
    const auto leave = [this](const QString& name, int hours) {
        QFile file(folder_.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_TRUE(file.setFileTime(QDateTime::currentDateTime().addSecs(-3600 * hours),
                                     QFileDevice::FileModificationTime));
    };
    for (const QString& name : {u"kdr0.tmp"_s, u"kdr1A2B.tmp"_s, u"kdr12345.tmp"_s, u"kdr.tmp"_s,
                                u"kdrx.tmp"_s, u"pro1A2B.tmp"_s, u"kdr1A2B.tmp.jpg"_s}) {
        leave(name, 25);
    }
    leave(u"kdr1A2C.tmp"_s, 23);
    WriteFileAtomically(Path(), "old"_ba);
    WriteFileAtomically(Path(), "new"_ba);
    EXPECT_EQ(Names(folder_.path()),
              QStringList({u"Blatt.jpg"_s, u"kdr.tmp"_s, u"kdr12345.tmp"_s, u"kdr1A2B.tmp.jpg"_s,
                           u"kdr1A2C.tmp"_s, u"kdrx.tmp"_s, u"pro1A2B.tmp"_s}));
}

TEST_F(AtomicFileTest, NamesTheReasonOfAFailure) {
    const QString missing = folder_.filePath(u"fehlt/a.jpg"_s);
    const QString name = folder_.filePath(QString(300, u'n'));
    const std::pair<QString, QString> cases[] = {
        {missing, u"Die Datei oder der Ordner ist nicht vorhanden"_s},
        {folder_.path(), u"Unter diesem Namen gibt es einen Ordner"_s},
        {name, u"Der Name ist zu lang"_s},
    };
    for (const auto& [path, reason] : cases) {
        EXPECT_EQ(ErrorText([&] { WriteFileAtomically(path, "x"_ba); }),
                  WriteErrorText(path, reason));
    }
    const QString zero = folder_.filePath(u"a%1b"_s.arg(QChar(QChar::Null)));
    EXPECT_EQ(ErrorText([&] { WriteFileAtomically(zero, "x"_ba); }),
              WriteErrorText(folder_.filePath(u"a\uFFFDb"_s),
                             u"Der Name enthält Zeichen, die hier nicht erlaubt sind"_s));
    EXPECT_EQ(ErrorText([&] { ReadWholeFile(missing, 1); }),
              u"Die Datei „%1“ konnte nicht gelesen werden: Die Datei oder der Ordner ist nicht "
              u"vorhanden."_s.arg(missing)
                  .toStdString());
    EXPECT_TRUE(Names(folder_.path()).isEmpty());
}

TEST_F(AtomicFileTest, LeavesAReadOnlyFile) {
    WriteFileAtomically(Path(), "old"_ba);
    QFile::setPermissions(Path(), QFileDevice::ReadOwner);
    EXPECT_EQ(ErrorText([&] { WriteFileAtomically(Path(), "new"_ba); }),
              WriteErrorText(Path(), u"Die Datei ist schreibgeschützt"_s));
    EXPECT_EQ(ReadWholeFile(Path(), 3), "old"_ba);
}

#ifdef Q_OS_LINUX

TEST_F(AtomicFileTest, WritesThroughALink) {
    WriteFileAtomically(Path(), "old"_ba);
    const QString link = folder_.filePath(u"link"_s);
    ASSERT_TRUE(QFile::link(Path(), link));
    WriteFileAtomically(link, "new"_ba);
    EXPECT_EQ(ReadWholeFile(Path(), 3), "new"_ba);
    EXPECT_TRUE(QFileInfo(link).isSymLink());
}

TEST_F(AtomicFileTest, HasNoNameUntilItIsWhole) {
    AtomicFile file(Path());
    file.Device().write("new"_ba);
    EXPECT_EQ(Names(folder_.path()), QStringList());
    file.Commit();
    EXPECT_EQ(Names(folder_.path()), QStringList{u"Blatt.jpg"_s});
}

TEST_F(AtomicFileTest, KeepsPermissionsAndTakesTheLongestName) {
    const QString path = folder_.filePath(QString(255, u'n'));
    WriteFileAtomically(path, "old"_ba);
    const auto permissions =
        QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ReadOther;
    QFile::setPermissions(path, permissions);
    WriteFileAtomically(path, "new"_ba);
    EXPECT_EQ(ReadWholeFile(path, 3), "new"_ba);
    // Qt also tells what the user who asks may do.
    EXPECT_EQ(QFile::permissions(path) & QFileDevice::Permissions(0x7077), permissions);
}

TEST_F(AtomicFileTest, KeepsTheOldFileWhenAWriteIsCutShort) {
    WriteFileAtomically(Path(), "old"_ba);
    const kadrona::testing::FileSizeLimit limit(100'000);
    ExpectOldFileAfterFailure(Path(), u"Die Datei würde zu groß"_s);
}

TEST_F(AtomicFileTest, KeepsTheOldFileWhenTheDiskIsFull) {
    const kadrona::testing::SmallDisk disk(folder_.filePath(u"disk"_s), "200k");
    if (!disk.Succeeded()) {
        GTEST_SKIP() << "no right to mount a small file system";
    }
    const QString path = folder_.filePath(u"disk/Blatt.jpg"_s);
    WriteFileAtomically(path, "old"_ba);
    ExpectOldFileAfterFailure(path, u"Auf dem Datenträger ist kein Platz mehr"_s);
}

TEST_F(AtomicFileTest, WorksWhereTheFileSystemKnowsNoFilesWithoutAName) {
    const QString stick = folder_.filePath(u"stick"_s);
    const kadrona::testing::MemoryStick mounted(stick, folder_.filePath(u"image"_s));
    if (!mounted.Succeeded()) {
        GTEST_SKIP() << "no ntfs-3g, or no right to mount";
    }
    const QString path = stick + u"/Blatt.jpg"_s;
    WriteFileAtomically(path, "old"_ba);
    {
        AtomicFile abandoned(path);
        abandoned.Device().write("new"_ba);
        const QStringList names = Names(stick);
        ASSERT_EQ(names.size(), 2);
        EXPECT_TRUE(names.last().startsWith(u"kdr"_s) && names.last().endsWith(u".tmp"_s));
    }
    EXPECT_EQ(ReadWholeFile(path, 3), "old"_ba);
    WriteFileAtomically(path, "new"_ba);
    EXPECT_EQ(ReadWholeFile(path, 3), "new"_ba);

    const QString refused = stick + u"/a:b.jpg"_s;
    EXPECT_EQ(ErrorText([&] { WriteFileAtomically(refused, "x"_ba); }),
              WriteErrorText(refused, u"Der Name enthält Zeichen, die hier nicht erlaubt sind"_s));
    EXPECT_EQ(Names(stick), QStringList{u"Blatt.jpg"_s});
}

#endif

}  // namespace
}  // namespace kadrona::platform
