// Scales a photo to the size that the authorities take, for bench/compare-resampling:
//
//   bench_resample_photo PHOTO RESULT
//
// Writes the milliseconds that the scaling alone took.

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QImage>
#include <cstdio>

#include "imaging/pixels/Resampling.h"

using namespace kadrona;

int main(int argc, char** argv) {
    const QGuiApplication application(argc, argv);
    const QStringList arguments = QGuiApplication::arguments();
    const imaging::Pixels photo(QImage(arguments.value(1)).convertToFormat(QImage::Format_RGB32));
    QElapsedTimer clock;
    clock.start();
    const imaging::Pixels scaled = imaging::Resampled(photo, {413, 531});
    std::printf("%.1f\n", static_cast<double>(clock.nsecsElapsed()) / 1e6);
    return scaled.Tile().save(arguments.value(2)) ? 0 : 1;
}
