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

/// Documents that draw, and Apple's icons, whose plug-in allocates whatever a header says.
bool IsUnwanted(const QByteArray& format) {
    return format == "svg" || format == "svgz" || format == "pdf" || format == "icns";
}

void JumpToLargestIcon(QImageReader& reader) {
    int largest = 0;
    qint64 largestArea = 0;
    for (int i = 0; i < reader.imageCount() && reader.jumpToImage(i); ++i) {
        const QSize size = reader.size();
        const qint64 area = qint64{size.width()} * size.height();
        if (area > largestArea) {
            largestArea = area;
            largest = i;
        }
    }
    reader.jumpToImage(largest);
}

QString ReasonOf(QImageReader::ImageReaderError error) {
    return error == QImageReader::UnsupportedFormatError
               ? u"Das Format der Datei ist nicht bekannt."_s
               : u"Die Datei ist beschädigt oder unvollständig."_s;
}

/// Empty where there is none or where it is sRGB.
QByteArray ProfileOf(const QImage& image, const QByteArray& format, QIODevice& device) {
    const QColorSpace space = image.colorSpace();
    if (space == QColorSpace(QColorSpace::SRgb)) {
        return {};
    }
    // The PNG plug-in drops a profile that QColorSpace does not understand.
    return format == "png" && !space.isValid() ? ReadPngProfile(device) : space.iccProfile();
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

DecodedImage ReadByPlugin(const ReadTask& task) {
    DecodedImage decoded;
    decoded.metadata = ReadFileMetadata(task.Device());
    task.Device().seek(0);
    LimitAllocations(task.MaximumPixels());
    QImageReader reader(&task.Device());
    reader.setAutoTransform(false);
    const QByteArray format = reader.format();  // none any more once it was read
    if (!reader.canRead() || IsUnwanted(format)) {
        task.Fail(ReasonOf(QImageReader::UnsupportedFormatError));
    }
    if (format == "ico") {
        JumpToLargestIcon(reader);
    }
    if (const QSize size = reader.size(); size.isValid()) {
        task.RequireAllowedSize(size.width(), size.height());
    }
    if (!IsComplete(task.Device())) {
        task.Fail(IncompleteFileReason());
    }
    QImage image = reader.read();
    if (image.isNull()) {
        task.Fail(ReasonOf(reader.error()));
    }
    task.RequireAllowedSize(image.width(), image.height());
    decoded.profile = ProfileOf(image, format, task.Device());
    if (!decoded.profile.isEmpty() && image.allGray()) {
        decoded.model = ColourModel::Grey;
    }
    const QImage::Format workFormat = FormatToWorkIn(image);
    decoded.image = RequireAllocated(std::move(image).convertToFormat(workFormat));
    return decoded;
}

}  // namespace kadrona::imaging
