#include <gtest/gtest.h>

#include <QDir>
#include <QElapsedTimer>

#include "core/archive/ArchiveBackup.h"
#include "core/archive/ArchiveOriginals.h"
#include "core/archive/ArchiveSchema.h"
#include "core/archive/KeepingSchema.h"
#include "imaging/document/LayeredImage.h"
#include "imaging/reading/ImageReader.h"
#include "platform/AtomicFile.h"
#include "store/Statement.h"
#include "store/StoreError.h"
#include "store/sqlite/SqliteDatabase.h"
#include "tests/support/ArchiveDatabase.h"
#include "tests/support/CoreFakes.h"
#include "tests/support/Errors.h"
#include "tests/support/PixelMatchers.h"
#include "tests/support/TestServer.h"

using namespace Qt::StringLiterals;

namespace kadrona::testing {

class ArchiveServer : public ::testing::Test {
 protected:
    ArchiveServer() {
        for (const char* folder : {"archive", "database"}) {
            QDir().mkpath(installation.Path(folder));
        }
    }

    Installation installation;
    FakeInterface ui;
    store::ServerAddress server = NewServerDatabase();
};

TEST_F(ArchiveServer, PhotosWaitForAServerThatIsGone) {
    core::TData data(ui, installation.Folders());
    data.Archiving().Connect(server);
    imaging::LayeredImage image;
    image.Open(imaging::Pixels(Filled({413, 531}, Qt::gray)), {300});
    const core::PhotoToFile photo{.archiveFolder = installation.Path("archive"),
                                  .templateName = u"Pass.msk"_s,
                                  .tags = u"Käthe\r\n"_s,
                                  .objectName = u"Käthe"_s};
    EXPECT_EQ(data.Archiving().File(image, photo), core::Filing::Done);
    ControlServer("stop -m immediate");
    installation.Write("card/DSC_0001.NEF", "original");
    core::PhotoToFile withOriginal = photo;
    const QFileInfo card(installation.Path("card/DSC_0001.NEF"));
    withOriginal.original.emplace().file = card.filePath();
    withOriginal.original->bytes = card.size();
    withOriginal.original->modified = card.lastModified();
    EXPECT_EQ(data.Archiving().File(image, withOriginal), core::Filing::Waits);
    ASSERT_TRUE(QFile::remove(withOriginal.original->file)) << "the card is drawn";
    EXPECT_TRUE(data.Archiving().IsNewsThatItIsAway());
    EXPECT_EQ(data.Archiving().File(image, photo), core::Filing::Waits);
    EXPECT_FALSE(data.Archiving().IsNewsThatItIsAway()) << "said once";
    EXPECT_FALSE(data.Archiving().IsBack(std::chrono::milliseconds(100)));
    EXPECT_THROW(data.Archive(), store::ConnectionLost);
    ControlServer("start");

    core::TData later(ui, installation.Folders());
    later.Archiving().Connect(server);
    const QStringList waiting = later.Archiving().Queue().Waiting();
    ASSERT_EQ(waiting.size(), 2);
    const core::FilingQueue& queue = later.Archiving().Queue();
    queue.Add(queue.Read(waiting[0]));
    for (const QString& name : waiting) {
        EXPECT_EQ(later.Archiving().FileWaiting(name), core::Filing::Done);
    }
    // As if the run had been ended before the queue heard of it, and the server before it answered.
    const QString again = queue.Waiting().value(0);
    for (const qint64 id : later.Archive()->Ids()) {
        later.SetCurrentRecord(id);
        ASSERT_TRUE(QFile::remove(later.GetFileNameFromRecord(installation.Path("archive"))));
    }
    EXPECT_EQ(later.Archiving().FileWaiting(again), core::Filing::Done);
    const auto original =
        core::ReadOriginal(later.ArchiveDatabase(), later.CurrentRecord()).value().file.bytes;
    EXPECT_EQ(original, 8) << "kept while it waited";
    EXPECT_EQ(queue.Waiting(), QStringList());
    platform::WriteFileAtomically(queue.Folder() + u"/20260307-143005123-0123abcd.jpg"_s, "left");
    queue.RemoveOrphans(QDateTime::currentDateTime().addDays(1));
    EXPECT_TRUE(QDir(queue.Folder()).entryList({u"*.jpg"_s}).isEmpty());
    EXPECT_TRUE(data.Archiving().IsBack(std::chrono::milliseconds(300)));
    EXPECT_EQ(Column(data.ArchiveDatabase(), u"SHOW lock_timeout"_s), QStringList(u"1s"_s))
        << "short was the patience of connecting alone";
    EXPECT_EQ(data.Archive()->Find(u"käthe"_s).size(), 3U);
    const imaging::LoadedImage filed =
        imaging::ReadImageFile(later.GetFileNameFromRecord(installation.Path("archive")));
    EXPECT_EQ(filed.pixels.Size(), QSize(413, 531));
    EXPECT_EQ(filed.iptc.Text(filed.iptc.IndexOf(2, 5)), u"Käthe"_s);
}

TEST_F(ArchiveServer, NothingWaitsForAServerThatRefuses) {
    core::TData data(ui, installation.Folders());
    core::PhotoArchive& archive = data.Archiving();
    archive.Connect(server);
    server.password = u"falsch"_s;
    EXPECT_THROW(archive.Connect(server), platform::Error);
    EXPECT_FALSE(archive.IsBack(std::chrono::milliseconds(300)));
    imaging::LayeredImage image;
    image.Open(imaging::Pixels(Filled({413, 531}, Qt::gray)), {300});
    const QString text = TextOf<store::StoreError>([&] {
        archive.File(image, {.archiveFolder = installation.Path("archive"),
                             .templateName = {},
                             .tags = {},
                             .objectName = {}});
    });
    EXPECT_TRUE(text.contains(u"Kennwort ist falsch"_s)) << text.toStdString();
    EXPECT_EQ(archive.Queue().Waiting(), QStringList());
    EXPECT_THROW(archive.Connect(installation.Path("none")), platform::Error);
    EXPECT_FALSE(archive.IsAway()) << "the settings say that there is no server";
}

TEST_F(ArchiveServer, WhatIsTriedIsSaidAndLeavesNothing) {
    EXPECT_TRUE(core::TryServer(server).contains(u"noch leer"_s));
    const auto database = core::OpenServer(server);
    core::RequireKnownVersion(*database);
    EXPECT_FALSE(database->TableExists(u"KadronaTrial"_s));
    core::CreateArchive(*database);
    core::CreateArchive(*database);
    EXPECT_TRUE(core::TryServer(server).contains(u"hat 0 Bilder"_s));
    store::ServerAddress guest = server;
    guest.user = guest.password = u"gast"_s;
    EXPECT_TRUE(TextOf<store::StoreError>([&] {
                    core::TryServer(guest);
                }).contains(u"fehlt auf dem Server das Recht"_s));
    database->Execute(uR"(UPDATE "KadronaMark" SET "Version" = 9)"_s);
    EXPECT_TRUE(TextOf<store::StoreError>([&] {
                    core::TryServer(server);
                }).contains(u"von einer neueren Version"_s));
    database->Execute(uR"(DROP TABLE "KadronaMark")"_s);
    EXPECT_TRUE(TextOf<store::StoreError>([&] {
                    core::TryServer(server);
                }).contains(u"gehört zu einem anderen Programm"_s));
}

TEST_F(ArchiveServer, TheConnectionIsKeptForTheUserAlone) {
    EXPECT_FALSE(core::StoredArchiveServer().used);
    const core::ArchiveServer kept{.used = true, .address = server};
    core::StoreArchiveServer(kept);
    EXPECT_EQ(core::StoredArchiveServer(), kept);
    const QString folder = installation.Path("config/Veltmark/Archivserver");
    EXPECT_EQ(QFile::permissions(folder) & QFile::Permissions(0x0077), QFile::Permissions());
    core::TData data(ui, installation.Folders());
    data.OpenDatabase();
    EXPECT_NE(data.Archive(), nullptr);
    EXPECT_FALSE(data.Archiving().IsAway());
}

/// Cut off at every step, and repeated.
TEST_F(ArchiveServer, ATransferCanBeRepeated) {
    store::SqliteDatabase source(installation.Path("database"));
    source.Execute(u"PRAGMA synchronous = OFF"_s);
    core::CreateArchive(source);
    core::ArchiveTable table(source);
    const QByteArray thumbnail("\xFF\xD8\0\x01", 4);
    for (int i = 0; i < 450; ++i) {
        const qint64 id = table.Insert();
        if (i % 7 != 0) {
            table.Fill({.id = id,
                        .name = QString::number(id),
                        .type = {},
                        .created = QDateTime(QDate(2026, 3, 7), QTime(1, 2, 3, 4)).addSecs(i),
                        .folder = u"2026\\03"_s,
                        .tags = u"Jürgen\0x %1\r\n"_s.arg(i)},
                       thumbnail);
        }
    }
    source.Execute(uR"(DELETE FROM "ImgDB" WHERE "ID" IN (5, 450))"_s);
    const auto transfer = [&](int steps) {
        const auto target = core::OpenServer(server);
        return core::TransferArchive(source, *target, [&](const QString&, qint64, qint64) {
            if (--steps < 0) {
                throw platform::Cancelled();
            }
        });
    };
    core::CreateKeeping(source);
    source.Execute(uR"(INSERT INTO "ImgKeepUntil" VALUES (9, '2027-01-01'))"_s);
    const auto target = core::OpenServer(server);
    source.Execute(uR"(UPDATE "ImgDB" SET "ImgErstellt" = 'gestern' WHERE "ID" = 3)"_s);
    EXPECT_TRUE(TextOf<store::StoreError>([&] { transfer(99); }).endsWith(u"Nummer 3."_s));
    source.Execute(uR"(UPDATE "ImgDB" SET "ImgErstellt" = NULL WHERE "ID" = 3)"_s);
    for (int steps = 0; steps < 9; ++steps) {
        EXPECT_THROW(transfer(steps), platform::Cancelled) << steps;
    }
    // Both are worked with before it goes on.
    table.SetTags(4, u"anders\r\n"_s);
    source.Execute(uR"(DELETE FROM "ImgDB" WHERE "ID" IN (6, 449))"_s);
    target->Execute(uR"(DELETE FROM "ImgDB" WHERE "ID" = 8)"_s);
    target->Execute(uR"(INSERT INTO "ImgDeleted" ("ID", "Deleted") VALUES (8, ''))"_s);
    EXPECT_EQ(transfer(99).records, 446);
    EXPECT_EQ(transfer(99).leftOut, 1) << "deleted on the server is deleted";
    EXPECT_EQ(transfer(99).copied, 0);

    core::ArchiveTable copied(*target);
    std::vector<qint64> expected = table.Ids();
    std::erase(expected, 8);
    EXPECT_EQ(copied.Ids(), expected);
    EXPECT_EQ(copied.Read(4)->tags, u"anders\r\n"_s);
    EXPECT_EQ(copied.Read(2)->created, table.Read(2)->created);
    EXPECT_EQ(copied.ReadThumbnail(2), thumbnail);
    copied.SetFilter(u"TEXTSEARCH('JÜRGENX 9' IN ImgTags)"_s);
    EXPECT_EQ(copied.Ids(), std::vector<qint64>{10});
    copied.SetFilter({});
    EXPECT_EQ(copied.Insert(), 451) << "no number is given twice";
    EXPECT_EQ(transfer(99).copied, 0) << "what was filed there since does not disturb";
    EXPECT_EQ(Column(*target, uR"(SELECT "ID" || "Until" FROM "ImgKeepUntil")"_s),
              QStringList(u"92027-01-01"_s));
    copied.SetTags(7, u"anders"_s);
    EXPECT_TRUE(TextOf<store::StoreError>([&] { transfer(99); }).contains(u"Nummer 7 schon"_s));
}

/// What others do meanwhile does not end it.
TEST_F(ArchiveServer, ABackupIsOfOneMoment) {
    QDir().mkpath(installation.Path("backup"));
    const auto database = core::OpenServer(server);
    core::CreateArchive(*database);
    core::ArchiveTable table(*database);
    table.SetTags(table.Insert(), u"vorher"_s);
    const auto others = core::OpenServer(server);
    core::BackUpArchive(*database, installation.Path("archive"), installation.Path("backup"),
                        [&](const QString&, qint64, qint64) {
                            core::ArchiveTable(*others).SetTags(1, u"nachher"_s);
                            core::ArchiveTable(*others).Insert();
                        });
    store::SqliteDatabase copy(installation.Path("backup"));
    EXPECT_EQ(Column(copy, uR"(SELECT "ImgTags" FROM "ImgDB")"_s), QStringList(u"vorher"_s));
    EXPECT_EQ(table.Read(1)->tags, u"nachher"_s);
}

TEST_F(ArchiveServer, ChangesOfOtherWorkplacesAreSeen) {
    const auto ours = core::OpenServer(server);
    const auto theirs = core::OpenServer(server);
    core::CreateArchive(*ours);
    core::ArchiveTable table(*ours);
    core::ArchiveTable other(*theirs);
    EXPECT_TRUE(table.Ids().empty());
    EXPECT_FALSE(table.HasChanged());
    const qint64 id = other.Insert();
    EXPECT_TRUE(table.HasChanged());
    EXPECT_EQ(table.Ids().size(), 1U);
    EXPECT_FALSE(table.HasChanged());
    other.SetTags(id, u"Anna"_s);
    EXPECT_TRUE(table.HasChanged());
    EXPECT_FALSE(table.ReplaceTags(id, {}, u"Bea"_s));
    EXPECT_TRUE(table.ReplaceTags(id, u"Anna"_s, u"Bea"_s));
    EXPECT_EQ(other.Find(u"bea"_s).size(), 1U);
}

}  // namespace kadrona::testing
