#include <unistd.h>

#include <QDirIterator>
#include <cstdlib>

#include "core/archive/ArchiveBackup.h"
#include "core/archive/ArchiveCheck.h"
#include "core/archive/ArchiveDeletion.h"
#include "core/archive/ArchiveExport.h"
#include "core/archive/ArchiveFiles.h"
#include "core/archive/ArchiveOrder.h"
#include "core/archive/ArchiveOriginals.h"
#include "core/archive/ArchiveRebuild.h"
#include "core/archive/ArchiveRetention.h"
#include "core/archive/WaitingSearch.h"
#include "platform/AtomicFile.h"
#include "tests/core/ArchiveFixture.h"
#include "tests/support/Errors.h"

namespace kadrona::testing {

using Ids = std::vector<qint64>;

/// What is kept, deleted and brought back.
class ArchiveKeeping : public Archive {
 protected:
    store::Database& Database() { return data.ArchiveDatabase(); }
    core::Deletion Delete(const Ids& ids) {
        return core::DeleteRecords(Database(), archiveFolder, ids, now, platform::NoProgress);
    }
    core::ArchiveReport Check() {
        return core::CheckArchive(Database(), archiveFolder, platform::NoProgress);
    }
    /// Faults with the numbers of their records and the names of their files.
    QStringList Faults() {
        QStringList faults;
        for (const core::ArchiveFinding& finding : Check().findings) {
            faults.append(u"%1 %2 %3"_s.arg(int(finding.fault))
                              .arg(finding.id)
                              .arg(QFileInfo(finding.path).fileName()));
        }
        return faults;
    }

