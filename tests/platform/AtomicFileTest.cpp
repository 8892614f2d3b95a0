#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <cerrno>
#include <memory>

#include "platform/AtomicFile.h"
#include "platform/Error.h"
#include "platform/Paths.h"
#include "platform/UniqueFile.h"
#include "tests/faults/FailingCalls.h"
#include "tests/support/Errors.h"
#include "tests/support/HostileFolders.h"

namespace kadrona::platform {
namespace {

using namespace Qt::StringLiterals;
using namespace kadrona::testing;

QStringList Names(const QString& folder) {
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System |
                                  QDir::NoDotAndDotDot);
}

/// Type and permissions of what stands under a name itself.
mode_t ModeOf(const QString& path) {
    struct stat status {};
    return lstat(QFile::encodeName(path).constData(), &status) == 0 ? status.st_mode : 0;
}

class AtomicFileTest : public ::testing::Test {
 protected:
    AtomicFileTest() { chmod(QFile::encodeName(root_.path()).constData(), 0755); }

    QString Folder() const { return root_.filePath(u"saved"_s); }
    QString Path() const { return Folder() + u"/Blatt.jpg"_s; }
    void WriteOld() const { WriteFileAtomically(Path(), "old"_ba); }

    QTemporaryDir root_;
    bool made_ = QDir().mkpath(Folder());
};

TEST_F(AtomicFileTest, AppearsOnlyOnCommit) {
    WriteOld();
    {
        AtomicFile abandoned(Path());
        abandoned.Device().write("new"_ba);
    }
    EXPECT_EQ(ReadWholeFile(Path(), 3), "old"_ba);
    AtomicFile file(Path());
    file.Device().write("new 1"_ba);
    EXPECT_EQ(ReadWholeFile(Path(), 3), "old"_ba);
    EXPECT_EQ(Names(Folder()), QStringList{u"Blatt.jpg"_s}) << "no name until it is whole";
    file.Commit();
    EXPECT_EQ(ReadWholeFile(Path(), 5), "new 1"_ba) << "of exactly that many bytes";
    EXPECT_THROW(ReadWholeFile(Path(), 4), FileError);
    EXPECT_EQ(Names(Folder()), QStringList{u"Blatt.jpg"_s});
}

/// Else a power cut could leave an empty file under the name, or the older one after all.
TEST_F(AtomicFileTest, IsOnTheDiskBeforeAndAfterItTakesItsPlace) {
    WriteOld();
    WriteOld();  // the first replacement also looks for what was left behind
    const QByteArray folder = QFile::encodeName(Folder());
    StartFailing(folder, {});
    WriteFileAtomically(Path(), "new"_ba);
    const QByteArrayList calls = StopFailing();
    const qsizetype flush = calls.indexOf("fsync");
    EXPECT_GT(flush, calls.lastIndexOf("write"));
    EXPECT_GT(calls.indexOf("rename"), flush);
    EXPECT_GT(calls.lastIndexOf("fsync"), calls.indexOf("rename")) << "the folder's";

    StartFailing(folder, {2, EIO, false, "fsync"});
    const QString error = TextOf<FileError>([&] { WriteFileAtomically(Path(), "newer"_ba); });
    StopFailing();
    EXPECT_TRUE(error.endsWith(u"Ein- oder Ausgabefehler."_s)) << error.toStdString();
    EXPECT_EQ(ReadWholeFile(Path(), 5), "newer"_ba) << "whole all the same";
}

TEST_F(AtomicFileTest, RemovesWhatAKilledProgramLeftADayAgo) {
    const auto leave = [this](const QString& name, int hours) {
        QFile file(Folder() + u'/' + name);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_TRUE(file.setFileTime(QDateTime::currentDateTime().addSecs(qint64{-3600} * hours),
                                     QFileDevice::FileModificationTime));
    };
    for (const QString& name : {u"kdr0.tmp"_s, u"kdr1A2B.tmp"_s, u"kdr12345.tmp"_s, u"kdr.tmp"_s,
                                u"kdrx.tmp"_s, u"pro1A2B.tmp"_s, u"kdr1A2B.tmp.jpg"_s}) {
        leave(name, 25);
    }
    leave(u"kdr1A2C.tmp"_s, 23);
    WriteOld();
    WriteFileAtomically(Path(), "new"_ba);
    EXPECT_EQ(Names(Folder()),
              QStringList({u"Blatt.jpg"_s, u"kdr.tmp"_s, u"kdr12345.tmp"_s, u"kdr1A2B.tmp.jpg"_s,
                           u"kdr1A2C.tmp"_s, u"kdrx.tmp"_s, u"pro1A2B.tmp"_s}));
}

TEST_F(AtomicFileTest, KeepsPermissionsAndTakesTheLongestName) {
    const QString path = Folder() + u'/' + QString(255, u'n');
    WriteFileAtomically(path, "old"_ba);
    EXPECT_EQ(ModeOf(path), S_IFREG | 0600U) << "faces and names are the user's alone";
    chmod(QFile::encodeName(path).constData(), 0604);
    WriteFileAtomically(path, "new"_ba);
    EXPECT_EQ(ReadWholeFile(path, 3), "new"_ba);
    EXPECT_EQ(ModeOf(path), S_IFREG | 0604U);
}

/// Two accounts of a group in a folder that their group shares, whatever their masks.
TEST_F(AtomicFileTest, AFolderWithTheSetGroupBitIsShared) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "no right to become two users";
    }
    constexpr gid_t Group = 4242;
    const QByteArray folder = QFile::encodeName(Folder());
    ASSERT_EQ(chown(folder.constData(), 0, Group), 0);
    chmod(folder.constData(), 02770);
    const QString below = Folder() + u"/Database"_s;
    const mode_t mask = umask(077);
    {
        const WithoutPrivileges first(1001, Group);
        WriteOld();
        EXPECT_TRUE(CreateFolder(below));
        CreateUniqueFile(below, u"pro"_s);
    }
    {
        const WithoutPrivileges second(1002, Group);
        EXPECT_EQ(ReadWholeFile(Path(), 3), "old"_ba);
        WriteFileAtomically(Path(), "new"_ba);
        WriteFileAtomically(below + u"/file"_s, "new"_ba);
    }
    umask(mask);
    EXPECT_EQ(ModeOf(Path()), S_IFREG | 0660U);
    EXPECT_EQ(ModeOf(below), S_IFDIR | 02770U);
    EXPECT_EQ(ModeOf(below + u'/' + Names(below).last()), S_IFREG | 0660U);
    EXPECT_EQ(QFileInfo(Path()).groupId(), Group);
}

