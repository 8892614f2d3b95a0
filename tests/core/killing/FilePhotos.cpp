// Files photos in an archive until it is killed, as the program does; for kill-archiving.
//
//   file_photos FOLDER      checks the database, says "ready", then "filed NUMBER NAME" for each
//   photo file_photos FOLDER LOG  checks the database and every photo that the log says was filed
//
// The database is a file in the folder; beside a server (tests/store/with-server) it is the
// server's, and a photo that waits for it is "waiting NAME". The second form files what waits.
#include <QCoreApplication>
#include <QFile>
#include <QSet>
#include <QThread>
#include <cstdio>

#include "core/Data.h"
#include "imaging/document/LayeredImage.h"
#include "imaging/reading/ImageReader.h"
#include "store/Transaction.h"
#include "store/sqlite/SqliteDatabase.h"
#include "tests/support/ArchiveDatabase.h"
#include "tests/support/CoreFakes.h"
#include "tests/support/PixelMatchers.h"
#include "tests/support/TestServer.h"

using namespace Qt::StringLiterals;
using namespace kadrona;
using namespace kadrona::testing;

namespace {

void Require(bool condition, const QString& what) {
    if (!condition) {
        throw platform::Error(what);
    }
}

/// Waits for a server that starts again.
void Connect(core::TData& data, const QString& folder) {
    if (!OnServer()) {
        data.ConnectDB(folder);
        data.CreateDB();
        store::SqliteDatabase database(folder);
        // Waits for the other program's turn, as all that writes does.
        store::Transaction turn(database);
        const QString fault = DatabaseFault(database);
        Require(fault.isEmpty(), fault);
        return;
    }
    for (int tries = 100; tries > 0; --tries) {
        try {
            data.Archiving().Connect(ServerDatabase(u"postgres"_s));
            return;
        } catch (const platform::Error& error) {
            Require(tries > 1, error.Text());
            QThread::msleep(100);
        }
    }
}

QString TagsOf(const QString& name) {
    return name + u"\r\nKöln Groß\r\n"_s;
}

void FileForever(core::TData& data, const QString& folder) {
    imaging::LayeredImage image;
    image.Open(imaging::Pixels(Filled({413, 531}, 0xff808080)), {300});
    std::puts("ready");
    std::fflush(stdout);
    for (int number = 1;; ++number) {
        const QString name = u"p%1n%2"_s.arg(QCoreApplication::applicationPid()).arg(number);
        image.SetIptc({});
        const core::Filing filing = data.Archiving().File(image, {.archiveFolder = folder,
                                                                  .templateName = {},
                                                                  .tags = TagsOf(name),
                                                                  .objectName = name});
        if (filing == core::Filing::Waits) {
            std::printf("waiting %s\n", qPrintable(name));
            QThread::msleep(50);
            data.Archiving().IsBack(std::chrono::milliseconds(500));
        } else {
            std::printf("filed %lld %s\n", data.CurrentRecord(), qPrintable(name));
        }
        std::fflush(stdout);
    }
}

void FileWaiting(core::TData& data) {
    const QStringList waiting = data.Archiving().Queue().Waiting();
    for (const QString& name : waiting) {
        Require(data.Archiving().FileWaiting(name) == core::Filing::Done, name);
    }
    std::printf("%lld photos had waited\n", static_cast<long long>(waiting.size()));
}

/// The record has the photo's tags, and its file is this photo and no other.
void CheckPhoto(core::TData& data, const QString& folder, qint64 id, const QString& name) {
    const auto record = data.Archive()->Read(id);
    Require(record && record->tags == TagsOf(name), u"record %1 is lost"_s.arg(id));
    data.SetCurrentRecord(id);
    const imaging::IptcItems items =
        imaging::ReadImageFile(data.GetFileNameFromRecord(folder)).iptc;
    Require(items.Text(items.IndexOf(2, 5)) == name, u"photo %1 was replaced"_s.arg(id));
}

void CheckFiled(core::TData& data, const QString& folder, QFile& log) {
    QSet<qint64> filed;
    while (!log.atEnd()) {
        const QStringList words = QString::fromUtf8(log.readLine()).trimmed().split(u' ');
        if (words.first() == u"waiting"_s && words.size() == 2) {
            const auto found = data.Archive()->Find(u"\"%1 köln\""_s.arg(words[1]));
            Require(!found.empty(), words[1] + u" waited and is lost"_s);
            CheckPhoto(data, folder, found.front(), words[1]);
        } else if (words.first() == u"filed"_s && words.size() == 3) {
            const qint64 id = words[1].toLongLong();
            Require(!filed.contains(id), u"number %1 was given twice"_s.arg(id));
            filed.insert(id);
            CheckPhoto(data, folder, id, words[2]);
        }
    }
    data.ImgTagSearch(u"groß"_s);
    const size_t found = data.Archive()->Ids().size();
    Require(found >= size_t(filed.size()), u"%1 of %2 are found"_s.arg(found).arg(filed.size()));
    std::printf("%lld photos filed, all there\n", static_cast<long long>(filed.size()));
}

}  // namespace

int main(int argc, char** argv) try {
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const QString& folder = arguments.at(1);
    FakeInterface ui;
    core::TData data(ui, {folder, folder});
    Connect(data, folder);
    if (arguments.size() < 3) {
        FileForever(data, folder);
    }
    QFile log(arguments.at(2));
    Require(log.open(QIODevice::ReadOnly), log.errorString());
    FileWaiting(data);
    CheckFiled(data, folder, log);
    return 0;
} catch (const platform::Error& error) {
    std::fprintf(stderr, "file_photos: %s\n", error.what());
    return 1;
}