    /// Every byte of the database's folder, or of a dump of the server's, and of the archive's.
    QByteArray AllBytes() const {
        QByteArray bytes;
        if (OnServer()) {
            const QString dump = databaseFolder + u"/dump"_s;
            const QString line = u"PGPASSWORD=%1 pg_dump -h %2 -U %3 %4 > %5"_s.arg(
                server.password, server.host, server.user, server.database, dump);
            // NOLINTNEXTLINE(cert-env33-c): a line of our own
            EXPECT_EQ(std::system(qPrintable(line)), 0);
        }
        for (const QString& folder : {databaseFolder, archiveFolder}) {
            for (QDirIterator files(folder, QDir::Files | QDir::Hidden,
                                    QDirIterator::Subdirectories);
                 files.hasNext();) {
                bytes += platform::ReadWholeFile(files.next(), 1 << 30);
            }
        }
        return bytes;
    }
};

TEST_F(ArchiveKeeping, DeletedPhotosLeaveNothingButTheirNumbers) {
    for (int i = 0; i < 40; ++i) {
        for (const QString& tags : {u"Bleibtreu%1\r\n"_s, u"Löschner%1\r\nGeheimdorf\r\n"_s}) {
            image.SetIptc({});  // another customer's photo
            File(tags.arg(i));
        }
    }
    Table().SetTags(4, u"Löschner anders\r\n"_s);
    Ids deleted;
    for (qint64 id = 2; id <= 80; id += 2) {
        deleted.push_back(id);
    }
    ASSERT_TRUE(AllBytes().contains("schner anders"));
    const core::Deletion deletion = Delete(deleted);
    core::CompactArchive(Database(), platform::NoProgress);

    EXPECT_EQ(deletion.deleted, 40);
    EXPECT_TRUE(deletion.failures.isEmpty());
    const QByteArray left = AllBytes();
    for (const char* name : {"schner", "geheimdorf", "Geheimdorf"}) {
        EXPECT_FALSE(left.contains(name)) << name;
    }
    EXPECT_TRUE(left.contains("Bleibtreu39"));
    EXPECT_EQ(FiledPhotos().size(), 40);
    EXPECT_EQ(Rows(u"SELECT count(*) || '|' || min(\"Deleted\") FROM \"ImgDeleted\""_s),
              QStringList(u"40|2026-03-07 14:30:05"_s));
    if (!OnServer()) {
        EXPECT_EQ(Rows(u"PRAGMA freelist_count"_s), QStringList(u"0"_s));
        EXPECT_EQ(DatabaseFault(Database()), QString());
    }

    Delete(Table().Ids());
    EXPECT_TRUE(QDir(archiveFolder).isEmpty()) << "months and years without photos go too";
    File(u"neu\r\n"_s);
    EXPECT_EQ(data.CurrentRecord(), 81) << "no number is used twice";
}

TEST_F(ArchiveKeeping, AnInterruptedDeletionIsFinishedLater) {
    File(u"a\r\n"_s);
    File(u"b\r\n"_s);
    ASSERT_TRUE(QFile::remove(Filed("2026_03_00001.jpg")));
    ASSERT_TRUE(QDir().mkpath(Filed("2026_03_00001.jpg/x"))) << "no file that could be removed";
    const core::Deletion deletion = Delete({1});
    EXPECT_EQ(deletion.deleted, 1);
    EXPECT_TRUE(deletion.failures.value(0).contains(Filed("2026_03_00001.jpg")));
    EXPECT_EQ(Table().Ids(), Ids({2}));

    QDir(Filed("2026_03_00001.jpg")).removeRecursively();
    installation.Write("archive/2026/03/2026_03_00001.jpg", "as a crash leaves it");
    ASSERT_TRUE(QDir().rename(archiveFolder, archiveFolder + u"-away"_s) &&
                QDir().mkpath(archiveFolder));
    EXPECT_EQ(core::FinishDeletion(Database(), archiveFolder).size(), 1) << "an empty mount point";
    ASSERT_TRUE(QDir().rmdir(archiveFolder) &&
                QDir().rename(archiveFolder + u"-away"_s, archiveFolder));
    core::CheckArchive(Database(), archiveFolder, platform::NoProgress, core::CheckedPlace::Copy);
    EXPECT_EQ(FiledPhotos().size(), 2) << "a copy is only looked at";
    EXPECT_EQ(Faults(), QStringList());
    EXPECT_EQ(FiledPhotos(), QStringList(u"2026_03_00002.jpg"_s));
}

TEST_F(ArchiveKeeping, NothingIsDeletedOutsideTheArchiveNorWithoutItsFolder) {
    File(u"a\r\n"_s);
    installation.Write("precious.jpg", "x");
    Execute(uR"(UPDATE "ImgDB" SET "ImgAblage" = '..', "ImgName" = 'precious.jpg')"_s);
    EXPECT_EQ(Delete({1}).failures.size(), 1);
    EXPECT_TRUE(QFile::exists(installation.Path("precious.jpg")));
    EXPECT_EQ(core::FinishDeletion(Database(), archiveFolder), QStringList()) << "said once";

    File(u"b\r\n"_s);
    ASSERT_TRUE(QDir().rename(archiveFolder, archiveFolder + u"-away"_s));
    EXPECT_THROW(Delete({2}), platform::FileError);
    EXPECT_EQ(Table().Ids(), Ids({2}));
}

TEST_F(ArchiveKeeping, ACheckFindsWhatIsWrongAndLostRecordsComeBackFromThePhotos) {
    for (const char* name : {"Anna, die Zweite", "Bea", "Cora", "Dora"}) {
        File(QString::fromUtf8(name) + u"\r\nKöln\r\n"_s);
    }
    EXPECT_EQ(Check().sound, 4);
    data.SaveImageToArchiv(image, archiveFolder, u"x\r\n"_s, {});
    Execute(uR"(DELETE FROM "ImgChecksum" WHERE "ID" = 5)"_s);
    EXPECT_EQ(Check().adopted, 1);
    EXPECT_EQ(Check().adopted, 0);

    QFile changed(Filed("2026_03_00002.jpg"));
    ASSERT_TRUE(changed.open(QIODevice::Append) && changed.write("x") == 1);
    changed.close();
    ASSERT_TRUE(QFile::remove(Filed("2026_03_00003.jpg")));
    installation.Write("archive/Notiz.txt", "of the user");
    const core::ArchiveRecord lost = *Table().Read(1);
    const QByteArray thumbnail = Table().ReadThumbnail(1);
    Execute(uR"(DELETE FROM "ImgDB" WHERE "ID" = 1)"_s);
    Table().Insert();
    EXPECT_EQ(Faults(),
              QStringList({u"7 6 "_s, u"1 2 2026_03_00002.jpg"_s, u"0 3 2026_03_00003.jpg"_s,
                           u"4 0 2026_03_00001.jpg"_s, u"5 0 Notiz.txt"_s})
                  .toList());

    const core::ArchiveReport report = Check();
    core::AdoptChanged(Database(), archiveFolder, report, platform::NoProgress);
    const core::Rebuilding rebuilding = core::RebuildRecords(
        Database(), report.Paths(core::ArchiveFault::Lost), now, platform::NoProgress);
    EXPECT_EQ(rebuilding.rebuilt, 1);
    const core::ArchiveRecord rebuilt = Table().Read(1).value_or(core::ArchiveRecord());
    EXPECT_EQ(rebuilt.tags, u"Anna, die Zweite\r\nKöln\r\n"_s);
    EXPECT_EQ(rebuilt.folder, lost.folder);
    EXPECT_EQ(Table().ReadThumbnail(1), thumbnail);
    EXPECT_EQ(rebuilt.created, now) << "a month's end that is yet to come";
    EXPECT_EQ(Faults().size(), 3) << "blank, missing, not ours";
    EXPECT_EQ(
        core::RebuildRecords(Database(), {Filed("2026_03_00001.jpg")}, now, platform::NoProgress)
            .rebuilt,
        0)
        << "no second record for one photo";
    EXPECT_EQ(core::NumberInName(u"2026_03_999999999999.jpg"_s), 0) << "none would be left soon";
    const auto giveUp = [](const QString&, qint64, qint64) { throw platform::Cancelled(); };
    EXPECT_THROW(core::RebuildRecords(Database(), {Filed("2026_03_00050.jpg")}, now, giveUp),
                 platform::Cancelled);
    EXPECT_EQ(Table().Insert(), 51) << "while that number is lost, nobody gets it";
}

TEST_F(ArchiveKeeping, ALargeFileIsReadInStepsThatCanBeGivenUp) {
    constexpr int Megabytes = 3;
    File(u"a\r\n"_s);
    Execute(uR"(DELETE FROM "ImgDB")"_s);
    const char* const original = "archive/Originale/2026/03/2026_03_00001.nef";
    installation.Write(original, QByteArray(Megabytes << 20, 'x'));
    int steps = 0;
    const auto count = [&](const QString&, qint64, qint64) { ++steps; };
    core::ArchiveReport report;
    report.findings = {{core::ArchiveFault::Changed, 1, installation.Path(original)}};
    for (const auto& reading : std::initializer_list<std::function<void()>>{
             [&] { core::RebuildRecords(Database(), {Filed("2026_03_00001.jpg")}, now, count); },
             [&] { core::CheckArchive(Database(), archiveFolder, count); },
             [&] { core::AdoptChanged(Database(), archiveFolder, report, count); }}) {
        steps = 0;
        reading();
        EXPECT_GT(steps, Megabytes);
    }
    EXPECT_EQ(Faults(), QStringList());
}

TEST_F(ArchiveKeeping, AFileGoesWithItsLastRecordAndComesBackWithTheNextOne) {
    File(u"a\r\n"_s);
    File(u"b\r\n"_s);
    Execute(uR"(UPDATE "ImgDB" SET "ImgName" = '2026_03_00001.jpg')"_s);
    Delete({1});
    EXPECT_EQ(FiledPhotos().size(), 2) << "record 2 has the file too";
    Execute(uR"(UPDATE "ImgDB" SET "ImgName" = '2026_03_00002.jpg')"_s);
    EXPECT_EQ(Faults(), QStringList(u"4 0 2026_03_00001.jpg"_s)) << "lost, not undeleted";

    const QByteArray photo = platform::ReadWholeFile(Filed("2026_03_00002.jpg"), 1 << 20);
    Delete({2});
    installation.Write("archive/2026/03/2026_03_00002.jpg", photo);
    installation.Write("archive/2026/04/2026_04_00002.jpg", photo);
    installation.Write("archive/2026/03/2026_03_999999999999999999.jpg", photo);
    installation.Write("archive/Originale/2026/04/2026_04_00002.nef", "raw");
    EXPECT_EQ(Faults().filter(u"6 2 "_s), QStringList(u"6 2 2026_03_00002.jpg"_s));
    Execute(uR"(INSERT INTO "ImgDB" ("ID") VALUES (2))"_s);
    const QStringList lost = Check().Paths(core::ArchiveFault::Lost);
    EXPECT_EQ(core::RebuildRecords(Database(), lost, now, platform::NoProgress).rebuilt, 2);
    EXPECT_EQ(core::ReadOriginal(Database(), 2).value_or(core::OriginalRecord()).name,
              u"2026_04_00002.nef"_s);
    EXPECT_EQ(Rows(uR"(SELECT "ID" FROM "ImgDeleted" ORDER BY 1)"_s), QStringList())
        << "their numbers have photos again";
}

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
    plant(elsewhere, archiveFolder + u"/2026"_s);
    EXPECT_THROW(File(u"b\r\n"_s), platform::FileError);
    EXPECT_EQ(QDir(elsewhere).entryList(QDir::NoDotAndDotDot | QDir::AllEntries).size(), 1);
    EXPECT_EQ(platform::ReadWholeFile(precious, 99), "precious");
}

