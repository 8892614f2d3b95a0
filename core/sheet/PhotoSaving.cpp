// Saving the finished passport photos: under a name that the user chooses, and quickly.

#include "core/sheet/PhotoSaving.h"

#include <QDir>
#include <QFileInfo>
#include <QScopeGuard>

#include "core/Data.h"
#include "core/Product.h"
#include "core/UserInterface.h"
#include "core/settings/Settings.h"
#include "imaging/pixels/Processing.h"
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

QString TData::SaveFolder() const {
    const QString folder = settings_->ImageSaveDir();
    return QFileInfo(folder).isDir() ? folder : lastSaveFolder_;
}

void TData::SaveImage(imaging::LayeredImage& image, const QString& folder, const QString& fileName,
                      bool scale) {
    const QString target = DelLastBackslash(folder);
    // A root without its separator would be no folder at all.
    const bool isRoot = !folder.isEmpty() && QDir(folder).isRoot();
    saveDialog_.initialFolder = isRoot ? folder : target;
    saveDialog_.fileName = GetNameWithSuffix(currentFile_, u"_kdr"_s);
    const auto recordAgain = qScopeGuard([&] { image.SetAutomaticUndo(true); });
    if (scale) {
        // What may fail for lack of memory comes before anything is changed.
        imaging::Pixels scaled = imaging::Resampled(image.Photo(), OutputSize);
        image.SetAutomaticUndo(false);
        image.RecordUndoStep();
        image.ChangePhoto(std::move(scaled));
    }
    if (fileName.isEmpty()) {
        SaveByDialog(image);
    } else {
        SaveQuickly(image, platform::JoinPath(target, fileName), scale);
    }
}

void TData::SaveByDialog(const imaging::LayeredImage& image) {
    const auto path = ui_.AskForSaveFile(saveDialog_);
    if (!path) {
        return;
    }
    lastSaveFolder_ = QDir::toNativeSeparators(platform::JoinPath(QFileInfo(*path).path(), {}));
    WritePhoto(image, *path);
}

/// Taking the newest step back without a scaling before it reverts the last change of the photo,
/// and is meant to.
void TData::SaveQuickly(imaging::LayeredImage& image, const QString& path, bool scaled) {
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

void TData::AutoSaveImage(imaging::LayeredImage& /*image*/, const QString& /*folder*/) const {}

}  // namespace kadrona::core
