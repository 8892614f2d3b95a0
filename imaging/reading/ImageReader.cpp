#include "imaging/reading/ImageReader.h"

#include <QFile>
#include <QFileInfo>
#include <array>
#include <cerrno>
#include <new>

#include "imaging/pixels/LaidOverWhite.h"
#include "imaging/reading/CameraFiles.h"
#include "imaging/reading/HastyDevice.h"
#include "imaging/reading/IconReader.h"
#include "imaging/reading/JpegReader.h"
#include "imaging/reading/MetafileReader.h"
#include "imaging/reading/PluginReader.h"
#include "imaging/reading/PngReader.h"
#include "imaging/reading/ReadTask.h"
#include "imaging/reading/TiffReader.h"
#include "imaging/reading/WebPReader.h"
#include "platform/ByteReader.h"
#include "platform/RegularFile.h"
#include "platform/SystemReason.h"

using namespace Qt::StringLiterals;

namespace kadrona::imaging {

namespace {

bool IsGif(QByteArrayView start) {
    return start.startsWith("GIF87a") || start.startsWith("GIF89a");
}

bool IsBmp(QByteArrayView start) {
    return start.startsWith("BM");
}

/// Most cameras' raw files are TIFF files too.
DecodedImage ReadTiffOrRaw(const ReadTask& task) {
    return IsRawTiff(task.Device()) ? ReadRaw(task) : ReadTiff(task);
}

/// The plug-in goes through all frames for the size of the picture, byte by byte, and keeps a copy
/// of the picture where one is to be taken back.
DecodedImage ReadGif(const ReadTask& task) {
    constexpr qint64 MostBytes = 40'000'000;
    constexpr qint64 BytesAPixel = 4;
    constexpr qsizetype BeforeSize = 6;
    if (task.Device().size() > MostBytes) {
        task.Fail(TooLargeFileReason(MostBytes));
    }
    const QByteArray header = task.Device().peek(BeforeSize + 4);
    if (header.size() < BeforeSize + 4) {
        task.Fail(IncompleteFileReason());
    }
    platform::ByteReader reader(header);
    reader.Skip(BeforeSize);
    const qint64 width = reader.Read<quint16>();
    const qint64 height = reader.Read<quint16>();
    task.RequireAllowedSize(width, height);  // of the whole, where the plug-in tells a frame's
    task.RequireMemoryBeside(BytesAPixel * width * height);
    return ReadByPlugin(task, "gif");
}

/// A format that is read, told by the first bytes of a file.
struct Format {
    bool (*starts)(QByteArrayView start);
    DecodedImage (*read)(const ReadTask& task);
};

constexpr std::array Formats{
    Format{IsJpeg, ReadJpeg},
    Format{IsPng, ReadPng},
    Format{IsMetafile, ReadMetafile},
    Format{IsWebP, ReadWebP},
    Format{IsRaw, ReadRaw},
    Format{IsHeif, ReadHeif},
    Format{IsJpeg2000, ReadJpeg2000},
    Format{IsJpegXl, ReadJpegXl},
    Format{IsIcon, ReadIcon},
    Format{IsGif, ReadGif},
    Format{IsBmp, [](const ReadTask& task) { return ReadByPlugin(task, "bmp"); }},
    Format{IsTiff, ReadTiffOrRaw},
};

constexpr qint64 LongestSignature = 44;

DecodedImage Decode(const ReadTask& task) {
    const QByteArray start = task.Device().peek(LongestSignature);
    if (start.isEmpty()) {
        task.Fail(u"Die Datei ist leer."_s);
    }
    for (const Format& format : Formats) {
        if (format.starts(start)) {
            return format.read(task);
        }
    }
    task.Fail(u"Das Format der Datei ist nicht bekannt."_s);
}

LoadedImage Finished(DecodedImage decoded, bool applyOrientation) {
    ConvertToSrgb(decoded.image, decoded.model, decoded.profile);
    QImage image = LaidOverWhite(std::move(decoded.image));
    if (applyOrientation) {
        image = Uprighted(std::move(image), decoded.metadata.orientation);
    }
    return {Pixels(std::move(image)), decoded.metadata.resolution,
            std::move(decoded.metadata.iptc)};
}

/// Why a file was not opened, as a sentence.
QString OpeningFailure(const platform::Opening& opening, const QString& path) {
    using Outcome = platform::Opening::Outcome;
    if (opening.outcome != Outcome::Missing && opening.error != ENOTDIR) {
        return opening.Reason() + u'.';
    }
    // Bytes that are no text are lost where names are texts.
    return path.contains(QChar::ReplacementCharacter)
               ? u"Ihr Name ist kein gültiges UTF-8; benennen Sie sie um."_s
               : u"Die Datei ist nicht vorhanden."_s;
}

LoadedImage ReadPatiently(const ReadTask& task) {
    try {
        return Finished(Decode(task), task.Options().applyOrientation);
    } catch (const ReadError&) {
        throw;
    } catch (const platform::Error&) {  // a picture that does not fit into memory
        task.Fail(OutOfMemoryReason());
    } catch (const std::bad_alloc&) {
        task.Fail(OutOfMemoryReason());
    }
}

LoadedImage ReadHastily(QIODevice& device, const QString& name, const ReadOptions& options) {
    HastyDevice hasty(device, QDeadlineTimer(options.patienceMilliseconds));
    const ReadTask task(hasty, name, options);
    try {
        LoadedImage loaded = ReadPatiently(task);
        if (!hasty.HasEnded()) {
            return loaded;
        }
    } catch (const ReadError&) {
        if (!hasty.HasEnded()) {
            throw;
        }
    }
    task.FailAsTooLong();  // and not that the file ends early
}

}  // namespace

LoadedImage ReadImageFile(const QString& path, const ReadOptions& options) {
    const QString name = QFileInfo(path).fileName();
    const auto fail = [&name](const QString& reason) {
        throw ReadError(ReadErrorText(name, reason));
    };
    QFile file;
    if (const platform::Opening opening =
            OpenRegularFile(file, path, platform::LastPart::MayBeLink);
        !opening) {
        fail(OpeningFailure(opening, path));
    }
    try {
        return ReadImage(file, name, options);
    } catch (const ReadError&) {
        if (file.error() == QFileDevice::ReadError) {
            fail(platform::SystemReason(file) + u'.');  // and not that the file ends early
        }
        throw;
    }
}

bool CanGiveUp(QIODevice& device) {
    const QByteArray start = device.peek(LongestSignature);
    return IsMetafile(start) || IsRaw(start) || IsHeif(start) || IsJpegXl(start) ||
           IsJpeg2000(start) || (IsTiff(start) && IsRawTiff(device));
}

bool CanGiveUpFile(const QString& path) {
    QFile file;
    return OpenRegularFile(file, path, platform::LastPart::MayBeLink) && CanGiveUp(file);
}

LoadedImage ReadImage(QIODevice& device, const QString& name, const ReadOptions& options) {
    if (options.patienceMilliseconds > 0) {
        return ReadHastily(device, name, options);
    }
    const ReadTask task(device, name, options);
    return ReadPatiently(task);
}

}  // namespace kadrona::imaging