TEST_F(AtomicFileTest, WhichLinksAreFollowed) {
    WriteOld();
    const QString link = root_.filePath(u"link"_s);
    ASSERT_TRUE(QFile::link(Path(), link));
    WriteFileAtomically(link, "new"_ba, Links::Own);
    EXPECT_EQ(ReadWholeFile(Path(), 3), "new"_ba) << "the user's own";
    EXPECT_TRUE(QFileInfo(link).isSymLink());

    const QString folderLink = root_.filePath(u"folder"_s);
    ASSERT_TRUE(QFile::link(Folder(), folderLink));
    if (geteuid() != 0) {
        GTEST_SKIP() << "no right to give a link away";
    }
    const QString dangling = root_.filePath(u"dangling"_s);
    ASSERT_TRUE(QFile::link(u"saved/none"_s, dangling));
    for (const QString& planted : {link, folderLink, dangling}) {
        ASSERT_EQ(lchown(QFile::encodeName(planted).constData(), 1001, 1001), 0);
        const QString path = planted == folderLink ? planted + u"/Blatt.jpg"_s : planted;
        const QString reason =
            u"„%1“ ist eine Verknüpfung, die einem anderen Benutzer gehört."_s.arg(planted);
        EXPECT_TRUE(
            TextOf([&] { WriteFileAtomically(path, "x"_ba, Links::Own); }).endsWith(reason));
        EXPECT_TRUE(TextOf([&] { ReadFileIfThere(path, 9, Links::Own); }).endsWith(reason));
        EXPECT_EQ(ReadWholeFile(Path(), 3), "new"_ba);
        EXPECT_FALSE(QFile::exists(Folder() + u"/none"_s));
        WriteFileAtomically(path, "new"_ba, Links::All);
    }
    EXPECT_EQ(ReadWholeFile(Folder() + u"/none"_s, 3), "new"_ba) << "chosen, so followed";
}

