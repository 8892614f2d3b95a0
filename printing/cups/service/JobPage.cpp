#include "printing/cups/service/JobPage.h"

#include <QRectF>

#include "imaging/pixels/Pixels.h"
#include "imaging/writing/PdfFile.h"
#include "printing/Placement.h"

namespace kadrona::printing::cups {

namespace {

constexpr double PointsPerMillimetre = 72 / 25.4;

/// Points to a millionth.
QByteArray Points(double points) {
    return QByteArray::number(points, 'f', 6);
}

/// Draws the copies: each is the unit square of the image, brought to its place. PDF counts from
/// the lower edge up.
QByteArray DrawnCopies(const PrintImage& image, const QRectF& sheet, double pageHeight) {
    const double width = sheet.width() / image.columns;
    const double height = sheet.height() / image.rows;
    QByteArray content;
    for (int row = 0; row < image.rows; ++row) {
        for (int column = 0; column < image.columns; ++column) {
            const double left = sheet.left() + column * width;
            const double bottom = pageHeight - sheet.top() - (row + 1) * height;
            content += "q " + Points(width) + " 0 0 " + Points(height) + ' ' + Points(left) + ' ' +
                       Points(bottom) + " cm /Image Do Q\n";
        }
    }
    return content;
}

}  // namespace

void WriteJobPage(QIODevice& device, const PrintImage& image, QSizeF paperMillimetres,
                  SheetTurn turn) {
    const QSizeF sheet = image.Millimetres() * PointsPerMillimetre;
    const bool turned = turn == SheetTurn::Landscape && !paperMillimetres.isEmpty();
    const QSizeF paper =
        paperMillimetres.isEmpty() ? sheet : paperMillimetres * PointsPerMillimetre;
    const QSizeF page = turned ? paper.transposed() : paper;
    QByteArray content = DrawnCopies(image, CentredOnPaper(page, sheet), page.height());
    if (turned) {
        content.prepend("0 1 -1 0 " + Points(paper.width()) + " 0 cm\n");
    }

    const imaging::PdfPage written{Points(paper.width()), Points(paper.height()), content,
                                   " /ViewerPreferences << /PrintScaling /None >>"};
    imaging::WritePdfFile(
        device, written,
        imaging::RowSource(imaging::Pixels(image.tile), imaging::ChannelOrder::RedFirst));
}

}  // namespace kadrona::printing::cups
