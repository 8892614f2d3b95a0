#include "imaging/reading/MetafileReader.h"

#include <algorithm>
#include <cmath>

#include "imaging/metafile/EmfPlayer.h"
#include "imaging/metafile/WmfPlayer.h"
#include "imaging/pixels/NewImage.h"
#include "imaging/reading/PluginReader.h"
#include "platform/ByteReader.h"

using namespace Qt::StringLiterals;

namespace kadrona::imaging {

namespace {

/// Drawings scale to any size; beyond this one nothing is gained.
constexpr double LongestSide = 10'000;

void Play(QByteArrayView file, MetafileCanvas& canvas) {
    if (IsEmf(file)) {
        EmfPlayer(file, canvas).Play();
    } else {
        WmfPlayer(file, canvas).Play();
    }
}

/// How many pixels of the picture one of the recording device's shall have, so that no large bitmap
/// in the file loses any of its own.
double ScaleOf(QByteArrayView file, const MetafilePicture& picture, qint64 maximumPixels) {
    QImage probe = NewImage({1, 1}, QImage::Format_RGB32);
    const QSizeF size = picture.frame.size();
    const QTransform toProbe = QTransform::fromTranslate(-picture.frame.x(), -picture.frame.y()) *
                               QTransform::fromScale(1 / size.width(), 1 / size.height());
    MetafileCanvas canvas(probe, toProbe, picture.dotsPerMillimetre, MetafileCanvas::MeasureOnly);
    Play(file, canvas);
    const double finest = canvas.FinestBitmap() / std::sqrt(size.width() * size.height());
    const double limit =
        std::min(LongestSide / std::max(size.width(), size.height()),
                 std::sqrt(double(maximumPixels) / (size.width() * size.height())));
    return std::min(std::max(1.0, finest), limit);
}

/// Rounded, but to no more pixels than allowed.
QSize PixelSize(QSizeF size, qint64 maximumPixels) {
    QSize rounded = size.toSize();
    if (qint64{rounded.width()} * rounded.height() > maximumPixels) {
        rounded = {static_cast<int>(size.width()), static_cast<int>(size.height())};
    }
    return rounded.expandedTo({1, 1});
}

DecodedImage Drawn(const ReadTask& task, QByteArrayView file) {
    /// Bitmaps as the canvas counts them, or a shape of as many points as a record may have.
    constexpr qint64 MostBytesOfDrawing = 140'000'000;
    task.RequireMemoryBeside(file.size() + MostBytesOfDrawing, file.size() + MostBytesOfDrawing);
    const MetafilePicture picture = IsEmf(file) ? ReadEmfHeader(file) : ReadWmfHeader(file);
    const double scale = ScaleOf(file, picture, task.MaximumPixels());
    const QSize size = PixelSize(picture.frame.size() * scale, task.MaximumPixels());
    // Its size is not told beforehand: drawing takes less time for each pixel than decoding.
    DecodedImage decoded;
    decoded.image = task.NewPicture(size, QImage::Format_RGB32);
    decoded.image.fill(Qt::white);
    const QTransform toImage = QTransform::fromTranslate(-picture.frame.x(), -picture.frame.y()) *
                               QTransform::fromScale(size.width() / picture.frame.width(),
                                                     size.height() / picture.frame.height());
    {
        MetafileCanvas canvas(decoded.image, toImage, picture.dotsPerMillimetre,
                              task.MaximumPixels());
        Play(file, canvas);
        if (!canvas.HasDrawn()) {
            task.Fail(u"Die Datei enthält nichts, was sich darstellen lässt."_s);
        }
    }
    if (picture.widthInInches > 0) {
        decoded.metadata.resolution = ResolutionFrom(size.width() / picture.widthInInches);
    }
    return decoded;
}

QString ReasonOf(const UnsupportedRecord& record) {
    const QString name =
        record.name ? QString::fromLatin1(record.name) : u"0x%1"_s.arg(record.number, 0, 16);
    return u"Der Zeichenbefehl „%1“ wird nicht unterstützt."_s.arg(name);
}

QString ReasonOf(MetafileFault fault) {
    switch (fault) {
        case MetafileFault::Incomplete:
            return IncompleteFileReason();
        case MetafileFault::TooComplex:
            return u"Die Zeichnung ist zu umfangreich."_s;
        case MetafileFault::Damaged:
            break;
    }
    return DamagedFileReason();
}

}  // namespace

bool IsMetafile(QByteArrayView start) {
    return IsEmf(start) || IsWmf(start);
}

DecodedImage DrawMetafile(const ReadTask& task) try {
    LimitAllocations(task.MaximumPixels());
    const QByteArray file = task.ReadWhole();
    return Drawn(task, file);
} catch (MetafileFault fault) {
    task.Fail(ReasonOf(fault));
} catch (const UnsupportedRecord& record) {
    task.Fail(ReasonOf(record));
} catch (const platform::OutOfBytes&) {
    task.Fail(DamagedFileReason());
}

}  // namespace kadrona::imaging