TEST_F(ArchiveKeeping, AnExportHoldsPhotosAndDataAndNoFormula) {
    File(u"=HYPERLINK(\"x\")\r\nKöln\r\n"_s);
    File(u"b\r\n"_s);
    Execute(uR"(UPDATE "ImgDB" SET "ImgAblage" = '..\..' WHERE "ID" = 2)"_s);
    const core::Export result =
        core::ExportRecords(Database(), archiveFolder, {{2, 1, 9}}, installation.Path("common"),
                            u"../Export: *"_s, platform::NoProgress);
    EXPECT_EQ(result.folder, installation.Path("common/_Export_ _"));
    EXPECT_EQ(result.records, 2);
    EXPECT_EQ(result.failures.size(), 1) << "a record that leads out of the archive";
    EXPECT_EQ(QDir(result.folder).entryList(QDir::Files),
              QStringList({u"2026_03_00001.jpg"_s, u"Daten.csv"_s, u"Daten.json"_s}));
    const QByteArray csv = platform::ReadWholeFile(result.folder + u"/Daten.csv"_s, 1 << 20);
    EXPECT_TRUE(csv.contains(";\"'=HYPERLINK(\"\"x\"\"), K\xc3\xb6ln\"\r\n")) << csv.toStdString();
    EXPECT_TRUE(platform::ReadWholeFile(result.folder + u"/Daten.json"_s, 1 << 20)
                    .contains("\"K\xc3\xb6ln\""));

    Execute(uR"(UPDATE "ImgDB" SET "ImgAblage" = '2026\03', "ImgName" = '2026_03_00001.jpg')"_s);
    const auto exported = [&](const platform::Progress& progress) {
        return core::ExportRecords(Database(), archiveFolder, {{1, 2}}, installation.Path("common"),
                                   u"twins"_s, progress);
    };
    EXPECT_EQ(QDir(exported(platform::NoProgress).folder).entryList({u"*.jpg"_s}),
              QStringList({u"2026_03_00001.jpg"_s, u"2_2026_03_00001.jpg"_s}));
    ASSERT_TRUE(QFile::copy(Filed("2026_03_00001.jpg"), Filed("daten.CSV")));
    Execute(uR"(UPDATE "ImgDB" SET "ImgName" = 'daten.CSV' WHERE "ID" = 2)"_s);
    EXPECT_EQ(QDir(exported(platform::NoProgress).folder).entryList({u"*.csv"_s}),
              QStringList({u"2_daten.CSV"_s, u"Daten.csv"_s}));
    EXPECT_THROW(exported([](const QString&, qint64 done, qint64) {
                     if (done == 1) {
                         throw platform::Cancelled();
                     }
                 }),
                 platform::Cancelled);
    EXPECT_FALSE(QFile::exists(installation.Path("common/twins (3)"))) << "no faces without a list";
}

