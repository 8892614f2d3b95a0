// Frame times of the photo tools in a view of 1920 x 1080 pixels, on one core, in processor time:
// each frame shows the whole photo with another setting of a live preview, pans under one, or
// follows a dab of the retouch stamp. The colour dialog with all its effects is measured in its own
// size.

#include <QApplication>
#include <cstdio>
#include <opencv2/core/utility.hpp>

#include "bench/TimedView.h"
#include "imaging/retouch/CloneStamp.h"
#include "imaging/tone/ColourEffects.h"
#include "imaging/tone/Curves.h"
#include "imaging/tone/HueFilter.h"

namespace {

using namespace kadrona::bench;
using namespace kadrona::imaging;

// One side of the colour dialog when it fills a screen of 1920 x 1080.
constexpr QSize ColourDialogSide(940, 740);

void Print(const char* name, Times times) {
    std::printf("  %-32s %7.2f ms median %8.2f ms worst\n", name, times.median, times.worst);
}

void MeasurePreview(TimedView& view, const char* name,
                    const std::function<PixelFilterPointer(int)>& filterOf) {
    view.SetPreviewFilter(filterOf(1));
    view.WaitUntilPainted();
    Print(name, view.FrameTimes([&](int frame) { view.SetPreviewFilter(filterOf(frame)); }));
    view.SetPreviewFilter(nullptr);
    view.WaitUntilPainted();
}

PixelFilterPointer Curves(int frame) {
    CurveSet curves;
    curves[CurveChannel::Rgb] = Curve({{0, 0}, {100, 60 + frame}, {180, 200}, {255, 255}});
    curves[CurveChannel::Red] = Curve({{0, 10}, {120, 150}, {255, 240}});
    return CurveFilter(curves);
}

// Every effect of the colour dialog at once.
PixelFilterPointer AllEffects(const Histogram& histogram, int frame) {
    return Sequence({EqualisationFilter(histogram, 30), ContrastFilter({.contrast = frame}),
                     HueFilter({.hueDegrees = frame, .saturation = 20}),
                     BalanceFilter({.red = 10, .green = 0, .blue = -10})});
}

void MeasurePan(TimedView& view) {
    view.SetZoomPercent(60);
    view.SetPreviewFilter(Curves(20));
    view.WaitUntilPainted();
    const QPointF start(900, 500);
    SendMouse(view, QEvent::MouseButtonPress, start);
    Print("pan at 60 % under curves", view.FrameTimes([&](int frame) {
        SendMouse(view, QEvent::MouseMove, start + QPointF(9, 7) * frame);
    }));
    SendMouse(view, QEvent::MouseButtonRelease, start);
    view.SetPreviewFilter(nullptr);
}

void MeasureStroke(TimedView& view, const char* name, double percent) {
    view.SetZoomPercent(percent);
    view.WaitUntilPainted();
    const QPointF middle = view.Middle();
    CloneStamp stamp(view.Image());
    stamp.TakeSource(middle + QPointF(300, -200));
    stamp.BeginStroke(middle, {.diameter = 120});
    view.WaitUntilPainted();
    Print(name, view.FrameTimes(
                    [&](int frame) { stamp.ContinueStroke(middle + QPointF(8, 5) * frame); }));
}

void MeasurePhoto(const char* name, QSize size) {
    std::printf("%s (%d x %d)\n", name, size.width(), size.height());
    LayeredImage image;
    TimedView view(image);
    view.SetSettleDelay(std::chrono::milliseconds(0));
    view.resize(ViewSize);
    view.show();
    view.Image().Open(Pixels(MakePhoto(size)), DotsPerInch{300});
    view.WaitUntilPainted();
    const Histogram histogram = HistogramOf(view.Image().Photo());
    MeasurePreview(view, "curves", Curves);
    MeasurePreview(view, "contrast and brightness",
                   [](int frame) { return ContrastFilter({.contrast = frame, .brightness = 10}); });
    MeasurePreview(view, "hue, saturation, lightness", [](int frame) {
        return HueFilter({.hueDegrees = frame, .saturation = 20, .lightness = 5});
    });
    MeasurePreview(view, "RGB balance", [](int frame) { return BalanceFilter({.red = frame}); });
    MeasurePreview(view, "equalisation",
                   [&](int frame) { return EqualisationFilter(histogram, frame); });
    MeasureStroke(view, "stamp stroke, whole photo", view.ZoomPercent());
    MeasureStroke(view, "stamp stroke at 100 %", 100);
    view.SetSettleDelay(std::chrono::minutes(10));
    MeasurePan(view);
    view.SetSettleDelay(std::chrono::milliseconds(0));
    view.resize(ColourDialogSide);
    view.Fit();
    view.WaitUntilPainted();
    MeasurePreview(view, "all effects, colour dialog",
                   [&](int frame) { return AllEffects(histogram, frame); });
}

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    cv::setNumThreads(1);
    MeasurePhoto("24 megapixels", {6000, 4000});
    MeasurePhoto("50 megapixels", {8660, 5773});
    return 0;
}
