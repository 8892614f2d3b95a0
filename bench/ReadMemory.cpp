// What reading each file costs, in a process of its own: the most memory that the process took,
// together with one that decodes for it, and how much of that is beside four bytes a pixel of the
// picture.
//
//   bench_read_memory FILE...
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <cstdio>

#include "imaging/reading/ImageReader.h"

using namespace Qt::StringLiterals;

namespace {

void ReadAndPrint(const QString& path) {
    constexpr double Mega = 1e6;
    constexpr double BytesPerKibibyte = 1024;
    double pixels = 0;
    QString outcome = u"read"_s;
    QElapsedTimer time;
    time.start();
    try {
        const QSize size = kadrona::imaging::ReadImageFile(path).pixels.Size();
        pixels = double(size.width()) * size.height();
    } catch (const kadrona::imaging::ReadError& error) {
        outcome = error.Text();
    }
    rusage own{};
    rusage decoder{};
    getrusage(RUSAGE_SELF, &own);
    getrusage(RUSAGE_CHILDREN, &decoder);
    // Both have the pixels, which are there once.
    const double shared = decoder.ru_maxrss > 0 ? 4 * pixels : 0;
    const double peak = double(own.ru_maxrss + decoder.ru_maxrss) * BytesPerKibibyte - shared;
    std::printf("%6.1f megapixels, %6.0f MB, %6.0f MB beside the pixels, %6.0f ms: %s\n",
                pixels / Mega, peak / Mega, (peak - 4 * pixels) / Mega, double(time.elapsed()),
                qPrintable(outcome));
    std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    for (const QString& path : QCoreApplication::arguments().sliced(1)) {
        const pid_t child = fork();
        if (child == 0) {
            ReadAndPrint(path);
            _exit(0);
        }
        waitpid(child, nullptr, 0);
    }
    return 0;
}
