#include "imaging/reading/ImageReader.h"

#include <QFile>
#include <QFileInfo>
#include <new>

#include "imaging/pixels/LaidOverWhite.h"
#include "imaging/reading/JpegReader.h"
#include "imaging/reading/MetafileReader.h"
#include "imaging/reading/PluginReader.h"
#include "imaging/reading/ReadTask.h"

using namespace Qt::StringLiterals;

namespace kadrona::imaging {

namespace {

DecodedImage Decode(const ReadTask& task) {
    constexpr qint64 LongestSignature = 44;
    const QByteArray start = task.Device().peek(LongestSignature);
    if (start.isEmpty()) {
        task.Fail(u"Die Datei ist leer."_s);
    }
    if (start.startsWith("\xff\xd8\xff")) {
        return ReadJpeg(task);
    }
    if (IsMetafile(start)) {
        return ReadMetafile(task);
    }
    return ReadByPlugin(task);
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

QString OpeningFailure(QFileDevice::FileError error) {
    return error == QFileDevice::PermissionsError ? u"Der Zugriff wurde verweigert."_s
                                                  : u"Die Datei ließ sich nicht öffnen."_s;
}

}  // namespace

LoadedImage ReadImageFile(const QString& path, const ReadOptions& options) {
    const QFileInfo info(path);
    QFile file(path);
    const auto fail = [&info](const QString& reason) {
        throw ReadError(ReadErrorText(info.fileName(), reason));
    };
    if (!info.exists()) {
        fail(u"Die Datei ist nicht vorhanden."_s);
    }
    if (info.isDir()) {
        fail(u"Es ist ein Ordner."_s);
    }
    if (!info.isFile()) {  // a pipe or a device would keep us waiting
        fail(u"Es ist keine gewöhnliche Datei."_s);
    }
    if (!file.open(QIODevice::ReadOnly)) {
        fail(OpeningFailure(file.error()));
    }
    return ReadImage(file, info.fileName(), options);
}

LoadedImage ReadImage(QIODevice& device, const QString& name, const ReadOptions& options) {
    const ReadTask task(device, name, options);
    try {
        return Finished(Decode(task), options.applyOrientation);
    } catch (const ReadError&) {
        throw;
    } catch (const platform::Error&) {  // a picture that does not fit into memory
        task.Fail(OutOfMemoryReason());
    } catch (const std::bad_alloc&) {
        task.Fail(OutOfMemoryReason());
    }
}

}  // namespace kadrona::imaging
