#include "core/archive/ArchiveExport.h"
#include "core/archive/WaitingSearch.h"
#include "tests/core/ArchiveKeepingFixture.h"

namespace kadrona::testing {

TEST_F(ArchiveKeeping, AnExportHoldsPhotosAndDataAndNoFormula) {
    File(u"=HYPERLINK(\"x\")\r\nKöln\r\nb\u202ea\r\n"_s);
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
    EXPECT_TRUE(csv.contains(u";\"'=HYPERLINK(\"\"x\"\"), Köln, b\ufffda\"\r\n"_s.toUtf8()))
        << csv.toStdString();
    EXPECT_TRUE(platform::ReadWholeFile(result.folder + u"/Daten.json"_s, 1 << 20)
                    .contains("\"K\xc3\xb6ln\""));

    Execute(uR"(UPDATE "ImgDB" SET "ImgAblage" = '2026\03', "ImgName" = '2026_03_00001.jpg')"_s);
    const auto exported = [&](const platform::Progress& progress) {
        return core::ExportRecords(Database(), archiveFolder, {{1, 2}}, installation.Path("common"),
                                   u"twins"_s, progress);
    };
    const QString twins = exported(platform::NoProgress).folder;
    EXPECT_EQ(QDir(twins).entryList({u"*.jpg"_s}), QStringList(u"2026_03_00001.jpg"_s));
    EXPECT_EQ(
        platform::ReadWholeFile(twins + u"/Daten.csv"_s, 1 << 20).count("\"2026_03_00001.jpg"), 2);
    ASSERT_TRUE(QFile::copy(Filed("2026_03_00001.jpg"), Filed("daten.CSV")));
    Execute(uR"(UPDATE "ImgDB" SET "ImgName" = 'daten.CSV' WHERE "ID" = 2)"_s);
    EXPECT_EQ(QDir(exported(platform::NoProgress).folder).entryList({u"*.csv"_s}),
              QStringList({u"2_daten.CSV"_s, u"Daten.csv"_s}));
    const auto made = [&] {
        return QDir(installation.Path("common")).entryList({u"twins (3)*"_s}, QDir::Dirs);
    };
    EXPECT_THROW(exported([&](const QString&, qint64 done, qint64) {
                     if (done == 1) {
                         EXPECT_EQ(made(), QStringList(u"twins (3) (unvollständig)"_s));
                         throw platform::Cancelled();
                     }
                 }),
                 platform::Cancelled);
    EXPECT_EQ(made(), QStringList()) << "no faces without a list";
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
    const QString loop = installation.Path("loop");
    ASSERT_TRUE(QFile::link(loop, loop));
    EXPECT_THROW(core::FilingQueue(loop).Waiting(), platform::FileError)
        << "they wait none the less";
}

}  // namespace kadrona::testing
