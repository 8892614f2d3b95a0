// What the face and the check cost, in processor time on one core: a search in a photo enlarged to
// 24 megapixels, upright, tilted and on its side, and the check with its section at each frame of a
// drag.

#include <QApplication>
#include <QTransform>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <functional>
#include <opencv2/core/utility.hpp>
#include <vector>

#include "core/check/PhotoCheck.h"
#include "core/check/WhiteCorners.h"
#include "dialogs/side/CheckSection.h"
#include "imaging/face/FaceFinder.h"

namespace {

using namespace kadrona;

double MedianMilliseconds(int times, const std::function<void(int)>& work) {
    std::vector<double> taken;
    for (int i = 0; i < times; ++i) {
        const std::clock_t start = std::clock();
        work(i);
        taken.push_back(1000.0 * static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC);
    }
    std::ranges::sort(taken);
    return taken[taken.size() / 2];
}

imaging::Pixels Enlarged(const QImage& photo) {
    constexpr double Pixels = 24e6;
    const double scale = std::sqrt(Pixels / photo.width() / photo.height());
    return imaging::Pixels(
        photo.scaled(photo.size() * scale, Qt::KeepAspectRatio, Qt::SmoothTransformation)
            .convertToFormat(QImage::Format_RGB32));
}

void MeasureSearch(const char* name, const imaging::Pixels& photo) {
    int faces = 0;
    const double time =
        MedianMilliseconds(7, [&](int) { faces = imaging::FindFace(photo).faceCount; });
    std::printf("search, %s: %.0f ms, %d face(s)\n", name, time, faces);
}

/// The template moves by a pixel each frame, as in the window.
void MeasureDrag(const imaging::Pixels& photo) {
    core::CheckedPhoto checked;
    checked.face = imaging::FindFace(photo).face;
    if (!checked.face) {
        return;
    }
    std::printf("measures of light and focus: %.1f ms\n", MedianMilliseconds(9, [&](int) {
                    checked.measures = imaging::MeasurePortrait(photo, *checked.face);
                }));
    core::TemplateRow figures;
    figures.width = {350};
    figures.height = {450};
    figures.head = {core::TenthsOfMillimetre{320}, core::TenthsOfMillimetre{360}};
    checked.figures = figures;
    checked.printedWidth = {350};
    dialogs::CheckSection section;
    section.resize(330, 900);
    section.show();
    std::printf("drag frame with the whole section painted: %.2f ms\n",
                MedianMilliseconds(200, [&](int frame) {
                    checked.rectangle =
                        QRect(frame * 9, frame * 7, 2000 + 5 * frame, 2571 + 6 * frame);
                    checked.background =
                        imaging::MeasureBackground(photo, *checked.face, checked.rectangle);
                    checked.whiteCorners = core::HasWhiteCorners(photo, checked.rectangle, true);
                    section.SetLines(core::CheckPhoto(checked), QStringLiteral("Pass"),
                                     dialogs::CheckSection::Points::Movable);
                    QCoreApplication::processEvents();
                    section.grab();
                }));
}

}  // namespace

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    cv::setNumThreads(1);
    const QImage photo(argc > 1 ? QString::fromLocal8Bit(argv[1]) : QString());
    if (photo.isNull()) {
        std::fprintf(stderr, "usage: bench_face PORTRAIT\n");
        return 2;
    }
    const imaging::Pixels large = Enlarged(photo);
    MeasureSearch("24 megapixels", large);
    MeasureSearch("the same tilted by 20 degrees",
                  Enlarged(photo.transformed(QTransform().rotate(20), Qt::SmoothTransformation)));
    MeasureSearch("the same on its side, a photo without a face",
                  Enlarged(photo.transformed(QTransform().rotate(90))));
    MeasureDrag(large);
    return 0;
}
