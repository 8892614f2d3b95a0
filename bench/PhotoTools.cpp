// Whole-photo time of each photo tool on 24 and 50 megapixels beside OpenCV's equivalent, best of
// several runs in turn, and the time of the retouch stamp's strokes. Beside the time that passes it
// gives that of all processors together, which other programs at work disturb less. Plain figures;
// nothing is asserted.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <functional>
#include <opencv2/imgproc.hpp>

#include "imaging/pixels/FreeRotation.h"
#include "imaging/pixels/MatView.h"
#include "imaging/retouch/CloneStamp.h"
#include "imaging/tone/ColourEffects.h"
#include "imaging/tone/Curves.h"
#include "imaging/tone/HueFilter.h"

using namespace kadrona::imaging;

namespace {

constexpr int Runs = 7;
constexpr double Degrees = 7.3;

/// In milliseconds; the best of several runs.
struct Time {
    double passed = 1e9;
    double processors = 1e9;
};

double Milliseconds(const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;
    return time.count();
}

void Run(const std::function<void()>& work, Time& best) {
    const std::clock_t start = std::clock();
    best.passed = std::min(best.passed, Milliseconds(work));
    const double processors = 1000.0 * static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
    best.processors = std::min(best.processors, processors);
}

void Compare(const char* name, const std::function<void()>& ours,
             const std::function<void()>& peer) {
    Time our;
    Time other;
    for (int run = 0; run < Runs; ++run) {
        Run(ours, our);
        Run(peer, other);
    }
    std::printf("  %-28s %7.1f ms, processors %7.1f   OpenCV %7.1f, %7.1f   ratio %.2f, %.2f\n",
                name, our.passed, our.processors, other.passed, other.processors,
                our.passed / other.passed, our.processors / other.processors);
}

/// Gradients with some noise, as a photo has them.
QImage NewPhoto(QSize size) {
    QImage image(size, QImage::Format_RGB32);
    unsigned seed = 1;
    for (int y = 0; y < image.height(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            seed = seed * 1664525U + 1013904223U;
            const int noise = static_cast<int>(seed >> 28);
            row[x] = qRgb(x * 220 / image.width() + noise + 10,
                          y * 200 / image.height() + noise + 20, (x + y) * 200 / 12000 + noise);
        }
    }
    return image;
}

CurveSet SomeCurves() {
    CurveSet set;
    set[CurveChannel::Rgb] = Curve({{0, 0}, {64, 50}, {190, 215}, {255, 255}});
    set[CurveChannel::Blue] = Curve({{0, 10}, {255, 240}});
    return set;
}

cv::Mat SomeTable() {
    cv::Mat table(1, 256, CV_8UC4);
    for (int level = 0; level < 256; ++level) {
        const auto inverse = static_cast<uchar>(255 - level);
        table.at<cv::Vec4b>(level) = {inverse, inverse, inverse, 255};
    }
    return table;
}

void Equalise(const cv::Mat& photo) {
    cv::Mat converted;
    cv::cvtColor(photo, converted, cv::COLOR_BGR2YCrCb);
    std::vector<cv::Mat> planes;
    cv::split(converted, planes);
    cv::equalizeHist(planes[0], planes[0]);
    cv::merge(planes, converted);
    cv::cvtColor(converted, converted, cv::COLOR_YCrCb2BGR);
}

void CountLevels(const cv::Mat& photo) {
    for (int channel = 0; channel < 3; ++channel) {
        cv::Mat counts;
        const int size = 256;
        const float range[] = {0, 256};
        const float* ranges = range;
        cv::calcHist(&photo, 1, &channel, cv::noArray(), counts, 1, &size, &ranges);
    }
}

void Warp(const cv::Mat& photo) {
    const QSize size = RotatedSize({photo.cols, photo.rows}, Degrees);
    cv::Mat matrix = cv::getRotationMatrix2D(
        {static_cast<float>(photo.cols) / 2, static_cast<float>(photo.rows) / 2}, Degrees, 1);
    matrix.at<double>(0, 2) += (size.width() - photo.cols) / 2.0;
    matrix.at<double>(1, 2) += (size.height() - photo.rows) / 2.0;
    cv::Mat warped;
    cv::warpAffine(photo, warped, matrix, {size.width(), size.height()}, cv::INTER_CUBIC,
                   cv::BORDER_CONSTANT, cv::Scalar::all(255));
}

void CompareColours(const Pixels& photo, const cv::Mat& mat) {
    const auto filter = [&](const PixelFilterPointer& change) {
        return [&photo, change] { static_cast<void>(Filtered(photo, *change)); };
    };
    const auto lookUp = [&, table = SomeTable()] {
        cv::Mat result;
        cv::LUT(mat, table, result);
    };
    Compare("curves", filter(CurveFilter(SomeCurves())), lookUp);
    Compare("contrast and brightness", filter(ContrastFilter({20, 10})), lookUp);
    Compare("RGB balance", filter(BalanceFilter({20, -10, 5})), lookUp);
    Compare("white point", filter(WhitePointFilter(qRgb(250, 240, 200))), lookUp);
    Compare("grey", filter(GreyFilter()), [&] {
        cv::Mat grey;
        cv::cvtColor(mat, grey, cv::COLOR_BGRA2GRAY);
        cv::cvtColor(grey, grey, cv::COLOR_GRAY2BGRA);
    });
    const auto changeHue = [&] {
        cv::Mat converted;
        cv::cvtColor(mat, converted, cv::COLOR_BGR2HLS);
        cv::cvtColor(converted, converted, cv::COLOR_HLS2BGR);
    };
    Compare("hue", filter(HueFilter({20, 0, 0})), changeHue);
    Compare("hue, saturation, lightness", filter(HueFilter({20, 15, -10})), changeHue);
    Compare(
        "histogram", [&] { static_cast<void>(HistogramOf(photo)); }, [&] { CountLevels(mat); });
    Compare(
        "equalisation",
        [&] { static_cast<void>(Filtered(photo, *EqualisationFilter(HistogramOf(photo), 100))); },
        [&] { Equalise(mat); });
}

/// The longest time of all processors that one move of the mouse takes, of a stroke across the
/// photo.
double SlowestMove(const QImage& photo, double diameter, double step) {
    LayeredImage image;
    image.Open(Pixels(photo.copy()), {300});
    CloneStamp stamp(image);
    stamp.TakeSource({photo.width() * 0.3, photo.height() * 0.3});
    stamp.BeginStroke({photo.width() * 0.4, photo.height() * 0.4}, {diameter, 0.5});
    double slowest = 0;
    for (int move = 1; move <= 40; ++move) {
        const QPointF position(photo.width() * 0.4 + move * step, photo.height() * 0.4 + move * 3);
        Time time;
        Run([&] { stamp.ContinueStroke(position); }, time);
        slowest = std::max(slowest, time.processors);
    }
    return slowest;
}

void Measure(QSize size) {
    QImage image = NewPhoto(size);
    const Pixels photo(image);
    std::printf("%d x %d\n", size.width(), size.height());
    const cv::Mat mat = ConstMatView(photo.Tile());
    CompareColours(photo, mat);
    Compare(
        "rotation by 7.3 degrees", [&] { static_cast<void>(Rotated(photo, Degrees)); },
        [&] { Warp(mat); });
    for (const double diameter : {40.0, 400.0, 2000.0}) {
        std::printf(
            "  stamp of %4.0f pixels: slowest move of 20 pixels %.2f ms of the "
            "processors, of 200 %.2f\n",
            diameter, SlowestMove(image, diameter, 20), SlowestMove(image, diameter, 200));
    }
}

}  // namespace

int main() {
    Measure({6000, 4000});
    Measure({8660, 5773});
    return 0;
}