TEST_F(ArchiveKeeping, PhotosThatWaitAreFoundAndExportedLikeTheOthers) {
    const core::FilingQueue queue(installation.Path("queue"));
    for (const char* tags : {"Dora\r\nKöln\r\n", "Emil\r\n"}) {
        queue.Add({.archiveFolder = archiveFolder,
                   .templateName = u"Pass.schablone"_s,
                   .tags = QString::fromUtf8(tags),
                   .created = now,
                   .photo = "a face",
                   .thumbnail = "small"});
    }
    const QDate day = now.date();
    for (const auto& [filter, count] :
         {std::pair(core::WaitingFilter{}, 2),
          std::pair(core::WaitingFilter{.text = u"dora koln"_s}, 1),
          std::pair(core::WaitingFilter{.text = u"pass 07.03.2026"_s}, 2),
          std::pair(core::WaitingFilter{.text = u"-emil"_s}, 1),
          std::pair(core::WaitingFilter{.period = {.from = day.addDays(1), .to = {}}}, 0),
          std::pair(core::WaitingFilter{.period = {.from = {}, .to = day}}, 2),
          std::pair(core::WaitingFilter{.dueOn = day.addYears(9)}, 0),
          std::pair(core::WaitingFilter{.dueOn = day.addMonths(1), .retentionMonths = 1}, 0),
          std::pair(core::WaitingFilter{.dueOn = day.addDays(40), .retentionMonths = 1}, 2),
          std::pair(
              core::WaitingFilter{
                  .dueOn = day.addDays(40), .retentionMonths = 1, .newestFiled = day.addDays(20)},
              0)}) {
        EXPECT_EQ(core::FindWaiting(queue, filter).size(), count) << filter.text.toStdString();
    }
    const core::Export result = core::ExportRecords(
        Database(), archiveFolder,
        {.ids = {}, .waiting = core::FindWaiting(queue, {.text = u"dora"_s}), .queue = queue},
        installation.Path("common"), u"Dora"_s, platform::NoProgress);
    const QStringList photos = QDir(result.folder).entryList({u"Wartend_*.jpg"_s});
    ASSERT_EQ(photos.size(), 1);
    EXPECT_EQ(platform::ReadWholeFile(result.folder + u'/' + photos[0], 99), "a face");
    EXPECT_TRUE(platform::ReadWholeFile(result.folder + u"/Daten.csv"_s, 1 << 20)
                    .contains(photos[0].toUtf8() + "\";\"\";\"Pass.schablone\";\"Dora"));
    EXPECT_TRUE(platform::ReadWholeFile(result.folder + u"/Daten.json"_s, 1 << 20)
                    .contains("\"number\": null"));
}

