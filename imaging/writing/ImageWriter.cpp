#include "imaging/writing/ImageWriter.h"

#include <QBuffer>
#include <QDir>
#include <QFileInfo>
#include <array>
#include <new>

#include "imaging/writing/BmpWriter.h"
#include "imaging/writing/Jpeg2000Writer.h"
#include "imaging/writing/JpegWriter.h"
#include "imaging/writing/PdfWriter.h"
#include "imaging/writing/PngWriter.h"
#include "imaging/writing/TiffWriter.h"
#include "platform/AtomicFile.h"

using namespace Qt::StringLiterals;

namespace kadrona::imaging {

namespace {

struct Format {
    QLatin1StringView extension;
    FormatWriter* write;
};

constexpr std::array Formats{
    Format{"jpg"_L1, WriteJpeg},  Format{"jpeg"_L1, WriteJpeg}, Format{"jp2"_L1, WriteJpeg2000},
    Format{"png"_L1, WritePng},   Format{"bmp"_L1, WriteBmp},   Format{"tif"_L1, WriteTiff},
    Format{"tiff"_L1, WriteTiff}, Format{"pdf"_L1, WritePdf},
};

const Format& FormatOf(const QString& path) {
    const QString extension = QFileInfo(path).suffix();
    for (const Format& format : Formats) {
        if (extension.compare(format.extension, Qt::CaseInsensitive) == 0) {
            return format;
        }
    }
    const QString known = u"bekannt sind ."_s + WritableExtensions().join(u", ."_s);
    throw platform::Error(extension.isEmpty()
                              ? u"Der Name hat keine Endung; %1."_s.arg(known)
                              : u"Die Endung „%1“ ist nicht bekannt; %2."_s.arg(extension, known));
}

void Write(const QString& path, const Pixels& pixels, DotsPerInch resolution,
           const WrittenMetadata& metadata) {
    const Format& format = FormatOf(path);
    if (pixels.IsEmpty()) {
        throw platform::Error(u"Das Bild ist leer."_s);
    }
    platform::AtomicFile file(path);
    format.write(file.Device(), pixels, resolution, metadata);
    file.Commit();
}

}  // namespace

QStringList WritableExtensions() {
    QStringList extensions;
    for (const Format& format : Formats) {
        extensions.append(format.extension);
    }
    return extensions;
}

void WriteImageFile(const QString& path, const Pixels& pixels, DotsPerInch resolution,
                    const WrittenMetadata& metadata) {
    const auto text = [&](const QString& reason) {
        return u"Die Datei „%1“ konnte nicht gespeichert werden: %2"_s.arg(
            QDir::toNativeSeparators(path), reason);
    };
    try {
        Write(path, pixels, resolution, metadata);
    } catch (const platform::FileError& error) {
        // Names the file already.
        throw WriteError(error.Text());
    } catch (const platform::Error& error) {
        throw WriteError(text(error.Text()));
    } catch (const std::bad_alloc&) {
        throw WriteError(text(u"Der Arbeitsspeicher reicht nicht aus."_s));
    }
}

QByteArray EncodeJpeg(const Pixels& pixels, DotsPerInch resolution,
                      const WrittenMetadata& metadata) {
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    WriteJpeg(buffer, pixels, resolution, metadata);
    return buffer.data();
}

}  // namespace kadrona::imaging
