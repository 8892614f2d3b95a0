#include "printing/cups/service/JobPage.h"

#include <QTransform>

#include "imaging/pixels/Pixels.h"
#include "imaging/writing/PdfFile.h"

namespace kadrona::printing::cups {

namespace {

constexpr double PointsPerMillimetre = 72 / 25.4;

/// Points to a millionth.
QByteArray Points(double points) {
    return QByteArray::number(points, 'f', 6);
}

QByteArray Matrix(const QTransform& matrix) {
    QByteArray text;
    for (const double number :
         {matrix.m11(), matrix.m12(), matrix.m21(), matrix.m22(), matrix.dx(), matrix.dy()}) {
        text += Points(number) + ' ';
    }
    return text + "cm";
}

/// Draws the copies: each is the unit square of the image, brought to its place. `toPage` leads
/// from the sheet, millimetres around its middle, to the page.
QByteArray DrawnCopies(const PrintImage& image, const QTransform& toPage) {
    QByteArray content;
    for (const QRectF& place : image.CopyMillimetres()) {
        const QTransform fromUnit(place.width(), 0, 0, -place.height(), place.left(),
                                  place.bottom());
        content += "q " + Matrix(fromUnit * toPage) + " /Image0 Do Q\n";
    }
    return content;
}

/// Draws an arrangement, whose unit is the pixel with y upwards.
QByteArray DrawnParts(const PrintImage& image, const QTransform& toPage) {
    const QSizeF sheet = image.Millimetres();
    const double scale = sheet.width() / image.arrangement->size.width();
    const QTransform fromPixels(scale, 0, 0, -scale, -sheet.width() / 2, -sheet.height() / 2);
    return "q " + Matrix(fromPixels * toPage) + '\n' +
           imaging::DrawnArrangement(*image.arrangement) + "Q\n";
}

std::vector<imaging::RowSource> Pictures(const PrintImage& image) {
    if (image.arrangement) {
        return imaging::PictureSources(*image.arrangement);
    }
    return {imaging::RowSource(imaging::Pixels(image.tile), imaging::ChannelOrder::RedFirst)};
}

}  // namespace

void WriteJobPage(QIODevice& device, const PrintImage& image, const PrinterPaper& setting) {
    const PaperGeometry paper = KnownPaper(image, setting.geometry);
    const QSizeF page = paper.page * PointsPerMillimetre;
    // PDF counts from the lower edge up.
    const QTransform toPoints(PointsPerMillimetre, 0, 0, -PointsPerMillimetre, 0, page.height());
    const QTransform toPage =
        SheetToPaper(image, paper, IsTurned(image, setting)) * PaperToPage(paper) * toPoints;
    const QByteArray content =
        image.arrangement ? DrawnParts(image, toPage) : DrawnCopies(image, toPage);
    const imaging::PdfPage written{Points(page.width()), Points(page.height()), content,
                                   " /ViewerPreferences << /PrintScaling /None >>"};
    imaging::WritePdfFile(device, written, Pictures(image));
}

}  // namespace kadrona::printing::cups
