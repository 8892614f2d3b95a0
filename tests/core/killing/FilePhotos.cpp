// Files photos in an archive until it is killed, as the program does; for kill-archiving.
//
//   file_photos FOLDER      checks the database, says "ready", then "filed NUMBER" for each photo
//   file_photos FOLDER LOG  checks the database and every photo that the log says was filed
#include <QCoreApplication>
#include <QFile>
#include <cstdio>

#include "core/Data.h"
#include "imaging/document/LayeredImage.h"
#include "imaging/reading/ImageReader.h"
#include "store/Transaction.h"
#include "store/sqlite/SqliteDatabase.h"
#include "tests/support/ArchiveDatabase.h"
#include "tests/support/CoreFakes.h"
#include "tests/support/PixelMatchers.h"

using namespace Qt::StringLiterals;
using namespace kadrona;
using namespace kadrona::testing;

namespace {

const QString Tags = u"Jürgen Groß\r\nKöln\r\n"_s;

void Require(bool condition, const QString& what) {
    if (!condition) {
        throw platform::Error(what);
    }
}

void CheckDatabase(store::Database& database) {
    // Waits for the other program's turn, as all that writes does.
    store::Transaction turn(database);
    const QString fault = DatabaseFault(database);
    Require(fault.isEmpty(), fault);
}

void FileForever(core::TData& data, const QString& folder) {
    imaging::LayeredImage image;
    image.Open(imaging::Pixels(Filled({413, 531}, 0xff808080)), {300});
    std::puts("ready");
    std::fflush(stdout);
    while (true) {
        data.SaveImageToArchiv(image, folder, Tags, u"Jürgen Groß"_s);
        std::printf("filed %lld\n", data.CurrentRecord());
        std::fflush(stdout);
    }
}

void CheckFiled(core::TData& data, const QString& folder, QFile& log) {
    int count = 0;
    while (!log.atEnd()) {
        const QByteArray line = log.readLine().trimmed();
        if (!line.startsWith("filed ")) {
            continue;
        }
        const qint64 id = line.sliced(6).toLongLong();
        const auto record = data.Archive()->Read(id);
        Require(record && record->tags == Tags, u"record %1 is lost"_s.arg(id));
        data.SetCurrentRecord(id);
        imaging::ReadImageFile(data.GetFileNameFromRecord(folder));
        ++count;
    }
    data.ImgTagSearch(u"groß"_s);
    const size_t found = data.Archive()->Ids().size();
    Require(found >= size_t(count), u"%1 of %2 are found"_s.arg(found).arg(count));
    std::printf("%d photos filed, all there\n", count);
}

}  // namespace

int main(int argc, char** argv) try {
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const QString& folder = arguments.at(1);
    FakeInterface ui;
    core::TData data(ui, {folder, folder});
    data.ConnectDB(folder);
    data.CreateDB();
    store::SqliteDatabase database(folder);
    CheckDatabase(database);
    if (arguments.size() < 3) {
        FileForever(data, folder);
    }
    QFile log(arguments.at(2));
    Require(log.open(QIODevice::ReadOnly), log.errorString());
    CheckFiled(data, folder, log);
    return 0;
} catch (const platform::Error& error) {
    std::fprintf(stderr, "file_photos: %s\n", error.what());
    return 1;
}
