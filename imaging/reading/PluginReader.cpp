#include "imaging/reading/PluginReader.h"

#include <QColorSpace>
#include <QImageReader>
#include <algorithm>
#include <limits>

#include "imaging/pixels/NewImage.h"
#include "imaging/reading/FileCompleteness.h"

using namespace Qt::StringLiterals;

namespace kadrona::imaging {

namespace {

QString ReasonOf(QImageReader::ImageReaderError error) {
    return error == QImageReader::UnsupportedFormatError
               ? u"Das Format der Datei ist nicht bekannt."_s
               : DamagedOrIncompleteFileReason();
}

/// Empty where there is none or where it is sRGB.
QByteArray ProfileOf(const QImage& image) {
    const QColorSpace space = image.colorSpace();
    return space == QColorSpace(QColorSpace::SRgb) ? QByteArray() : space.iccProfile();
}

/// One of the formats that the colour conversion takes, with every bit that the image has.
QImage::Format FormatToWorkIn(const QImage& image) {
    const QPixelFormat format = image.pixelFormat();
    if (format.redSize() > 8 || image.format() == QImage::Format_Grayscale16) {
        return QImage::Format_RGBA64;
    }
    return image.hasAlphaChannel() ? QImage::Format_ARGB32 : QImage::Format_RGB32;
}

}  // namespace

void LimitAllocations(qint64 maximumPixels) {
    constexpr qint64 LargestPixel = 16;  // four floats
    constexpr qint64 Mebibyte = 1 << 20;
    const qint64 limit = maximumPixels * LargestPixel / Mebibyte + 1;
    QImageReader::setAllocationLimit(
        static_cast<int>(std::min<qint64>(limit, std::numeric_limits<int>::max())));
}

DecodedImage ReadByPlugin(const ReadTask& task, const char* format, int index) {
    DecodedImage decoded;
    decoded.metadata = ReadFileMetadata(task.Device());
    task.Device().seek(0);
    LimitAllocations(task.MaximumPixels());
    QImageReader reader(&task.Device(), format);
    reader.setAutoDetectImageFormat(false);
    reader.setAutoTransform(false);
    if (!reader.canRead() || (index > 0 && !reader.jumpToImage(index))) {
        task.Fail(DamagedFileReason());
    }
    const QSize size = reader.size();
    if (size.isValid()) {
        task.RequireAllowedSize(size.width(), size.height());
    }
    if (!IsComplete(task.Device())) {
        task.Fail(IncompleteFileReason());
    }
    QImage image = reader.read();
    if (image.isNull()) {
        if (size.isValid()) {
            NewImage(size, QImage::Format_RGB32);  // says so where that is too much for the memory
        }
        task.Fail(ReasonOf(reader.error()));
    }
    task.RequireAllowedSize(image.width(), image.height());
    decoded.profile = ProfileOf(image);
    if (!decoded.profile.isEmpty() && image.allGray()) {
        decoded.model = ColourModel::Grey;
    }
    const QImage::Format workFormat = FormatToWorkIn(image);
    decoded.image = RequireAllocated(std::move(image).convertToFormat(workFormat));
    return decoded;
}

}  // namespace kadrona::imaging
