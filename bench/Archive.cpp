// The archive with 100,000 records (or as many as the argument says): how long lists and searches
// take, how large the database is, and what filing a photo costs beside encoding it. Plain figures;
// nothing is asserted. Beside a server (tests/store/with-server bench_archive) the same on the
// server, to which the records are transferred, and how many times as long that takes.
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <functional>
#include <memory>

#include "bench/ArchiveRecords.h"
#include "bench/SilentInterface.h"
#include "core/Data.h"
#include "core/archive/ArchiveSchema.h"
#include "core/archive/ArchiveTable.h"
#include "core/archive/ArchiveTransfer.h"
#include "imaging/document/LayeredImage.h"
#include "imaging/pixels/Resampling.h"
#include "imaging/writing/ImageWriter.h"
#include "store/sqlite/SqliteDatabase.h"
#include "tests/support/TestServer.h"

using namespace Qt::StringLiterals;
using namespace kadrona;

namespace {

double Milliseconds(const std::function<void()>& work) {
    QElapsedTimer timer;
    timer.start();
    work();
    return double(timer.nsecsElapsed()) / 1e6;
}

/// The middle one of the times, for ratios.
double Report(const QString& what, std::vector<double> times, const QString& remark = {}) {
    std::sort(times.begin(), times.end());
    const double median = times[times.size() / 2];
    std::printf("%-52s median %8.2f ms  worst %8.2f ms  %s\n", qPrintable(what), median,
                times.back(), qPrintable(remark));
    return median;
}

std::vector<double> Repeated(int rounds, const std::function<void()>& work) {
    std::vector<double> times;
    for (int i = 0; i < rounds; ++i) {
        times.push_back(Milliseconds(work));
    }
    return times;
}

using Opener = std::function<std::unique_ptr<store::Database>()>;

/// `find` returns how many it found.
double ReportSearch(const QString& what, const std::function<size_t()>& find) {
    size_t found = 0;
    const std::vector<double> times = Repeated(20, [&] { found = find(); });
    return Report(what, times, u"%1 found"_s.arg(found));
}

/// Returns the medians in their order.
std::vector<double> MeasureLists(const Opener& open) {
    std::vector<double> medians;
    medians.push_back(Report(u"open, with the list of all"_s, Repeated(5, [&] {
                                 const auto opened = open();
                                 core::CreateArchive(*opened);
                                 core::ArchiveTable(*opened).Ids();
                             })));
    const auto database = open();
    core::ArchiveTable table(*database);
    medians.push_back(Report(u"list, read from the database"_s,
                             Repeated(5, [&] { core::ArchiveTable(*database).Ids(); })));
    medians.push_back(Report(u"list again"_s, Repeated(20, [&] { table.Ids(); })));
    for (const QString& text :
         {u"großmann"_s, u"Müller Köln"_s, u"ürge"_s, u"00042"_s, u"07.03.2026"_s, u"e"_s,
          u"auf*42"_s, u"\"anna weiß\" -berlin"_s, u"kommtnichtvor"_s}) {
        medians.push_back(
            ReportSearch(u"search: "_s + text, [&] { return table.Find(text).size(); }));
    }
    table.SetFilter(u"TEXTSEARCH('Großmann Lübeck' IN ImgTags)"_s);
    medians.push_back(
        ReportSearch(u"full-text filter: Großmann Lübeck"_s, [&] { return table.Ids().size(); }));
    table.SetFilter({});
    const std::vector<qint64> ids = table.Ids();
    size_t next = 0;
    medians.push_back(Report(u"a record and its thumbnail"_s, Repeated(1000, [&] {
                                 const qint64 id = ids[next = (next + 7919) % ids.size()];
                                 table.Read(id);
                                 table.ReadThumbnail(id);
                             })));
    return medians;
}

/// Transfers the records to an empty database of the server and measures the same there.
void MeasureServer(const QString& folder, const std::vector<double>& file) {
    const store::ServerAddress address = testing::NewServerDatabase();
    {
        store::SqliteDatabase source(folder);
        const auto target = core::OpenServer(address, {.working = std::chrono::seconds(60)});
        std::printf("transferring them to the server: %.0f ms\n", Milliseconds([&] {
                        core::TransferArchive(source, *target, platform::NoProgress);
                    }));
        target->Execute(u"ANALYZE"_s);
    }
    const std::vector<double> server = MeasureLists([&] { return core::OpenServer(address); });
    std::printf("times of the file's:");
    for (size_t i = 0; i < server.size(); ++i) {
        std::printf(" %.1f", server[i] / file[i]);
    }
    std::printf("\n");
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
    Report(u"encoding a photo of 1220 x 1565"_s,
           Repeated(Rounds, [&] { imaging::EncodeJpeg(image.Photo(), {886}); }));
    Report(u"its thumbnail"_s, Repeated(Rounds, [&] {
               imaging::EncodeJpeg(imaging::Resampled(image.Photo(), {140, 180}));
           }));
    Report(u"writing the photo into a file"_s, Repeated(Rounds, [&] {
               imaging::WriteImageFile(folder + u"/alone.jpg"_s, image.Photo(), {886});
           }));
    Report(u"filing it with tags and thumbnail"_s, Repeated(Rounds, [&] {
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
    const std::vector<double> inFile =
        MeasureLists([&] { return std::make_unique<store::SqliteDatabase>(folder.path()); });
    if (testing::OnServer()) {
        MeasureServer(folder.path(), inFile);
    }
    MeasureArchiving(folder.path());
    return 0;
}
