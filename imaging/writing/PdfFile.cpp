#include "imaging/writing/PdfFile.h"

#include "imaging/writing/DeflatedRows.h"
#include "imaging/writing/FormatWriters.h"

namespace kadrona::imaging {

PdfFile::PdfFile(QIODevice& device) : device_(device) {
    Append("%PDF-1.4\n%\xe2\xe3\xcf\xd3\n");  // four bytes that say that it is binary
}

QByteArray PdfFile::Reference(int object) {
    return QByteArray::number(object) + " 0 R";
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

void PdfFile::AppendImage(const RowSource& rows, int profile) {
    const QByteArray width = QByteArray::number(rows.Width());
    const auto length = static_cast<int>(offsets_.size()) + 2;
    Begin();
    Append("<< /Type /XObject /Subtype /Image /Width " + width + " /Height " +
           QByteArray::number(rows.Height()) + " /ColorSpace [/ICCBased " + Reference(profile) +
           "] /BitsPerComponent 8 /Interpolate false /Filter /FlateDecode /DecodeParms <<" +
           " /Predictor 11 /Colors 3 /BitsPerComponent 8 /Columns " + width + " >> /Length " +
           Reference(length) + " >>\nstream\n");
    const qint64 begin = device_.pos();
    WriteDeflatedRows(device_, rows);
    const qint64 bytes = device_.pos() - begin;
    Append("\nendstream");
    End();
    AppendObject(QByteArray::number(bytes));
}

void PdfFile::AppendSrgbProfile() {
    AppendStream("/N 3 /Alternate /DeviceRGB", SrgbProfile());
}

void PdfFile::Finish(int root, int info) {
    const qint64 table = device_.pos();
    const QByteArray count = QByteArray::number(offsets_.size() + 1);
    QByteArray text = "xref\n0 " + count + "\n0000000000 65535 f \n";
    for (const qint64 offset : offsets_) {
        text += QByteArray::number(offset).rightJustified(10, '0') + " 00000 n \n";
    }
    text += "trailer\n<< /Size " + count + " /Root " + Reference(root) + " /Info " +
            Reference(info) + " >>\nstartxref\n" + QByteArray::number(table) + "\n%%EOF\n";
    Append(text);
}

}  // namespace kadrona::imaging
