#include "core/archive/ArchiveDeletion.h"
#include "core/archive/ArchiveFiles.h"
#include "core/archive/ArchiveOrder.h"
#include "core/archive/ArchiveOriginals.h"
#include "core/archive/ArchiveRebuild.h"
#include "core/archive/ArchiveRetention.h"
#include "platform/AtomicFile.h"
#include "tests/core/ArchiveKeepingFixture.h"
#include "tests/support/Errors.h"

namespace kadrona::testing {

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

    const qint64 blank = Table().Insert();
    core::DeleteRecords(Database(), archiveFolder, {blank, 1}, now, platform::NoProgress,
                        core::Deletable::Blank);
    EXPECT_FALSE(Table().Read(blank));
    EXPECT_EQ(FiledPhotos().size(), 40) << "it has been filed since it was blank";

    Delete(Table().Ids());
    EXPECT_TRUE(QDir(archiveFolder).isEmpty()) << "months and years without photos go too";
    File(u"neu\r\n"_s);
    EXPECT_EQ(data.CurrentRecord(), 82) << "no number is used twice";
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

TEST_F(ArchiveKeeping, NothingIsDeletedOrWrittenOutsideTheArchiveNorWithoutItsFolder) {
    File(u"a\r\n"_s);
    const core::FilingQueue& queue = data.Archiving().Queue();
    queue.Add({.archiveFolder = archiveFolder,
               .templateName = {},
               .tags = {},
               .created = now,
               .photo = platform::ReadWholeFile(Filed("2026_03_00001.jpg"), 1 << 20),
               .thumbnail = "x"});
    Execute(uR"(UPDATE "ImgDB" SET "ImgAblage" = '..\new')"_s);
    EXPECT_THROW(data.Archiving().FileWaiting(queue.Waiting().value(0)), platform::FileError);
    EXPECT_FALSE(QFile::exists(installation.Path("new")));
    installation.Write("precious.jpg", "x");
    Execute(uR"(UPDATE "ImgDB" SET "ImgAblage" = '..', "ImgName" = 'precious.jpg')"_s);
    EXPECT_EQ(Delete({1}).failures.size(), 1);
    EXPECT_TRUE(QFile::exists(installation.Path("precious.jpg")));
    EXPECT_EQ(core::FinishDeletion(Database(), archiveFolder), QStringList()) << "said once";

    File(u"b\r\n"_s);
    installation.Write("archive/Steuer.txt", "x");
    Execute(
        uR"(INSERT INTO "ImgRemoval" VALUES ('Steuer.txt', 8), ('2026/03/2026_03_00002.jpg', 9))"_s);
    EXPECT_EQ(core::FinishDeletion(Database(), archiveFolder).size(), 2);
    EXPECT_TRUE(QFile::exists(installation.Path("archive/Steuer.txt")));
    EXPECT_TRUE(QFile::exists(Filed("2026_03_00002.jpg")));
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
    const qint64 filing = Table().Insert();
    const core::ArchiveReport inUse =
        core::CheckArchive(Database(), archiveFolder, [&](const QString&, qint64, qint64) {
            Table().Fill({.id = filing,
                          .name = u"x"_s,
                          .type = {},
                          .created = now,
                          .folder = {},
                          .tags = {}},
                         {});
        });
    EXPECT_EQ(inUse.Ids(core::ArchiveFault::Blank).size(), 1U) << "the other one was being filed";
    EXPECT_EQ(core::NumberInName(u"2026_03_999999999999.jpg"_s), 0) << "none would be left soon";
    const auto giveUp = [](const QString&, qint64, qint64) { throw platform::Cancelled(); };
    EXPECT_THROW(core::RebuildRecords(Database(), {Filed("2026_03_00050.jpg")}, now, giveUp),
                 platform::Cancelled);
    EXPECT_EQ(Table().Insert(), 51) << "while that number is lost, nobody gets it";
}

TEST_F(ArchiveKeeping, ALargeFileIsReadInStepsThatCanBeGivenUp) {
    constexpr int Megabytes = 8;
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
    EXPECT_TRUE(core::FindDuePhotos(Database(), today.addDays(-1)).refusal.contains(u"Nummer 5 "));
    fileOn(today.addYears(50));  // 7
    EXPECT_EQ(due(today), Ids()) << "it may be the clock";
    fileOn(today);  // 8
    EXPECT_EQ(due(today), Ids({6}));
    EXPECT_TRUE(core::FindDuePhotos(Database(), today).remark.contains(u"Nummer 7 ist vom"));
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
