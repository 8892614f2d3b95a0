#include "core/sheet/PhotoSaver.h"

#include <QDir>
#include <QFileInfo>
#include <QScopeGuard>

#include "core/base/FileNaming.h"
#include "core/base/Product.h"
#include "core/base/UserInterface.h"
#include "core/settings/Settings.h"
#include "imaging/pixels/Resampling.h"
#include "imaging/writing/ImageWriter.h"
#include "platform/Paths.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

namespace {

/// What the authorities' printing house takes, in pixels.
constexpr QSize OutputSize(413, 531);

}  // namespace

void WritePhoto(const imaging::LayeredImage& image, const QString& path) {
    imaging::WriteImageFile(path, image.Photo(), image.Resolution(),
                            {SoftwareText.toByteArray(), image.Iptc().Own()});
}

QString PhotoSaver::Folder(const Settings& settings) const {
    const QString folder = settings.ImageSaveDir();
    return QFileInfo(folder).isDir() ? folder : lastFolder_;
}

void PhotoSaver::Save(imaging::LayeredImage& image, const Request& request) {
    const QString target = DelLastBackslash(request.folder);
    const auto recordAgain = qScopeGuard([&] { image.SetAutomaticUndo(true); });
    if (request.scale) {
        // What may fail for lack of memory comes before anything is changed.
        imaging::Pixels scaled = imaging::Resampled(image.Photo(), OutputSize);
        image.SetAutomaticUndo(false);
        image.RecordUndoStep();
        image.ChangePhoto(std::move(scaled));
    }
    if (request.fileName.isEmpty()) {
        SaveDialog dialog = SaveDialog::OfPhotos();
        // A root without its separator would be no folder at all.
        const bool isRoot = !request.folder.isEmpty() && QDir(request.folder).isRoot();
        dialog.initialFolder = isRoot ? request.folder : target;
        dialog.fileName = GetNameWithSuffix(request.source, u"_kdr"_s);
        SaveByDialog(image, dialog);
    } else {
        SaveQuickly(image, platform::JoinPath(target, request.fileName), request.scale);
    }
}

void PhotoSaver::SaveByDialog(const imaging::LayeredImage& image, const SaveDialog& dialog) {
    const auto path = ui_.AskForSaveFile(dialog);
    if (!path) {
        return;
    }
    lastFolder_ = QDir::toNativeSeparators(platform::JoinPath(QFileInfo(*path).path(), {}));
    WritePhoto(image, *path);
}

/// Taking the newest step back without a scaling before it reverts the last change of the photo,
/// and is meant to.
void PhotoSaver::SaveQuickly(imaging::LayeredImage& image, const QString& path, bool scaled) {
    try {
        WritePhoto(image, path);
    } catch (...) {
        if (scaled) {
            image.Undo();
        }
        throw;
    }
    ui_.ShowMessage(u"Das Bild wurde unter %1 gespeichert"_s.arg(path));
    image.Undo();
    image.ClearUndo();
}

}  // namespace kadrona::core
