#include "imaging/writing/PdfFile.h"

#include <vector>

#include "imaging/writing/DeflatedRows.h"
#include "imaging/writing/FormatWriting.h"

namespace kadrona::imaging {

namespace {

/// The objects in the order in which they stand in the file. From the first image on there are two
/// for each: the image and the length of its stream.
enum class Object { Catalogue = 1, Pages, Page, Content, Profile, Information, FirstImage };

/// "N 0 R"
QByteArray Reference(qsizetype number) {
    return QByteArray::number(number) + " 0 R";
}

QByteArray Reference(Object object) {
    return Reference(static_cast<qsizetype>(object));
}

/// The resources' entries of so many images.
QByteArray ImageNames(size_t count) {
    QByteArray names;
    for (size_t i = 0; i < count; ++i) {
        const auto index = static_cast<qsizetype>(i);
        names += "/Image" + QByteArray::number(index) + ' ' +
                 Reference(static_cast<qsizetype>(Object::FirstImage) + 2 * index) + ' ';
    }
    return names;
}

/// A channel of a colour, 0 ... 1.
QByteArray Share(int channel) {
    return QByteArray::number(channel / 255.0, 'f', 4) + ' ';
}

/// Writes a file object by object, in the order of their numbers.
class PdfFile {
 public:
    explicit PdfFile(QIODevice& device);

    void AppendObject(const QByteArray& content);
    /// `entries` of the stream's dictionary, without its length.
    void AppendStream(const QByteArray& entries, const QByteArray& bytes);
    /// Two objects: a lossless image and the length of its stream.
    void AppendImage(const RowSource& rows);
    /// The table of objects and the trailer.
    void Finish();

 private:
    void Append(const QByteArray& text);
    void Begin();
    void End();

    QIODevice& device_;
    /// Where the objects begin.
    std::vector<qint64> offsets_;
};

PdfFile::PdfFile(QIODevice& device) : device_(device) {
    Append("%PDF-1.4\n%\xe2\xe3\xcf\xd3\n");  // four bytes that say that it is binary
}

void PdfFile::Append(const QByteArray& text) {
    WriteBytes(device_, text.constData(), text.size());
}

void PdfFile::Begin() {
    offsets_.push_back(device_.pos());
    Append(QByteArray::number(offsets_.size()) + " 0 obj\n");
}

void PdfFile::End() {
    Append("\nendobj\n");
}

void PdfFile::AppendObject(const QByteArray& content) {
    Begin();
    Append(content);
    End();
}

void PdfFile::AppendStream(const QByteArray& entries, const QByteArray& bytes) {
    AppendObject("<< " + entries + " /Length " + QByteArray::number(bytes.size()) +
                 " >>\nstream\n" + bytes + "\nendstream");
}

void PdfFile::AppendImage(const RowSource& rows) {
    const QByteArray width = QByteArray::number(rows.Width());
    Begin();
    Append("<< /Type /XObject /Subtype /Image /Width " + width + " /Height " +
           QByteArray::number(rows.Height()) + " /ColorSpace [/ICCBased " +
           Reference(Object::Profile) +
           "] /BitsPerComponent 8 /Interpolate false /Filter /FlateDecode /DecodeParms <<" +
           " /Predictor 11 /Colors 3 /BitsPerComponent 8 /Columns " + width + " >> /Length " +
           Reference(static_cast<qsizetype>(offsets_.size()) + 1) + " >>\nstream\n");
    const qint64 begin = device_.pos();
    WriteDeflatedRows(device_, rows);
    const qint64 bytes = device_.pos() - begin;
    Append("\nendstream");
    End();
    AppendObject(QByteArray::number(bytes));
}

void PdfFile::Finish() {
    const qint64 table = device_.pos();
    const QByteArray count = QByteArray::number(offsets_.size() + 1);
    QByteArray text = "xref\n0 " + count + "\n0000000000 65535 f \n";
    for (const qint64 offset : offsets_) {
        text += QByteArray::number(offset).rightJustified(10, '0') + " 00000 n \n";
    }
    text += "trailer\n<< /Size " + count + " /Root " + Reference(Object::Catalogue) + " /Info " +
            Reference(Object::Information) + " >>\nstartxref\n" + QByteArray::number(table) +
            "\n%%EOF\n";
    Append(text);
}

}  // namespace

void WritePdfFile(QIODevice& device, const PdfPage& page, const std::vector<RowSource>& pictures) {
    PdfFile file(device);
    file.AppendObject("<< /Type /Catalog /Pages " + Reference(Object::Pages) +
                      page.catalogueEntries + " >>");
    file.AppendObject("<< /Type /Pages /Count 1 /Kids [" + Reference(Object::Page) + "] >>");
    file.AppendObject("<< /Type /Page /Parent " + Reference(Object::Pages) + " /MediaBox [0 0 " +
                      page.width + ' ' + page.height + "] /Contents " + Reference(Object::Content) +
                      " /Resources << /XObject << " + ImageNames(pictures.size()) + ">> >> >>");
    file.AppendStream({}, page.content);
    file.AppendStream("/N 3 /Alternate /DeviceRGB", SrgbProfile());
    file.AppendObject(page.information);
    for (const RowSource& picture : pictures) {
        file.AppendImage(picture);
    }
    file.Finish();
}

QByteArray DrawnArrangement(const Arrangement& arrangement) {
    // Readers take what ends where a pixel begins for one pixel larger.
    constexpr double Inset = 0.001;
    const auto number = [](int value) { return QByteArray::number(value) + ' '; };
    const auto begin = [](int value) { return QByteArray::number(value + Inset, 'f', 3) + ' '; };
    const auto length = [](int value) {
        return QByteArray::number(value - 2 * Inset, 'f', 3) + ' ';
    };
    QByteArray content;
    for (const Arrangement::Placed& placed : arrangement.placed) {
        const QRect place = arrangement.RectangleOf(placed);
        content += "q " + length(place.width()) + "0 0 " + length(place.height()) +
                   begin(place.left()) + begin(-place.bottom() - 1) + "cm /Image" +
                   QByteArray::number(static_cast<qsizetype>(placed.picture)) + " Do Q\n";
    }
    for (const Arrangement::Mark& mark : arrangement.marks) {
        content += Share(qRed(mark.colour)) + Share(qGreen(mark.colour)) +
                   Share(qBlue(mark.colour)) + "rg " + number(mark.area.left()) +
                   number(-mark.area.bottom() - 1) + number(mark.area.width()) +
                   number(mark.area.height()) + "re f\n";
    }
    return content;
}

std::vector<RowSource> PictureSources(const Arrangement& arrangement) {
    std::vector<RowSource> sources;
    for (const QImage& picture : arrangement.pictures) {
        sources.emplace_back(Pixels(picture), ChannelOrder::RedFirst);
    }
    return sources;
}

}  // namespace kadrona::imaging
