// Makes the file for a portal, for bench/compare-upload-file:
//
//   bench_upload_file PHOTO RESULT WIDTH HEIGHT MOST_BYTES
//
// Writes the milliseconds that it took, the photo decoded; WIDTH 0 leaves the size free.

#include "core/sheet/UploadFile.h"

#include <QElapsedTimer>
#include <QGuiApplication>
#include <cstdio>

#include "imaging/reading/ImageReader.h"
#include "platform/AtomicFile.h"

using namespace kadrona;

int main(int argc, char** argv) {
    const QGuiApplication application(argc, argv);
    const QStringList arguments = QGuiApplication::arguments();
    const imaging::Pixels photo = imaging::ReadImageFile(arguments.value(1)).pixels;
    const int width = arguments.value(3).toInt();
    const int height = arguments.value(4).toInt();
    core::UploadRequest request{
        .cut = photo, .printedWidth = {photo.Width()}, .printedHeight = {photo.Height()}};
    if (width > 0) {
        request.figures.width = {width, width};
        request.figures.height = {height, height};
    }
    request.figures.bytes.most = arguments.value(5).toLongLong();
    QElapsedTimer clock;
    clock.start();
    const core::UploadFile file = core::MakeUploadFile(request);
    const double milliseconds = static_cast<double>(clock.nsecsElapsed()) / 1e6;
    std::printf("%.0f ms, %lld bytes, quality %d, %s\n", milliseconds,
                static_cast<long long>(file.bytes.size()), file.quality,
                file.chroma == imaging::ChromaSampling::Full ? "4:4:4" : "4:2:0");
    platform::WriteFileAtomically(arguments.value(2), file.bytes);
    return file.shortfall.isEmpty() ? 0 : 1;
}
