#include <unistd.h>

#include "core/archive/ArchiveBackup.h"
#include "core/archive/ArchiveFiles.h"
#include "core/archive/ArchiveRebuild.h"
#include "tests/core/ArchiveKeepingFixture.h"
#include "tests/support/Errors.h"

namespace kadrona::testing {

TEST_F(ArchiveKeeping, ABackupIsWholeTakesWhatChangedAndForgetsWhatWasDeleted) {
    const QString target = installation.Path("backup");
    QDir().mkpath(target);
    const auto backUp = [&] {
        return core::BackUpArchive(Database(), archiveFolder, target, platform::NoProgress);
    };
    const auto copy = [&](const char* name) {
        return target + u"/Archiv/2026/03/"_s + QLatin1StringView(name);
    };
    File(u"a\r\n"_s);
    File(u"b\r\n"_s);
    EXPECT_EQ(backUp().copied, 2);
    const QByteArray second = platform::ReadWholeFile(copy("2026_03_00002.jpg"), 1 << 20);
    EXPECT_EQ(second, platform::ReadWholeFile(Filed("2026_03_00002.jpg"), 1 << 20));

    File(u"c\r\n"_s);
    Delete({1});
    installation.Write("archive/2026/03/2026_03_00002.jpg", second.chopped(1) + "?");
    const core::Backup backup = backUp();
    EXPECT_EQ(backup.copied, 1);
    EXPECT_EQ(backup.removed, 1);
    EXPECT_EQ(backup.failures.size(), 1) << "a damaged photo does not replace the good one";
    EXPECT_EQ(platform::ReadWholeFile(copy("2026_03_00002.jpg"), 1 << 20), second);
    EXPECT_EQ(QDir(target + u"/Archiv/2026/03"_s).entryList(QDir::Files),
              QStringList({u"2026_03_00002.jpg"_s, u"2026_03_00003.jpg"_s}));

    // Given up after the database: the older one is still there.
    File(u"d\r\n"_s);
    const auto giveUp = [](const QString& what, qint64, qint64) {
        if (what.startsWith(u"Die Fotos")) {
            throw platform::Cancelled();
        }
    };
    EXPECT_THROW(core::BackUpArchive(Database(), archiveFolder, target, giveUp),
                 platform::Cancelled);
    EXPECT_EQ(QDir(target).entryList(QDir::Files),
              QStringList({u"KDRImageBase.db"_s, u"Sicherung.txt"_s}));
    store::SqliteDatabase copied(target);
    EXPECT_EQ(Column(copied, uR"(SELECT "ID" FROM "ImgDeleted")"_s), QStringList(u"1"_s));
    EXPECT_EQ(Column(copied, uR"(SELECT "ID" FROM "ImgDB" ORDER BY 1)"_s),
              QStringList({u"2"_s, u"3"_s}));
    EXPECT_EQ(DatabaseFault(copied), QString());

    QFile::remove(Filed("2026_03_00003.jpg"));
    EXPECT_EQ(backUp().failures.size(), 2) << "nor does a photo that is gone";

    installation.Write("full/letter.odt", "x");
    installation.Write("own/Archiv/letter.odt", "x");
    installation.Write("other/Sicherung.txt", "of another archive");
    const QString inUse = OnServer() ? archiveFolder : databaseFolder;
    for (const QString& wrong :
         {archiveFolder + u"/2026"_s, installation.Path(""), inUse, installation.Path("full"),
          installation.Path("own"), installation.Path("other"), installation.Path("none")}) {
        EXPECT_THROW(core::BackUpArchive(Database(), archiveFolder, wrong, platform::NoProgress),
                     platform::FileError)
            << wrong.toStdString();
    }

    // A stick that is pulled out leaves a folder of its name, which gets no photos.
    const auto pullOut = [&](const QString& what, qint64 done, qint64) {
        if (what.startsWith(u"Die Fotos") && done == 0) {
            QDir(target).removeRecursively();
            QDir().mkpath(target + u"/Archiv"_s);
        }
    };
    EXPECT_THROW(core::BackUpArchive(Database(), archiveFolder, target, pullOut),
                 platform::FileError);
    EXPECT_FALSE(QFile::exists(copy("2026_03_00003.jpg")));

    QDir(target).removeRecursively();
    QDir().mkpath(target);
    QDir(archiveFolder + u"/2026"_s).removeRecursively();
    EXPECT_THROW(backUp(), platform::FileError) << "its drive is not there";
}

TEST_F(ArchiveKeeping, NothingIsReadOrWrittenBehindAnotherUsersLink) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "no right to give a link away";
    }
    const QString elsewhere = installation.Path("elsewhere");
    const QString precious = elsewhere + u"/KDRImageBase.db"_s;
    installation.Write("elsewhere/KDRImageBase.db", "precious");
    const auto plant = [](const QString& to, const QString& path) {
        QDir(path).removeRecursively();
        QFile::remove(path);
        ASSERT_TRUE(QFile::link(to, path));
        ASSERT_EQ(lchown(QFile::encodeName(path).constData(), 1001, 1001), 0);
    };
    File(u"a\r\n"_s);
    const QString target = installation.Path("backup");
    struct Row {
        const char* name;
        QString to;
        bool isUsed;
    };
    for (const Row& row :
         {Row{"Sicherung.txt", elsewhere + u"/new"_s, true}, Row{"Archiv", elsewhere, true},
          Row{"Archiv/2026", elsewhere, true}, Row{"KDRImageBase.neu", elsewhere, OnServer()}}) {
        const QString planted = target + u'/' + QLatin1StringView(row.name);
        QDir().mkpath(target);
        const QString text = TextOf<platform::FileError>([&] {
            core::BackUpArchive(Database(), archiveFolder, target, platform::NoProgress);
            plant(row.to, planted);
            const QStringList failures =
                core::BackUpArchive(Database(), archiveFolder, target, platform::NoProgress)
                    .failures;
            if (!failures.isEmpty()) {
                throw platform::FileError(failures.first());
            }
        });
        EXPECT_EQ(text.contains(u"einem anderen Benutzer"_s), row.isUsed) << text.toStdString();
        QFile::remove(planted);
        QDir(target).removeRecursively();
    }
    const QString own = installation.Path("private.jpg");
    ASSERT_TRUE(QFile::copy(Filed("2026_03_00001.jpg"), own));
    plant(own, Filed("2026_03_00009.jpg"));
    const core::Rebuilding rebuilding =
        core::RebuildRecords(Database(), {Filed("2026_03_00009.jpg")}, now, platform::NoProgress);
    EXPECT_EQ(rebuilding.failures.size(), 1) << "no thumbnail of it";
    plant(own, Filed("2026_03_00001.jpg"));
    data.SetCurrentRecord(1);
    EXPECT_EQ(data.GetFileNameFromRecord(archiveFolder), QString()) << "nor tags in it";
    const QString link = Filed("2026_03_00001.jpg");
    const QString copy = installation.Path("copy.jpg");
    EXPECT_THROW(core::DigestOf(link), platform::FileError) << "put there after the look";
    EXPECT_THROW(core::CopyArchiveFile(link, copy, platform::Links::Own), platform::FileError);
    core::CopyArchiveFile(link, copy, platform::Links::All);
    EXPECT_EQ(QFileInfo(copy).lastModified(), QFileInfo(own).lastModified());
    ASSERT_EQ(lchown(QFile::encodeName(link).constData(), 0, 0), 0);
    EXPECT_EQ(core::DigestOf(link), core::DigestOf(own));
    plant(own, link);
    plant(elsewhere, archiveFolder + u"/2026"_s);
    EXPECT_THROW(File(u"b\r\n"_s), platform::FileError);
    EXPECT_EQ(QDir(elsewhere).entryList(QDir::NoDotAndDotDot | QDir::AllEntries).size(), 1);
    EXPECT_EQ(platform::ReadWholeFile(precious, 99), "precious");
}

}  // namespace kadrona::testing
