// Makes the data folder of a program that has archived many photos, to try the archive window by
// hand:
//
//   bench_make_archive DATA_FOLDER COUNT
//   KADRONA_COMMON_APPDATA=DATA_FOLDER build/kadrona
#include <QCoreApplication>
#include <QDir>
#include <cstdio>

#include "bench/ArchiveRecords.h"
#include "platform/Error.h"

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const int count = arguments.value(2).toInt();
    if (arguments.size() != 3 || count <= 0) {
        std::fprintf(stderr, "usage: bench_make_archive DATA_FOLDER COUNT\n");
        return 2;
    }
    const QString folder = arguments[1] + QStringLiteral("/Kadrona/Database");
    QDir().mkpath(folder);
    try {
        kadrona::bench::MakeArchiveRecords(folder, count);
    } catch (const kadrona::platform::Error& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
