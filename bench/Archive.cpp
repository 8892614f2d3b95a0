// The archive with 100,000 records (or as many as the argument says): how long lists and searches
// take, how large the database is, and what filing a photo costs beside encoding it. Plain figures;
// nothing is asserted.
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <functional>

#include "bench/ArchiveRecords.h"
#include "bench/SilentInterface.h"
#include "core/Data.h"
#include "core/archive/ArchiveTable.h"
#include "imaging/document/LayeredImage.h"
#include "imaging/pixels/Resampling.h"
#include "imaging/writing/ImageWriter.h"
#include "store/sqlite/SqliteDatabase.h"

using namespace Qt::StringLiterals;
using namespace kadrona;

namespace {

double Milliseconds(const std::function<void()>& work) {
    QElapsedTimer timer;
    timer.start();
    work();
    return double(timer.nsecsElapsed()) / 1e6;
}

void Report(const char* what, std::vector<double> times, const QString& remark = {}) {
    std::sort(times.begin(), times.end());
    std::printf("%-52s median %8.2f ms  worst %8.2f ms  %s\n", what, times[times.size() / 2],
                times.back(), qPrintable(remark));
}

std::vector<double> Repeated(int rounds, const std::function<void()>& work) {
    std::vector<double> times;
    for (int i = 0; i < rounds; ++i) {
        times.push_back(Milliseconds(work));
    }
    return times;
}

/// `find` returns how many it found.
void ReportSearch(const QString& what, const std::function<size_t()>& find) {
    size_t found = 0;
    const std::vector<double> times = Repeated(20, [&] { found = find(); });
    Report(qPrintable(what), times, u"%1 found"_s.arg(found));
}

void MeasureLists(store::Database& database) {
    core::ArchiveTable table(database);
    Report("list, read from the database",
           Repeated(5, [&] { core::ArchiveTable(database).Ids(); }));
    Report("list again", Repeated(20, [&] { table.Ids(); }));
    for (const QString& text :
         {u"großmann"_s, u"Müller Köln"_s, u"ürge"_s, u"00042"_s, u"07.03.2026"_s, u"e"_s,
          u"auf*42"_s, u"\"anna weiß\" -berlin"_s, u"kommtnichtvor"_s}) {
        ReportSearch(u"search: "_s + text, [&] { return table.Find(text).size(); });
    }
    table.SetFilter(u"TEXTSEARCH('Großmann Lübeck' IN ImgTags)"_s);
    ReportSearch(u"full-text filter: Großmann Lübeck"_s, [&] { return table.Ids().size(); });
    table.SetFilter({});
    const std::vector<qint64> ids = table.Ids();
    size_t next = 0;
    Report("a record and its thumbnail", Repeated(1000, [&] {
               const qint64 id = ids[next = (next + 7919) % ids.size()];
               table.Read(id);
               table.ReadThumbnail(id);
           }));
}

QImage Photo() {
    QImage image(1220, 1565, QImage::Format_RGB32);
    quint32 seed = 1;
    for (int y = 0; y < image.height(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            seed = seed * 1664525U + 1013904223U;
            const int noise = int(seed >> 28);
            row[x] = qRgb(x / 8 + noise, y / 8 + noise, (x + y) / 16 + noise);
        }
    }
    return image;
}

void MeasureArchiving(const QString& folder) {
    constexpr int Rounds = 30;
    bench::SilentInterface ui;
    core::TData data(ui, {folder, folder});
    data.ConnectDB(folder);
    data.CreateDB();
    imaging::LayeredImage image;
    image.Open(imaging::Pixels(Photo()), {886});
    Report("encoding a photo of 1220 x 1565",
           Repeated(Rounds, [&] { imaging::EncodeJpeg(image.Photo(), {886}); }));
    Report("its thumbnail", Repeated(Rounds, [&] {
               imaging::EncodeJpeg(imaging::Resampled(image.Photo(), {140, 180}));
           }));
    Report("writing the photo into a file", Repeated(Rounds, [&] {
               imaging::WriteImageFile(folder + u"/alone.jpg"_s, image.Photo(), {886});
           }));
    Report("filing it with tags and thumbnail", Repeated(Rounds, [&] {
               data.SaveImageToArchiv(image, folder, u"Anna Müller\r\nKöln\r\n"_s,
                                      u"Anna Müller"_s);
           }));
}

}  // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const int count = QCoreApplication::arguments().value(1, u"100000"_s).toInt();
    const QTemporaryDir folder;
    std::printf("making %d records: %.0f ms\n", count,
                Milliseconds([&] { bench::MakeArchiveRecords(folder.path(), count); }));
    const QString file = folder.filePath(u"KDRImageBase.db"_s);
    std::printf("database: %.0f bytes a record\n", double(QFileInfo(file).size()) / count);
    {
        store::SqliteDatabase database(folder.path());
        MeasureLists(database);
    }
    MeasureArchiving(folder.path());
    return 0;
}
