#pragma once

#include <gtest/gtest.h>

#include <QDir>

#include "core/archive/ArchiveServer.h"
#include "core/archive/ArchiveTable.h"
#include "imaging/document/LayeredImage.h"
#include "store/sqlite/SqliteDatabase.h"
#include "tests/support/ArchiveDatabase.h"
#include "tests/support/CoreFakes.h"
#include "tests/support/PixelMatchers.h"
#include "tests/support/TestServer.h"

namespace kadrona::testing {

using namespace Qt::StringLiterals;

/// A data module over a database and an archive folder, on 7 March 2026 at half past two. Its cases
/// run over a file, and again over a server where there is one beside the tests.
class Archive : public ::testing::Test {
 protected:
    Archive() {
        QDir().mkpath(databaseFolder);
        QDir().mkpath(archiveFolder);
        if (OnServer()) {
            server = NewServerDatabase();
        }
        Connect(data);
        sources.now = [this] { return now; };
        data.SetNameSources(sources);
        image.Open(imaging::Pixels(Filled({413, 531}, ColourOf('r'))), {300});
    }

    core::ArchiveTable& Table() { return *data.Archive(); }
    void File(const QString& tags) {
        data.SaveImageToArchiv(image, archiveFolder, tags, tags.section(u"\r\n"_s, 0, 0));
    }
    QString DatabaseFile() const { return databaseFolder + u"/KDRImageBase.db"_s; }

    void Connect(core::TData& program) const {
        if (OnServer()) {
            program.Archiving().Connect(server);
        } else {
            program.ConnectDB(databaseFolder);
            program.CreateDB();
        }
    }
    std::unique_ptr<store::Database> Open() const {
        if (OnServer()) {
            return core::OpenServer(server);
        }
        return std::make_unique<store::SqliteDatabase>(databaseFolder);
    }
    void Execute(const QString& statement) const { Open()->Execute(statement); }
    QStringList Rows(const QString& query) const { return Column(*Open(), query); }
    /// The records, their columns between bars; NULL is ?.
    QStringList Records() const {
        return Rows(
            uR"(SELECT "ID" || '|' || coalesce("ImgName", '?') || '|' || coalesce("ImgType", '?') ||
                '|' || coalesce("ImgMD5", '?') || '|' ||
                coalesce(CAST("ImgErstellt" AS VARCHAR), '?') || '|' ||
                coalesce("ImgAblage", '?') || '|' || coalesce("ImgTags", '?') || '|' ||
                CASE WHEN length("ImgThumb") > 0 THEN '1' ELSE '?' END FROM "ImgDB"
                ORDER BY "ID")"_s);
    }
    /// A file of March 2026.
    QString Filed(const char* name) const {
        return archiveFolder + u"/2026/03/"_s + QLatin1StringView(name);
    }
    QStringList FiledPhotos() const { return QDir(Filed("")).entryList(QDir::Files); }

    Installation installation;
    QString databaseFolder = installation.Path("database");
    QString archiveFolder = installation.Path("archive");
    store::ServerAddress server;
    QDateTime now{QDate(2026, 3, 7), QTime(14, 30, 5, 123)};
    core::NameSources sources;
    FakeInterface ui;
    core::TData data{ui, installation.Folders()};
    imaging::LayeredImage image;
};

}  // namespace kadrona::testing
