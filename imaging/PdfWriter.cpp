#include <limits>
#include <vector>

#include "imaging/DeflatedRows.h"
#include "imaging/FormatWriters.h"
#include "platform/Error.h"

using namespace Qt::StringLiterals;

/// A PDF file (ISO 32000-1) of one page that the picture covers.
namespace kadrona::imaging {

namespace {

constexpr qint64 PointsPerInch = 72;

/// The objects in the order in which they stand in the file.
enum class Object { Catalogue = 1, Pages, Page, Content, Image, ImageLength, Profile, Info };

QByteArray Reference(Object object) {
    return QByteArray::number(static_cast<int>(object)) + " 0 R";
}

/// Writes the frame of a PDF file and keeps where its objects begin.
class PdfFile {
 public:
    explicit PdfFile(QIODevice& device) : device_(device) {
        Append("%PDF-1.4\n%\xe2\xe3\xcf\xd3\n");  // four bytes that say that it is binary
    }

    void Append(const QByteArray& text) { WriteBytes(device_, text.constData(), text.size()); }

    /// Objects are written in the order of their numbers, from 1.
    void Begin() {
        offsets_.push_back(device_.pos());
        Append(QByteArray::number(offsets_.size()) + " 0 obj\n");
    }
    void End() { Append("\nendobj\n"); }

    void AppendObject(const QByteArray& content) {
        Begin();
        Append(content);
        End();
    }

    void AppendStream(const QByteArray& entries, const QByteArray& bytes) {
        AppendObject("<< " + entries + " /Length " + QByteArray::number(bytes.size()) +
                     " >>\nstream\n" + bytes + "\nendstream");
    }

    /// The table of objects and the trailer.
    void Finish() {
        const qint64 table = device_.pos();
        const QByteArray count = QByteArray::number(offsets_.size() + 1);
        QByteArray text = "xref\n0 " + count + "\n0000000000 65535 f \n";
        for (const qint64 offset : offsets_) {
            text += QByteArray::number(offset).rightJustified(10, '0') + " 00000 n \n";
        }
        text += "trailer\n<< /Size " + count + " /Root " + Reference(Object::Catalogue) +
                " /Info " + Reference(Object::Info) + " >>\nstartxref\n" +
                QByteArray::number(table) + "\n%%EOF\n";
        Append(text);
    }

 private:
    QIODevice& device_;
    std::vector<qint64> offsets_;
};

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

void AppendImage(PdfFile& file, QIODevice& device, const RowSource& rows) {
    const QByteArray width = QByteArray::number(rows.Width());
    file.Begin();
    file.Append("<< /Type /XObject /Subtype /Image /Width " + width + " /Height " +
                QByteArray::number(rows.Height()) + " /ColorSpace [/ICCBased " +
                Reference(Object::Profile) + "] /BitsPerComponent 8 /Interpolate false" +
                " /Filter /FlateDecode /DecodeParms << /Predictor 11 /Colors 3" +
                " /BitsPerComponent 8 /Columns " + width + " >> /Length " +
                Reference(Object::ImageLength) + " >>\nstream\n");
    const qint64 begin = device.pos();
    WriteDeflatedRows(device, rows);
    const qint64 length = device.pos() - begin;
    file.Append("\nendstream");
    file.End();
    file.AppendObject(QByteArray::number(length));
}

QByteArray InfoDictionary(const ImageMetadata& metadata) {
    if (metadata.software.isEmpty()) {
        return "<< >>";
    }
    const QByteArray software = LiteralString(metadata.software);
    return "<< /Creator " + software + " /Producer " + software + " >>";
}

}  // namespace

void WritePdf(QIODevice& device, const Pixels& pixels, DotsPerInch resolution,
              const ImageMetadata& metadata) {
    const RowSource rows(pixels, ChannelOrder::RedFirst);
    if (rows.BytesPerRow() * rows.Height() > std::numeric_limits<quint32>::max()) {
        throw platform::Error(u"Das Bild ist zu groß: PDF wird bis 4 GiB geschrieben."_s);
    }
    const QByteArray width = Points(pixels.Width(), resolution);
    const QByteArray height = Points(pixels.Height(), resolution);
    PdfFile file(device);
    file.AppendObject("<< /Type /Catalog /Pages " + Reference(Object::Pages) + " >>");
    file.AppendObject("<< /Type /Pages /Count 1 /Kids [" + Reference(Object::Page) + "] >>");
    file.AppendObject("<< /Type /Page /Parent " + Reference(Object::Pages) + " /MediaBox [0 0 " +
                      width + ' ' + height + "] /Contents " + Reference(Object::Content) +
                      " /Resources << /XObject << /Image " + Reference(Object::Image) +
                      " >> >> >>");
    file.AppendStream({}, width + " 0 0 " + height + " 0 0 cm /Image Do");
    AppendImage(file, device, rows);
    file.AppendStream("/N 3 /Alternate /DeviceRGB", SrgbProfile());
    file.AppendObject(InfoDictionary(metadata));
    file.Finish();
}

}  // namespace kadrona::imaging
