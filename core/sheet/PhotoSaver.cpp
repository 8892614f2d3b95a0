#include "core/sheet/PhotoSaver.h"

#include <QDir>
#include <QFileInfo>
#include <QScopeGuard>
#include <algorithm>
#include <limits>

#include "core/base/FileNaming.h"
#include "core/base/Product.h"
#include "core/base/UserInterface.h"
#include "core/settings/Settings.h"
#include "imaging/pixels/Resampling.h"
#include "imaging/writing/ImageWriter.h"
#include "platform/Paths.h"
#include "platform/SilenceWatch.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

namespace {

/// What the authorities' printing house takes, in pixels.
constexpr QSize OutputSize(413, 531);

/// The resolution at which a photo that was `width` pixels wide stays as wide on paper when it is
/// scaled; unknown where it was.
imaging::DotsPerInch KeepingSize(imaging::DotsPerInch resolution, int width) {
    const qint64 rounded =
        (qint64{2} * resolution.value * OutputSize.width() + width) / (qint64{2} * width);
    return {static_cast<int>(std::min<qint64>(rounded, std::numeric_limits<int>::max()))};
}

/// Makes the photo one undo step that is taken back once it is written.
void ScaleForOutput(imaging::LayeredImage& image) {
    // What may fail for lack of memory comes before anything is changed.
    imaging::Pixels scaled = imaging::Resampled(image.Photo(), OutputSize);
    const auto resolution = KeepingSize(image.Resolution(), image.Photo().Width());
    image.SetAutomaticUndo(false);
    image.RecordUndoStep();
    image.ChangePhoto(std::move(scaled));
    image.SetResolution(resolution);
}

SaveDialog DialogFor(const PhotoSaver::Request& request) {
    SaveDialog dialog = SaveDialog::OfPhotos();
    // A root without its separator would be no folder at all.
    const bool isRoot = !request.folder.isEmpty() && QDir(request.folder).isRoot();
    dialog.initialFolder = isRoot ? request.folder : DelLastBackslash(request.folder);
    dialog.fileName = GetNameWithSuffix(request.source, u"_kdr"_s);
    return dialog;
}

}  // namespace

void WritePhoto(const imaging::LayeredImage& image, const QString& path, bool withTags) {
    imaging::WriteImageFile(
        path, image.Photo(), image.Resolution(),
        {SoftwareText.toByteArray(), withTags ? image.Iptc().Own() : imaging::IptcItems()});
}

QString PhotoSaver::Folder(const Settings& settings) const {
    const QString folder = settings.ImageSaveDir();
    const platform::SilenceWatch watch(u"den Ordner „%1“"_s.arg(folder));
    return QFileInfo(folder).isDir() ? folder : lastFolder_;
}

PhotoSaver::Saved PhotoSaver::Save(imaging::LayeredImage& image, const Request& request) {
    const auto recordAgain = qScopeGuard([&] { image.SetAutomaticUndo(true); });
    if (request.fileName.isEmpty()) {
        if (request.scale) {
            ScaleForOutput(image);
        }
        const auto chosen = AskForPath(DialogFor(request));
        if (chosen) {
            WritePhoto(image, *chosen, request.withTags);
        }
        return {chosen.value_or(QString()), image.Photo().Size(), image.Resolution()};
    }
    const QString path = platform::JoinPath(DelLastBackslash(request.folder), request.fileName);
    return SaveQuickly(image, path, request);
}

std::optional<QString> PhotoSaver::AskForPath(const SaveDialog& dialog) {
    auto path = ui_.AskForSaveFile(dialog);
    if (path) {
        lastFolder_ = QDir::toNativeSeparators(platform::JoinPath(QFileInfo(*path).path(), {}));
    }
    return path;
}

/// Taking the newest step back without a scaling before it reverts the last change of the photo,
/// and is meant to.
PhotoSaver::Saved PhotoSaver::SaveQuickly(imaging::LayeredImage& image, const QString& path,
                                          const Request& request) {
    if (request.scale) {
        ScaleForOutput(image);
    }
    try {
        WritePhoto(image, path, request.withTags);
    } catch (...) {
        if (request.scale) {
            image.Undo();
        }
        throw;
    }
    Saved saved{path, image.Photo().Size(), image.Resolution()};
    ui_.ShowMessage(u"Das Bild wurde unter %1 gespeichert"_s.arg(path));
    image.Undo();
    image.ClearUndo();
    return saved;
}

}  // namespace kadrona::core