TEST_F(ArchiveKeeping, PhotosAreDueByTheirDateTheArchivesPeriodAndNoWrongClock) {
    const QDate today(2026, 3, 7);
    const auto fileOn = [&](QDate day) {
        now = QDateTime(day, QTime(12, 0));
        File(u"x\r\n"_s);
    };
    const auto due = [&](QDate day) { return core::FindDuePhotos(Database(), day).ids; };
    fileOn(today.addYears(-2));                // 1
    fileOn(today.addMonths(-12));              // 2
    fileOn(QDate(2000, 1, 1));                 // 3: the clock's battery was empty
    fileOn(today.addMonths(-12).addDays(-1));  // 4: no older than 2
    fileOn(today);                             // 5
    EXPECT_EQ(due(today), Ids()) << "without a period all are kept";
    for (const int wrong : {0, -1, 1201}) {
        EXPECT_THROW(core::SetRetentionMonths(Database(), wrong), platform::Error) << wrong;
    }
    core::SetRetentionMonths(Database(), 12);
    EXPECT_EQ(due(today), Ids({1}));
    EXPECT_EQ(core::FindDuePhotos(Database(), today.addDays(-1)).newestFiled, today.addMonths(-12));
    EXPECT_EQ(due(today.addDays(1)), Ids({1, 2, 3, 4}));

    EXPECT_THROW(core::SetKeepUntil(Database(), {1}, today, today), platform::Error);
    core::SetKeepUntil(Database(), {1, 5}, today.addDays(3), today);
    EXPECT_EQ(due(today.addDays(3)), Ids({2, 3, 4}));
    EXPECT_EQ(due(today.addDays(4)), Ids({1, 2, 3, 4, 5}));
    core::SetKeepUntil(Database(), {5}, {}, today);
    core::SetRetentionMonths(Database(), {});
    EXPECT_EQ(due(today.addDays(4)), Ids({1}));

    // Their names tell when they were filed, whatever number they have got and what became of them.
    installation.Write("archive/2024/01/2024_01_00001.jpg",
                       platform::ReadWholeFile(Filed("2026_03_00005.jpg"), 1 << 20));
    core::RebuildRecords(Database(), {archiveFolder + u"/2024/01/2024_01_00001.jpg"_s}, now,
                         platform::NoProgress);
    EXPECT_EQ(Table().Read(6)->created.date(), QDate(2024, 1, 31));
    core::SetRetentionMonths(Database(), 12);
    EXPECT_EQ(due(today), Ids({6}));

    EXPECT_EQ(due(today.addDays(-1)), Ids()) << "the clock stands before the newest photo";
    EXPECT_TRUE(core::FindDuePhotos(Database(), today.addDays(-1)).refusal.contains(u"Uhr"));
}

