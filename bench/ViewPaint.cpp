// Frame times of the image view in a view of 1920 x 1080 pixels, on one core, in processor time:
// pan, zoom and dragging a template over photos of 24 and 100 megapixels. Each is also given as a
// ratio to Qt's own smooth drawing of the whole photo into the same view, measured in the same run.

#include <QApplication>
#include <QPainter>
#include <QWheelEvent>
#include <cstdio>
#include <functional>
#include <opencv2/core/utility.hpp>
#include <vector>

#include "bench/TimedView.h"

namespace {

using namespace kadrona::bench;
using kadrona::imaging::DotsPerInch;
using kadrona::imaging::LayeredImage;
using kadrona::imaging::Pixels;

QImage MakeTemplate() {
    QImage image(350, 450, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setPen(QPen(Qt::blue, 4));
    painter.drawEllipse(75, 60, 200, 280);
    return image;
}

Times MeasurePlainDrawing(const QImage& photo) {
    QImage screen(ViewSize, QImage::Format_RGB32);
    std::vector<double> milliseconds;
    for (int i = 0; i < 3; ++i) {
        const Watch watch;
        QPainter painter(&screen);
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        const QSize size = photo.size().scaled(ViewSize, Qt::KeepAspectRatio);
        painter.drawImage(QRect(QPoint(0, 0), size), photo);
        painter.end();
        milliseconds.push_back(watch.Milliseconds());
    }
    return TimesOf(std::move(milliseconds));
}

void SendWheel(ImageView& view, QPointF position, int angle) {
    QWheelEvent event(position, view.mapToGlobal(position), QPoint(), QPoint(0, angle),
                      Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&view, &event);
}

// Drags from `start` there and back again, so that the view does not run into its bounds.
Times MeasureDrag(TimedView& view, QPointF start, QPointF stepPerFrame) {
    SendMouse(view, QEvent::MouseButtonPress, start);
    view.WaitUntilPainted();
    const Times times = view.FrameTimes([&](int frame) {
        const int way = frame <= Frames / 2 ? frame : Frames - frame;
        SendMouse(view, QEvent::MouseMove, start + stepPerFrame * way);
    });
    SendMouse(view, QEvent::MouseButtonRelease, start);
    return times;
}

void Print(const char* name, Times times, double plain) {
    std::printf("  %-32s %7.2f ms median %8.2f ms worst   %6.3f of plain drawing\n", name,
                times.median, times.worst, times.median / plain);
}

void MeasurePans(TimedView& view, double plain) {
    for (const double percent : {30.0, 60.0, 100.0, 250.0}) {
        view.SetZoomPercent(percent);
        const Times turns = view.WaitUntilPainted();
        std::printf("    worst turn %.2f ms\n", turns.worst);
        char name[64];
        std::snprintf(name, sizeof(name), "pan at %.0f %%", percent);
        Print(name, MeasureDrag(view, {10, 10}, {9, 7}), plain);
    }
}

void MeasureTemplate(TimedView& view, double plain) {
    auto& image = view.Image();
    view.Fit();
    const QSize photo = image.Photo().Size();
    const QRect rectangle(photo.width() / 3, photo.height() / 5, photo.height() * 35 / 75,
                          photo.height() * 3 / 5);
    image.AddLayer({Pixels(MakeTemplate()), rectangle, true, true, 60});
    view.WaitUntilPainted();
    const QPointF middle = view.ToWidget(QRectF(rectangle).center());
    Print("drag the template, whole photo", MeasureDrag(view, middle, {5, 3}), plain);
    const QPointF corner = view.ToWidget(rectangle.bottomRight());
    Print("scale the template, whole photo", MeasureDrag(view, corner, {5, 4}), plain);
}

void MeasurePhoto(const char* name, QSize size) {
    const QImage photo = MakePhoto(size);
    const double plain = MeasurePlainDrawing(photo).median;
    std::printf("%s (%d x %d); plain drawing of the whole: %.2f ms\n", name, size.width(),
                size.height(), plain);
    LayeredImage image;
    TimedView view(image);
    view.SetSettleDelay(std::chrono::milliseconds(0));
    view.resize(ViewSize);
    view.show();
    view.WaitUntilPainted();
    const double first =
        view.FrameTime([&] { view.Image().Open(Pixels(photo), DotsPerInch{300}); });
    Print("first frame after opening", {first, first}, plain);
    Print("turns of the loop until it is smooth", view.WaitUntilPainted(), plain);
    std::printf("    %zu turns\n", view.Turns());
    // Movement and rest are measured apart.
    view.SetSettleDelay(std::chrono::minutes(10));
    const Times zooming = view.FrameTimes([&](int frame) {
        SendWheel(view, {700, 400}, frame <= Frames / 2 ? 60 : -60);
    });
    Print("zoom", zooming, plain);
    view.Fit();
    view.SetSettleDelay(std::chrono::milliseconds(0));
    view.WaitUntilPainted();
    const Times smooth = view.FrameTimes([&](int frame) { view.SetZoomPercent(20 + frame); });
    Print("smooth whole frame", smooth, plain);
    view.SetSettleDelay(std::chrono::minutes(10));
    MeasurePans(view, plain);
    MeasureTemplate(view, plain);
}

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    cv::setNumThreads(1);
    MeasurePhoto("24 megapixels", {6000, 4000});
    MeasurePhoto("100 megapixels", {12000, 8333});
    return 0;
}
