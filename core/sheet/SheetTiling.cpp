// From the cut single photo to the sheet of copies.

#include "core/sheet/SheetTiling.h"

#include "core/Data.h"
#include "core/UserInterface.h"
#include "core/settings/Settings.h"
#include "imaging/pixels/Processing.h"
#include "platform/Error.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

void LayOutCopies(imaging::LayeredImage& image, const Settings& settings, int layoutIndex) {
    if (settings.RotateBeforeTileImg()) {
        image.ChangePhoto(imaging::Turned(image.Photo(), imaging::QuarterTurn::CounterClockwise));
    }
    if (const auto layout = SheetLayoutAt(layoutIndex)) {
        image.ChangePhoto(imaging::Repeated(image.Photo(), layout->columns, layout->rows));
    }
}

void TData::TileImage(imaging::LayeredImage& image, int layoutIndex) {
    const QSize photo = image.Photo().Size();
    image.SetResolution(PrintResolution(photo.width(), {templateCanvas_.width()}));
    const QSize bordered = BorderedSize(photo, frameSize_, layoutIndex);
    if (bordered != photo) {
        image.ChangePhoto(imaging::CanvasEnlarged(image.Photo(), bordered));
    }
    if (settings_->ImageAutoSave()) {
        ArchiveSinglePhoto(image);
    }
    LayOutCopies(image, *settings_, layoutIndex);
}

/// Files the photo with its border, before it is turned and repeated; a cancelled tag editor files
/// nothing, a failing archive is told of, and the sheet is made all the same.
void TData::ArchiveSinglePhoto(imaging::LayeredImage& image) {
    const auto lines = ui_.EditTags();
    if (!lines) {
        return;
    }
    const QString keyword = lines->isEmpty() ? QString() : lines->first();
    try {
        SaveImageToArchiv(image, settings_->ImageDestinationDir(), TagText(*lines), keyword);
    } catch (const platform::Error& error) {
        ui_.ShowMessage(error.Text());
    }
}

}  // namespace kadrona::core
