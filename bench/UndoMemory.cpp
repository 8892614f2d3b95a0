// Memory of ten undo steps on a photo of 24 megapixels, as the history counts it and as the process
// grows, in copies of the photo. Plain figures; nothing is asserted.
#include <QFile>
#include <cstdio>
#include <functional>

#include "imaging/document/LayeredImage.h"
#include "imaging/retouch/CloneStamp.h"

using namespace kadrona::imaging;

namespace {

constexpr QSize PhotoSize(6000, 4000);
constexpr int Steps = 10;
constexpr int EditLength = 300;

/// Resident memory of this process in bytes (the second figure of /proc/self/statm counts pages).
double ResidentBytes() {
    QFile file(QStringLiteral("/proc/self/statm"));
    if (!file.open(QIODevice::ReadOnly)) {
        return 0;
    }
    return file.readAll().split(' ').value(1).toDouble() * 4096;
}

/// Noise, so that no two blocks are equal by chance.
Pixels NewPhoto(quint32 seed) {
    QImage image(PhotoSize, QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            seed = seed * 1664525 + 1013904223;
            row[x] = 0xff000000 | seed >> 8;
        }
    }
    return Pixels(image);
}

QRect EditArea(int step) {
    return {100 + 500 * step, 100 + 350 * step, EditLength, EditLength};
}

void Invert(QImage& image, const QRect& area) {
    for (int y = area.top(); y <= area.bottom(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = area.left(); x <= area.right(); ++x) {
            row[x] ^= 0x00ffffff;
        }
    }
}

void Measure(const char* name, const std::function<void(LayeredImage&, int step)>& change) {
    LayeredImage image;
    image.Open(NewPhoto(1), {300});
    const double copy = static_cast<double>(image.Photo().ByteCount());
    const double before = ResidentBytes();
    for (int step = 0; step < Steps; ++step) {
        image.RecordUndoStep();
        change(image, step);
    }
    const auto report = [&](const char* when) {
        std::printf("%-40s %-24s steps %2d  history %6.3f  process %6.3f\n", name, when,
                    image.UndoCount(), static_cast<double>(image.UndoByteCount()) / copy,
                    (ResidentBytes() - before) / copy);
    };
    report("after the last change");
    // What the last change left alone is found when the next step is recorded.
    image.RecordUndoStep();
    report("after the next recording");
}

}  // namespace

int main() {
    std::printf("In copies of the photo (%d x %d, 32 bits a pixel), beside the photo itself\n",
                PhotoSize.width(), PhotoSize.height());
    Measure("ten recordings without a change", [](LayeredImage&, int) {});
    Measure("ten edits of 300 x 300, in place", [](LayeredImage& image, int step) {
        const QRect area = EditArea(step);
        image.EditPhoto(area, [&](QImage& photo) { Invert(photo, area); });
    });
    Measure("ten stamp strokes of 40 x 300 pixels", [](LayeredImage& image, int step) {
        CloneStamp stamp(image);
        stamp.TakeSource({3000, 2000});
        const QPointF start = EditArea(step).center();
        stamp.BeginStroke(start, {40, 0.5});
        for (int move = 1; move <= 30; ++move) {
            stamp.ContinueStroke(start + QPointF(10 * move, 2 * move));
        }
    });
    Measure("ten edits of 300 x 300, new pixels", [](LayeredImage& image, int step) {
        QImage changed = image.Photo().ToImage();
        Invert(changed, EditArea(step));
        image.ChangePhoto(Pixels(changed));
    });
    Measure("ten changes of the whole photo", [](LayeredImage& image, int step) {
        image.ChangePhoto(NewPhoto(static_cast<quint32>(step) + 2));
    });
    return 0;
}
