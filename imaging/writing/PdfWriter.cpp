#include "imaging/writing/PdfWriter.h"

#include <limits>

#include "imaging/writing/PdfFile.h"
#include "platform/Error.h"

using namespace Qt::StringLiterals;

/// A PDF file (ISO 32000-1) of one page that the picture covers.
namespace kadrona::imaging {

namespace {

constexpr qint64 PointsPerInch = 72;

/// Points that so many pixels measure, a third of a nanometre less at most. Never exactly as many
/// and never more: readers take a page that ends where a pixel begins for one pixel larger.
QByteArray Points(int pixels, DotsPerInch resolution) {
    constexpr qint64 PerPoint = 1'000'000;
    const qint64 dotsPerInch = resolution.value > 0 ? resolution.value : PointsPerInch;
    const qint64 millionths = (pixels * PointsPerInch * PerPoint - 1) / dotsPerInch;
    return QByteArray::number(millionths / PerPoint) + '.' +
           QByteArray::number(millionths % PerPoint).rightJustified(6, '0');
}

QByteArray LiteralString(QByteArray text) {
    text.replace('\\', "\\\\").replace('(', "\\(").replace(')', "\\)");
    return '(' + text + ')';
}

QByteArray InfoDictionary(const WrittenMetadata& metadata) {
    if (metadata.software.isEmpty()) {
        return "<< >>";
    }
    const QByteArray software = LiteralString(metadata.software);
    return "<< /Creator " + software + " /Producer " + software + " >>";
}

/// What draws an arrangement on a page that it covers.
QByteArray PageContent(const Arrangement& arrangement, DotsPerInch resolution,
                       const QByteArray& height) {
    constexpr int Decimals = 12;
    const double dotsPerInch = resolution.value > 0 ? resolution.value : PointsPerInch;
    const QByteArray scale = QByteArray::number(PointsPerInch / dotsPerInch, 'f', Decimals);
    return scale + " 0 0 " + scale + " 0 " + height + " cm\n" + DrawnArrangement(arrangement);
}

}  // namespace

void WritePdf(QIODevice& device, const Pixels& pixels, DotsPerInch resolution,
              const WrittenMetadata& metadata) {
    const Arrangement* arrangement = pixels.Arranged();
    const std::vector<RowSource> pictures =
        arrangement != nullptr ? PictureSources(*arrangement)
                               : std::vector{RowSource(pixels, ChannelOrder::RedFirst)};
    for (const RowSource& rows : pictures) {
        if (rows.BytesPerRow() * rows.Height() > std::numeric_limits<quint32>::max()) {
            throw platform::Error(u"Das Bild ist zu groß: PDF wird bis 4 GiB geschrieben."_s);
        }
    }
    const QByteArray width = Points(pixels.Width(), resolution);
    const QByteArray height = Points(pixels.Height(), resolution);
    PdfPage page{width, height,
                 arrangement != nullptr ? PageContent(*arrangement, resolution, height)
                                        : width + " 0 0 " + height + " 0 0 cm /Image0 Do"};
    page.information = InfoDictionary(metadata);
    WritePdfFile(device, page, pictures);
}

}  // namespace kadrona::imaging
