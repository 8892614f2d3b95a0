#include <gtest/gtest.h>

#include <QImage>
#include <cstdlib>
#include <thread>

#include "core/archive/ArchiveTable.h"
#include "core/archive/EarlierTags.h"
#include "core/sheet/PhotoLoading.h"
#include "imaging/document/LayeredImage.h"
#include "imaging/reading/ImageReader.h"
#include "imaging/writing/ImageWriter.h"
#include "platform/AtomicFile.h"
#include "store/StoreError.h"
#include "store/sqlite/SqliteDatabase.h"
#include "tests/core/ArchiveFixture.h"
#include "tests/support/Errors.h"
#include "tests/support/FileSizeLimit.h"
#include "tests/support/HostileFolders.h"
#include "tests/support/PixelMatchers.h"
#include "tests/support/TestServer.h"

using namespace Qt::StringLiterals;

namespace kadrona::testing {

using Ids = std::vector<qint64>;

/// What only a file can meet.
class ArchiveFile : public Archive {};

TEST_F(Archive, FilesAPhotoWithItsRecordThumbnailAndTags) {
    data.MaskLoadFromFile(installation.Path("program/Schablonen/Pass.msk"));
    File(u"Jürgen\r\nKöln\r\n2026\r\n"_s);
    File({});
    EXPECT_EQ(
        Records(),
        QStringList({u"1|2026_03_00001.jpg|Pass.msk|?|2026-03-07 14:30:05.123|2026\\03|"
                     u"Jürgen\r\nKöln\r\n2026\r\n|1"_s,
                     u"2|2026_03_00002.jpg|Pass.msk|?|2026-03-07 14:30:05.123|2026\\03||1"_s}));
    EXPECT_EQ(Table().Ids(), (Ids{2, 1})) << "newest first";
    EXPECT_EQ(data.CurrentRecord(), 2);
    EXPECT_EQ(QImage::fromData(Table().ReadThumbnail(1)).size(), QSize(140, 180));

    data.SetCurrentRecord(1);
    const QString path = Filed("2026_03_00001.jpg");
    EXPECT_EQ(data.GetFileNameFromRecord(archiveFolder), path);
    const imaging::LoadedImage read = imaging::ReadImageFile(path);
    EXPECT_EQ(read.pixels.Size(), QSize(413, 531));
    EXPECT_EQ(read.resolution.value, 300);
    EXPECT_EQ(read.iptc.Text(read.iptc.IndexOf(2, 5)), u"Jürgen"_s);
    EXPECT_EQ(read.iptc.Text(read.iptc.IndexOf(2, 25)), u"Jürgen,Köln,2026,"_s);
    EXPECT_TRUE(ui.messages.isEmpty());
}

TEST_F(Archive, AMissingFolderCostsAnEmptyRecordEachTime) {
    const QString missing = installation.Path("missing");
    for (int i = 0; i < 2; ++i) {
        EXPECT_THROW(data.SaveImageToArchiv(image, missing, u"a\r\n"_s, u"a"_s),
                     imaging::WriteError);
    }
    EXPECT_FALSE(QFileInfo::exists(missing));
    QDir().mkpath(Filed("2026_03_00003.jpg"));
    EXPECT_THROW(File(u"b\r\n"_s), imaging::WriteError) << "the photo's name is taken by a folder";
    EXPECT_EQ(Records(),
              QStringList({u"1|?|?|?|?|?|?|?"_s, u"2|?|?|?|?|?|?|?"_s, u"3|?|?|?|?|?|?|?"_s}));
    EXPECT_EQ(image.Iptc().Text(0), u"a"_s) << "the tags are set before the photo is written";
    File(u"c\r\n"_s);
    EXPECT_EQ(Table().Ids(), (Ids{4, 3, 2, 1})) << "those without a date come last";
    EXPECT_EQ(Table().Read(2)->created, QDateTime());
}

TEST_F(ArchiveFile, AfterTheDatabaseWasLostNoOlderPhotoIsReplaced) {
    File(u"a\r\n"_s);
    File(u"b\r\n"_s);
    const QByteArray first = platform::ReadWholeFile(Filed("2026_03_00001.jpg"), 1 << 20);
    installation.Write("archive/2026/03/2026_03_00004.jpg", "of another computer");

    ASSERT_TRUE(QFile::rename(DatabaseFile(), DatabaseFile() + u".lost"_s));
    data.ConnectDB(databaseFolder);
    data.CreateDB();
    File(u"c\r\n"_s);
    File(u"d\r\n"_s);
    EXPECT_EQ(Table().Ids(), (Ids{5, 3}));
    EXPECT_EQ(Table().Read(3)->name, u"2026_03_00003.jpg"_s);
    EXPECT_EQ(Table().Read(5)->tags, u"d\r\n"_s);
    EXPECT_EQ(platform::ReadWholeFile(Filed("2026_03_00001.jpg"), 1 << 20), first);
    EXPECT_EQ(platform::ReadWholeFile(Filed("2026_03_00004.jpg"), 99), "of another computer");
    EXPECT_TRUE(QFile::exists(Filed("2026_03_00005.jpg")));

    now = now.addMonths(1);
    File(u"e\r\n"_s);
    EXPECT_EQ(data.CurrentRecord(), 6) << "the numbers go on";
    now = now.addYears(-1);
    File(u"f\r\n"_s);
    EXPECT_EQ(Table().Ids(), (Ids{6, 5, 3, 7})) << "by time, not by number";
    EXPECT_THROW(Table().Insert([](qint64) -> bool { throw store::StoreError(QString()); }),
                 store::StoreError);
    EXPECT_EQ(Records().size(), 4) << "a record without its number is taken back";
}

TEST_F(ArchiveFile, DoesNothingWithoutItsMonthFolderOrTable) {
    installation.Write("archive/2026", "a file in the way");
    File(u"a\r\n"_s);
    EXPECT_EQ(Records(), QStringList());
    EXPECT_TRUE(image.Iptc().IsEmpty());
    Execute(uR"(DROP TABLE "ImgDB")"_s);
    QFile::remove(installation.Path("archive/2026"));
    File(u"a\r\n"_s);
    EXPECT_EQ(data.Archive(), nullptr);
    data.ImgTagSearch(u"a"_s);
    core::TData unconnected(ui, installation.Folders());
    EXPECT_FALSE(unconnected.CreateDB());
    unconnected.SaveImageToArchiv(image, archiveFolder, {}, {});
    EXPECT_EQ(FiledPhotos(), QStringList());
    data.CreateDB();
    EXPECT_EQ(Records(), QStringList());
}

TEST_F(ArchiveFile, AFullDiskLeavesAnEmptyRecordAtWorst) {
    File(u"voll\r\n"_s);
    {
        const FileSizeLimit limit(8'000);
        EXPECT_THROW(File(u"leer\r\n"_s), platform::Error);
    }
    EXPECT_EQ(Rows(u"PRAGMA integrity_check"_s), QStringList(u"ok"_s));
    const auto opened = Open();  // a file with a trigger is not opened any more
    opened->Execute(
        uR"(CREATE TRIGGER "full" BEFORE UPDATE OF "ImgName" ON "ImgDB"
                BEGIN SELECT RAISE(ABORT, 'full'); END)"_s);
    EXPECT_THROW(File(u"leer\r\n"_s), store::StoreError);
    EXPECT_EQ(FiledPhotos().size(), 1) << "no photo is left without its record";
    opened->Execute(uR"(DROP TRIGGER "full")"_s);
    File(u"wieder\r\n"_s);
    EXPECT_EQ(Table().Find(u"voll"_s), (Ids{1}));
    EXPECT_EQ(Table().Find(u"leer"_s), Ids());
    EXPECT_EQ(Table().Find(u"wieder"_s).size(), 1U);
}

TEST_F(Archive, NamesTheMissingPhotoOfARecord) {
    File({});
    const QString path = data.GetFileNameFromRecord(archiveFolder + u'/');
    EXPECT_EQ(path, Filed("2026_03_00001.jpg"));
    QFile::remove(path);
    EXPECT_EQ(data.GetFileNameFromRecord(archiveFolder), QString());
    EXPECT_EQ(ui.messages, QStringList(u"Datei "_s + path + u" konnte nicht gefunden werden!"_s));
    data.SetCurrentRecord(99);
    EXPECT_EQ(data.GetFileNameFromRecord(archiveFolder), QString());
    EXPECT_EQ(ui.messages.size(), 2);
    installation.Write("elsewhere.jpg", "not of the archive");
    Execute(uR"(UPDATE "ImgDB" SET "ImgName" = 'elsewhere.jpg', "ImgAblage" = '..')"_s);
    data.SetCurrentRecord(1);
    EXPECT_EQ(data.GetFileNameFromRecord(archiveFolder), QString());
    EXPECT_TRUE(ui.messages.last().contains(u"außerhalb des Archivs"_s));
}

TEST_F(Archive, TagsAreFoundAndChangedWhateverTheyHold) {
    const QStringList tags{u"O'Neill \"quoted\" 100% _x_\r\n"_s, u"Größe \U0001F4F7\r\n"_s,
                           u"vor\0nach\r\n"_s, u"Wort "_s.repeated(200'000)};
    const auto kept = [](QString text) {
        return OnServer() ? text.remove(QChar::Null) : text;  // which no server takes
    };
    for (const QString& text : tags) {
        now = now.addSecs(60);
        File(text);
        EXPECT_EQ(Table().Read(data.CurrentRecord())->tags, kept(text));
    }
    for (const auto& [text, id] : QList<std::pair<QString, qint64>>{
             {u"O'Neill"_s, 1}, {u"GRÖßE"_s, 2}, {u"vor\0nach"_s, 3}, {u"wort"_s, 4}}) {
        data.ImgTagSearch(text);
        EXPECT_EQ(Table().Ids(), (Ids{id})) << qPrintable(text);
        EXPECT_EQ(Table().Find(u"2026"_s), (Ids{id})) << "the filter holds for searches too";
        data.ImgTagSearch({});
        EXPECT_EQ(Table().Find(kept(text)), (Ids{id})) << qPrintable(text);
    }
    EXPECT_EQ(Table().Find(u"07.03.2026 14:32"_s), (Ids{2})) << "as it is shown";
    EXPECT_EQ(Table().Find(u"\"2026-03-07 14:32\""_s), (Ids{2}));
    EXPECT_EQ(core::ShownTime(Table().Read(2)->created), u"07.03.2026 14:32"_s);
    Table().SetTags(2, u"Zürich\r\n"_s);
    Table().SetTags(99, u"Zürich\r\n"_s);
    EXPECT_FALSE(Table().ReplaceTags(2, u"Größe"_s, u"Bern\r\n"_s)) << "changed meanwhile";
    EXPECT_EQ(Table().Find(u"zürich"_s), (Ids{2}));
    data.ImgTagSearch(u"größe"_s);
    EXPECT_EQ(Table().Ids(), Ids());
    EXPECT_THROW(Table().SetFilter(u"TEXTSEARCH('a' IN ImgName)"_s), store::StoreError);
}

TEST_F(Archive, EarlierTagsComeNewestFirstAndOnce) {
    for (const auto& [days, tags] :
         QList<std::pair<int, QString>>{{0, u"Anna\r\nBerlin\r\n"_s},
                                        {2, u" Bernd \r\n\r\nBerlin\r\n"_s},
                                        {1, u"Clara\r\n"_s}}) {
        now = QDateTime(QDate(2026, 3, 7).addDays(days), QTime(9, 0));
        File(tags);
    }
    EXPECT_EQ(core::EarlierTags(*Open()),
              (QStringList{u"Bernd"_s, u"Berlin"_s, u"Clara"_s, u"Anna"_s}));
}

TEST_F(Archive, LongTextsAreCutToTheirFields) {
    const qint64 id = Table().Insert();
    Table().Fill({.id = id,
                  .name = QString(40, u'n'),
                  .type = QString(49, u't') + u"\U0001F4F7"_s,
                  .created = now,
                  .folder = QString(200, u'f'),
                  .tags = {}},
                 {});
    const auto record = Table().Read(id);
    EXPECT_EQ(record->name, QString(25, u'n'));
    EXPECT_EQ(record->type, QString(49, u't')) << "no half of a character";
    EXPECT_EQ(record->folder.size(), 125);
}

TEST_F(Archive, TwoProgramsSeeWhatTheOtherFiles) {
    core::TData other(ui, installation.Folders());
    Connect(other);
    for (int i = 0; i < 3; ++i) {
        File(u"ours\r\n"_s);
        other.SaveImageToArchiv(image, archiveFolder, u"theirs\r\n"_s, u"theirs"_s);
        EXPECT_EQ(Table().Ids().size(), size_t(2 * i + 2));
        EXPECT_EQ(other.Archive()->Find(u"ours"_s).size(), size_t(i + 1));
    }
}

TEST_F(ArchiveFile, TwoProgramsWithDatabasesOfTheirOwnNeverTakeTheSameNameAtOnce) {
    constexpr int Photos = 15;
    const auto fileAll = [&](const char* database, QRgb colour) {
        FakeInterface nobody;
        core::TData program(nobody, installation.Folders());
        QDir().mkpath(installation.Path(database));
        program.ConnectDB(installation.Path(database));
        program.CreateDB();
        program.SetNameSources(sources);
        imaging::LayeredImage filed;
        filed.Open(imaging::Pixels(Filled({16, 16}, colour)), {300});
        for (int i = 0; i < Photos; ++i) {
            program.SaveImageToArchiv(filed, archiveFolder, {}, {});
            const QImage found(program.GetFileNameFromRecord(archiveFolder));
            EXPECT_LT(std::abs(qBlue(found.pixel(8, 8)) - qBlue(colour)), 9) << i;
        }
    };
    std::thread other(fileAll, "theirs", qRgb(0, 0, 250));
    fileAll("ours", qRgb(250, 0, 0));
    other.join();
    EXPECT_EQ(FiledPhotos().size(), 2 * Photos);
}

TEST_F(ArchiveFile, AnOlderDatabaseGetsItsIndexAndKeepsItsRecords) {
    QFile::remove(DatabaseFile());
    Execute(
        uR"(CREATE TABLE "ImgDB" ("ID" INTEGER PRIMARY KEY AUTOINCREMENT,
        "ImgName" VARCHAR(25), "ImgType" VARCHAR(50), "ImgMD5" VARCHAR(40),
        "ImgErstellt" TIMESTAMP, "ImgAblage" VARCHAR(125), "ImgTags" MEMO, "ImgThumb" GRAPHIC))"_s);
    Execute(uR"(INSERT INTO "ImgDB" ("ImgTags") VALUES ('Jürgen'), (NULL))"_s);
    for (int start = 0; start < 2; ++start) {
        data.ConnectDB(databaseFolder);
        EXPECT_TRUE(data.CreateDB());
        data.ImgTagSearch(u"jürgen"_s);
        EXPECT_EQ(Table().Ids(), (Ids{1}));
    }
    EXPECT_EQ(Rows(u"PRAGMA user_version"_s), QStringList(u"1"_s));
}

TEST_F(ArchiveFile, RefusesTheDatabaseOfANewerVersionOrAnotherProgram) {
    const auto connectError = [&](const char* changed) {
        Execute(QLatin1StringView(changed));
        return TextOf([&] { data.ConnectDB(databaseFolder); });
    };
    EXPECT_EQ(connectError("PRAGMA user_version = 2"),
              u"Die Datenbank „%1“ stammt von einer neueren Version des Programms "
              u"(2)."_s.arg(DatabaseFile()));
    EXPECT_EQ(connectError("PRAGMA application_id = 42"),
              u"Die Datenbank „%1“ gehört zu einem anderen Programm."_s.arg(DatabaseFile()));
    platform::WriteFileAtomically(DatabaseFile(), QByteArray(3000, 'x'));
    const auto connect = [&] { data.ConnectDB(databaseFolder); };
    // A general error, which passes through the inner one.
    const QString text = TextOf([&] { EXPECT_EQ(TextOf<store::StoreError>(connect), u""_s); });
    EXPECT_TRUE(text.endsWith(u"ist keine Datenbank."_s)) << text.toStdString();
}

/// "RECORD:DATASET TEXT" of each item, joined by bars.
QString Texts(const imaging::IptcItems& items) {
    QStringList all;
    for (const imaging::IptcItem& item : items.Items()) {
        all.append(u"%1:%2 "_s.arg(item.record).arg(item.dataset) + QString::fromUtf8(item.value));
    }
    return all.join(u'|');
}

TEST_F(Archive, TagsAreSetInAViewAndRewrittenInAFile) {
    data.SaveIptcToImage(image, u"Anna"_s, u"Anna\r\nBerlin\r\n2026\r\n"_s);
    EXPECT_EQ(Texts(image.Iptc()), u"2:5 Anna|2:25 Anna,Berlin,2026,"_s);
    data.SaveIptcToImage(image, u"Bea"_s, {});
    EXPECT_EQ(Texts(image.Iptc()), u"2:5 Anna|2:25 |2:5 Bea"_s)
        << "the item at the very front counts as missing";

    const QString path = installation.Path("a.jpg");
    imaging::WriteImageFile(path, image.Photo(), {300}, {{}, image.Iptc()});
    data.RewriteIptcToImage(path, u"Käthe"_s, u"Käthe\r\n\r\n"_s);
    EXPECT_EQ(Texts(imaging::ReadImageFile(path).iptc), u"1:90 \u001b%G|2:5 Käthe|2:25 Käthe,,"_s);
    data.RewriteIptcToImage(installation.Path("fehlt.jpg"), {}, {});
    EXPECT_FALSE(QFile::exists(installation.Path("fehlt.jpg")));
}

TEST_F(Archive, ItemsOfAnOpenedPhotoStayWithIt) {
    const FakeSettings settings;
    data.SetSettings(&settings);
    // A list that begins with the object name.
    const QByteArray segment(
        "\xff\xed\0\x24Photoshop 3.0\0"
        "8BIM\4\4\0\0\0\0\0\x08\x1c\2\5\0\3alt",
        38);
    installation.Write("a.jpg", imaging::EncodeJpeg(image.Photo()).insert(2, segment));
    core::OpenPhoto(installation.Path("a.jpg"), settings, image);
    data.SaveIptcToImage(image, u"neu"_s, u"neu"_s);
    EXPECT_EQ(Texts(image.Iptc()), u"2:5 alt|2:5 neu|2:25 neu"_s);

    data.SaveImage(image, archiveFolder, u"b.jpg"_s, false);
    core::OpenPhoto(archiveFolder + u"/b.jpg"_s, settings, image);
    data.SaveIptcToImage(image, u"neuer"_s, u"neuer"_s);
    EXPECT_EQ(Texts(image.Iptc()), u"1:90 \u001b%G|2:5 neuer|2:25 neuer"_s)
        << "the customer's item was not saved";
    image.Open(image.Photo(), {});
    EXPECT_TRUE(image.Iptc().IsEmpty());
}

/// Whatever their masks, each with a data module of its own.
TEST(SharedFolders, TwoAccountsOfAGroupWriteProfilesAndArchive) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "no right to become two users";
    }
    constexpr gid_t Group = 4242;
    const Installation installation;
    for (const char* shared : {"", "common", "archive"}) {
        QDir().mkpath(installation.Path(shared));
        const QByteArray folder = QFile::encodeName(installation.Path(shared));
        ASSERT_EQ(chown(folder.constData(), 0, Group), 0);
        chmod(folder.constData(), 02770);
    }
    const mode_t mask = umask(077);
    FakeInterface ui;
    imaging::LayeredImage image;
    image.Open(imaging::Pixels(Filled({35, 45}, Qt::gray)), {300});
    for (const uid_t account : {1001U, 1002U, 1001U}) {
        const WithoutPrivileges rights(account, Group);
        core::TData data(ui, installation.Folders());
        data.InitSystem();
        data.SaveLayerPosToIni(u"Pass"_s, {1, 2, 3, 4});
        data.SavePrinterProfileToIni(u"Drucker"_s, u"prn1.tmp"_s);
        data.SaveProfileToIni(QString::number(account), u"pro1.tmp"_s);
        data.SaveImageToArchiv(image, installation.Path("archive"), u"Anna"_s, u"Anna"_s);
        data.Archive()->SetTags(1, QString::number(account));
        data.SetCurrentRecord(1);
        data.RewriteIptcToImage(data.GetFileNameFromRecord(installation.Path("archive")), u"Anna"_s,
                                u"Anna"_s);
    }
    umask(mask);
    EXPECT_EQ(ui.messages, QStringList());
    core::TData data(ui, installation.Folders());
    data.InitSystem();
    EXPECT_EQ(data.GetProfileList(), QStringList({u"1001"_s, u"1002"_s}));
    EXPECT_EQ(data.Archive()->Read(3)->tags, u"Anna"_s);
    EXPECT_EQ(data.Archive()->Read(1)->tags, u"1001"_s);
}

}  // namespace kadrona::testing
