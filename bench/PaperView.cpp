// How long the view of a sheet on its paper takes for a frame while the wheel zooms.
//
//   bench_paper_view       offscreen, "2 x 4" of photos of 12 megapixels on 10 x 15 cm

#include "dialogs/printing/PaperView.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QWheelEvent>
#include <algorithm>
#include <cstdio>
#include <ctime>
#include <vector>

using namespace kadrona;

namespace {

/// Processor milliseconds of each frame of a turn of the wheel all the way in and out.
std::vector<double> Frames(dialogs::PaperView& view) {
    std::vector<double> frames;
    QImage frame(view.size(), QImage::Format_RGB32);
    view.render(&frame);  // takes the fonts
    for (int step = 0; step < 60; ++step) {
        const QPointF place(view.width() / 3.0, view.height() / 3.0);
        QWheelEvent wheel(place, place, {}, {0, step < 30 ? 60 : -60}, Qt::NoButton, Qt::NoModifier,
                          Qt::NoScrollPhase, false);
        // Of the processor: what else the machine does is not the view's.
        const std::clock_t start = std::clock();
        QApplication::sendEvent(&view, &wheel);
        view.render(&frame);
        frames.push_back(static_cast<double>(std::clock() - start) * 1e3 / CLOCKS_PER_SEC);
    }
    std::sort(frames.begin(), frames.end());
    return frames;
}

}  // namespace

int main(int count, char** arguments) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(count, arguments);
    QImage photo(3000, 4000, QImage::Format_RGB32);
    for (int y = 0; y < photo.height(); ++y) {
        for (int x = 0; x < photo.width(); ++x) {
            photo.setPixel(x, y, qRgb(x % 256, y % 256, (x ^ y) % 256));
        }
    }
    printing::PrintImage image;
    image.tile = photo;
    image.columns = 4;
    image.rows = 2;
    image.dotsPerInch = 2177;
    const printing::PrinterPaper paper{
        printing::PaperGeometry::Plain({101.6, 152.4}, {3.5, 3.5, 3.5, 3.5})};
    for (const QSize size : {QSize(430, 430), QSize(1000, 1000)}) {
        dialogs::PaperView view;
        view.resize(size);
        view.show();
        QElapsedTimer timer;
        timer.start();
        view.ShowSheet(printing::LaidOnPaper(image, paper), {image.tile});
        const double shown = static_cast<double>(timer.nsecsElapsed()) / 1e6;
        const std::vector<double> frames = Frames(view);
        std::printf("%4d pixels: taken over in %.1f ms, frame %.1f ms median, %.1f ms worst\n",
                    size.width(), shown, frames[frames.size() / 2], frames.back());
    }
    return 0;
}