TEST_F(AtomicFileTest, OnlyWhatIsNotThereReadsAsNothing) {
    WriteOld();
    EXPECT_EQ(ReadFileIfThere(Folder() + u"/none"_s, 3), std::nullopt);
    const auto error = [](const QString& path) {
        return TextOf<FileError>([&] { ReadFileIfThere(path, 3); });
    };
    const QString pipe = Folder() + u"/pipe"_s;
    ASSERT_EQ(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    for (const auto& [path, reason] : {std::pair(pipe, u"Es ist keine gewöhnliche Datei"_s),
                                       std::pair(Folder(), u"Es ist ein Ordner"_s)}) {
        EXPECT_EQ(error(path),
                  u"Die Datei „%1“ konnte nicht gelesen werden: %2."_s.arg(path, reason));
    }
    EXPECT_TRUE(error(Path() + u"/a"_s).endsWith(u"Ein Teil des Pfades ist kein Ordner."_s));
    const ClosedFolder closed(Folder(), 0);
    EXPECT_TRUE(error(Folder() + u"/none"_s).endsWith(u"Der Zugriff wurde verweigert."_s));
}

TEST_F(AtomicFileTest, WorksWhereTheFileSystemKnowsNoFilesWithoutAName) {
    WriteOld();
    for (const QByteArray& content : {"new"_ba, QByteArray()}) {
        StartFailing(QFile::encodeName(Folder()), {1, EOPNOTSUPP, false, "open"});
        AtomicFile file(Path());
        StopFailing();
        file.Device().write(content);
        EXPECT_TRUE(Names(Folder()).last().contains(QRegularExpression(u"^kdr.*\\.tmp$"_s)));
        if (!content.isEmpty()) {  // else it is given up
            file.Commit();
        }
    }
    EXPECT_EQ(ReadWholeFile(Path(), 3), "new"_ba);
    EXPECT_EQ(Names(Folder()), QStringList{u"Blatt.jpg"_s});
}

/// Keeps a target bad while it lives.
using Obstacle = std::unique_ptr<ClosedFolder>;

struct BadTarget {
    const char* name;
    QString reason;
    QString file;  // below the folder
    /// A system call that fails, as on file systems that no test can have.
    Fault fault = {};
    /// `folder` holds "Blatt.jpg" with the content "old", which has to stay.
    Obstacle (*makeBad)(const QString& folder) = [](const QString&) { return Obstacle(); };
};

Obstacle ReadOnlyFile(const QString& folder) {
    QFile::setPermissions(folder + u"/Blatt.jpg"_s, QFileDevice::ReadOwner);
    return {};
}

Obstacle Pipe(const QString& folder) {
    mkfifo(QFile::encodeName(folder + u"/pipe"_s).constData(), 0600);
    return {};
}

Obstacle Closed(const QString& folder) {
    chmod(QFile::encodeName(folder + u"/Blatt.jpg"_s).constData(), 0644);
    return std::make_unique<ClosedFolder>(folder, 0555);
}

const QString Blatt = u"Blatt.jpg"_s;
const QString NotAllowed = u"Der Name enthält Zeichen, die hier nicht erlaubt sind"_s;

const BadTarget Targets[] = {
    {"no folder", u"Die Datei oder der Ordner ist nicht vorhanden"_s, u"fehlt/a.jpg"_s},
    {"the folder is a file", u"Ein Teil des Pfades ist kein Ordner"_s, u"Blatt.jpg/a.jpg"_s},
    {"the name is a folder", u"Unter diesem Namen gibt es einen Ordner"_s,
     u"../the name is a folder"_s},
    {"long name", u"Der Name ist zu lang"_s, QString(300, u'n')},
    {"zero in the name", NotAllowed, u"a%1b"_s.arg(QChar(QChar::Null))},
    {"name on a stick", NotAllowed, u"a:b.jpg"_s, {1, EINVAL, true, "linkat"}},
    {"immutable file", u"Der Zugriff wurde verweigert"_s, Blatt, {1, EPERM, true, "rename"}},
    {"read-only medium",
     u"Der Datenträger ist schreibgeschützt"_s,
     Blatt,
     {1, EROFS, true, "open"}},
    {"full disk", u"Auf dem Datenträger ist kein Platz mehr"_s, Blatt, {1, ENOSPC, true, "write"}},
    {"size limit", u"Die Datei würde zu groß"_s, Blatt, {1, EFBIG, true, "write"}},
    {"read-only file", u"Die Datei ist schreibgeschützt"_s, Blatt, {}, ReadOnlyFile},
    {"closed folder", u"Der Zugriff wurde verweigert"_s, Blatt, {}, Closed},
    {"pipe", u"Es ist keine gewöhnliche Datei"_s, u"pipe"_s, {}, Pipe},
};

TEST_F(AtomicFileTest, ABadTargetLeavesTheOldFileAndNothingElseAndNamesTheReason) {
    const QByteArray big(1'000'000, 'x');
    for (const BadTarget& target : Targets) {
        SCOPED_TRACE(target.name);
        const QString folder = root_.filePath(QLatin1StringView(target.name));
        ASSERT_TRUE(QDir().mkpath(folder));
        WriteFileAtomically(folder + u'/' + Blatt, "old"_ba);
        const Obstacle obstacle = target.makeBad(folder);
        const QStringList before = Names(folder);
        const QString path = folder + u'/' + target.file;
        const mode_t mode = ModeOf(path);
        const QString expected = u"Die Datei „%1“ konnte nicht geschrieben werden: %2."_s.arg(
            QString(path).replace(QChar::Null, QChar::ReplacementCharacter), target.reason);
        for (const int piece : {1'000'000, 1000}) {
            StartFailing(QFile::encodeName(folder), target.fault);
            const QString error = TextOf<FileError>([&] {
                AtomicFile file(path);
                for (int i = 0; i < big.size(); i += piece) {
                    file.Device().write(big.sliced(i, piece));
                }
                file.Commit();
            });
            StopFailing();
            EXPECT_EQ(error, expected) << piece;
        }
        EXPECT_EQ(ReadWholeFile(folder + u'/' + Blatt, 100), "old"_ba);
        EXPECT_EQ(Names(folder), before);
        EXPECT_EQ(ModeOf(path), mode);
    }
}

}  // namespace
}  // namespace kadrona::platform