TEST_F(ArchiveKeeping, PhotosAreListedByDayAndInOtherOrders) {
    const QDate first(2026, 3, 1);
    int day = 0;
    for (const char* tags : {"Zoe", "anton", "Ärmel", "Anna"}) {
        now = QDateTime(first.addDays(day++), QTime(23, 59));
        File(QString::fromUtf8(tags) + u"\r\n"_s);
    }
    const auto arranged = [&](const core::ArchivePeriod& period, core::ArchiveOrder order) {
        return core::Arranged(Database(), Table().Ids(), period, order);
    };
    using Order = core::ArchiveOrder;
    EXPECT_EQ(arranged({}, Order::NewestFirst), Ids({4, 3, 2, 1}));
    EXPECT_EQ(arranged({}, Order::OldestFirst), Ids({1, 2, 3, 4}));
    EXPECT_EQ(arranged({}, Order::Tags), Ids({4, 2, 3, 1}));
    EXPECT_EQ(arranged({}, Order::Template), Ids({4, 3, 2, 1})) << "all alike";
    EXPECT_EQ(arranged({first.addDays(1), first.addDays(2)}, Order::NewestFirst), Ids({3, 2}));
    EXPECT_EQ(arranged({.from = {}, .to = first}, Order::NewestFirst), Ids({1}));
}

TEST_F(ArchiveKeeping, AnOriginalIsKeptBesideThePhotoAndGoesWithIt) {
    const QByteArray bytes = "not even a photo";
    installation.Write("card/DSC_0001.NEF", bytes);
    const QFileInfo card(installation.Path("card/DSC_0001.NEF"));
    core::PhotoArchive& archive = data.Archiving();
    core::PhotoToFile known{archiveFolder, u"Pass.msk"_s, u"a\r\n"_s, u"a"_s,
                            core::OriginalToKeep{.file = card.filePath(),
                                                 .bytes = card.size(),
                                                 .modified = card.lastModified(),
                                                 .photo = {},
                                                 .size = {800, 600},
                                                 .rectangle = {10, 20, 350, 450},
                                                 .changes = u"retuschiert"_s}};
    ASSERT_EQ(archive.File(image, known), core::Filing::Done);
    const QString path = archiveFolder + u"/Originale/2026/03/2026_03_00001.nef"_s;
    EXPECT_EQ(platform::ReadWholeFile(path, 99), bytes);
    const auto kept = core::ReadOriginal(Database(), 1).value();
    EXPECT_EQ(kept.rectangle, QRect(10, 20, 350, 450));
    EXPECT_EQ(kept.photo, QSize(800, 600));
    EXPECT_EQ(kept.changes, u"retuschiert"_s);
    EXPECT_EQ(Check().sound, 2);

    installation.Write("card/DSC_0001.NEF", "another customer's");
    EXPECT_THROW(archive.File(image, known), platform::FileError);
    EXPECT_EQ(FiledPhotos().size(), 1) << "no photo without the original that was asked for";

    known.original->photo = image.Photo();
    installation.Write("archive/Originale/2026/03/2026_03_00003.jpg", "another one's");
    ASSERT_EQ(archive.File(image, known), core::Filing::Done);
    EXPECT_EQ(core::ReadOriginal(Database(), 3)->name, u"2026_03_00003 (2).jpg"_s)
        << "the pixels, and no other original replaced";
    QFile::remove(archiveFolder + u"/Originale/2026/03/2026_03_00003.jpg"_s);

    Delete({1, 2, 3});
    EXPECT_TRUE(QDir(archiveFolder).isEmpty());
    EXPECT_FALSE(core::ReadOriginal(Database(), 1));
}

}  // namespace kadrona::testing
