#include "core/sheet/SheetTiling.h"

#include <QFileInfo>

#include "core/archive/PhotoArchive.h"
#include "core/base/UserInterface.h"
#include "core/settings/Settings.h"
#include "core/sheet/PaperCanvas.h"
#include "core/sheet/PaperSize.h"
#include "core/sheet/SheetLayout.h"
#include "core/templates/LayerPosition.h"
#include "imaging/pixels/Cropping.h"
#include "imaging/pixels/QuarterTurn.h"
#include "platform/Error.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

namespace {

/// Says once, and not for each photo, that photos wait for the archive's server.
void SayThatPhotosWait(PhotoArchive& archive, UserInterface& ui) {
    if (archive.IsNewsThatItIsAway()) {
        ui.ShowMessage(
            u"Der Server mit dem Bildarchiv ist nicht erreichbar. Das Foto wartet auf diesem "
            u"Rechner, ebenso alle weiteren; sobald der Server wieder da ist, bietet das Programm "
            u"an, sie zu archivieren.\n\n"_s +
            archive.WhyAway());
    }
}

/// Why a photo could not be filed; empty where it was, or waits to be. Whoever tries again may
/// have mended what keeps the database from being used.
QString FilingFailure(imaging::LayeredImage& image, const PhotoToFile& photo,
                      const SheetMaking& making, bool again) {
    try {
        if (again && making.openArchive && !making.archive.IsOnServer()) {
            making.openArchive();
        }
        // Beside an unconnected drive the photo would lie hidden below it. A new folder is empty
        // too.
        QString doubt = making.archive.WhyUnmounted(photo.archiveFolder);
        if (!doubt.isEmpty() &&
            !making.ui.AskYesNo(doubt + u"\n\nSoll das Foto trotzdem dort abgelegt werden?"_s)) {
            return doubt;
        }
        switch (making.archive.File(image, photo)) {
            case Filing::NoDatabase:
                return u"Die Datenbank des Bildarchivs ist nicht geöffnet."_s;
            case Filing::NoFolder:
                return u"Im Bildarchiv „%1“ kann der Ordner des Monats nicht angelegt werden."_s
                    .arg(photo.archiveFolder);
            case Filing::Waits:
                SayThatPhotosWait(making.archive, making.ui);
                break;
            case Filing::Done:
                break;
        }
    } catch (const platform::Error& error) {
        return error.Text();
    }
    return {};
}

/// Files the photo with its border, before it is turned and repeated; a cancelled tag editor files
/// nothing, a failing archive can be tried again with the same tags, and the sheet is made all the
/// same.
void ArchiveSinglePhoto(imaging::LayeredImage& image, const SheetMaking& making) {
    SinglePhoto& single = making.single;
    const auto lines = making.ui.EditTags(image.Photo(), single.tags);
    if (!lines) {
        return;
    }
    single.tags = *lines;
    const PhotoToFile photo{
        .archiveFolder = making.settings.ImageDestinationDir(),
        .templateName = single.templateName,
        .tags = TagText(*lines),
        .objectName = lines->value(0),
        .original = making.settings.KeepOriginals() ? single.original : std::nullopt};
    QString failure = FilingFailure(image, photo, making, false);
    while (!failure.isEmpty() &&
           making.ui.AskToRetry(
               failure +
               u"\n\nDas Foto ist nicht archiviert. Soll es noch einmal versucht werden?"_s)) {
        failure = FilingFailure(image, photo, making, true);
    }
    single.isArchived = failure.isEmpty();
}

/// What was done to a photo, in words.
QString ChangesOf(const imaging::PhotoEdits& edits) {
    QStringList changes;
    for (const auto& [done, word] : {std::pair(edits.tone, u"Helligkeit geändert"_s),
                                     std::pair(edits.colours, u"Farben geändert"_s),
                                     std::pair(edits.retouched, u"retuschiert"_s)}) {
        if (done) {
            changes.append(word);
        }
    }
    return changes.join(u", "_s);
}

/// What can be kept of the photo that is cut.
OriginalToKeep OriginalOf(const imaging::LayeredImage& image, const SheetMaking& making,
                          const QRect& rectangle) {
    const QFileInfo opened(making.openedFile);
    return {.file = making.openedFile,
            .bytes = opened.size(),
            .modified = opened.lastModified(),
            .photo = image.Photo(),
            .size = image.Photo().Size(),
            .rectangle = rectangle,
            .changes = ChangesOf(image.Edits())};
}

/// The sheet's own resolution, or the one at which a cut that is `width` pixels wide prints at its
/// size.
imaging::DotsPerInch SheetResolution(const SheetMaking& making, int width) {
    return making.paper.resolution.value_or(PrintResolution(width, {making.shape.canvas.width()}));
}

/// Of the bare grid, in pixels.
int GridGap(const SheetMaking& making, imaging::DotsPerInch resolution) {
    return making.paper.gridGap ? PixelsOf(*making.paper.gridGap, resolution.value)
                                : making.frameSize;
}

/// The size of a cut with its border on the bare grid. Throws where the border would fill the
/// memory: another account may have written the profile.
QSize RequiredBorder(const SheetMaking& making, QSize cut, int layoutIndex) {
    constexpr qint64 MostPixels = 100'000'000;
    const int gap = GridGap(making, PrintResolution(cut.width(), {making.shape.canvas.width()}));
    const QSize bordered = BorderedSize(cut, gap, layoutIndex);
    const auto area = [](QSize size) { return qint64{size.width()} * size.height(); };
    if (area(bordered) - area(cut) > MostPixels) {
        throw platform::Error(
            u"Der Bildabstand von %1 Pixeln ist für diese Bilder zu groß."_s.arg(gap));
    }
    return bordered;
}

/// Throws where the sheet of a cut of that size cannot be made.
void RequireSheet(const SheetMaking& making, QSize cut, int layoutIndex) {
    if (making.paper.paper) {
        const PaperCanvas canvas(*making.paper.paper, SheetResolution(making, cut.width()));
        RequiredLayout(making.paper, PrintedSize(making.shape.canvas), layoutIndex);
    } else {
        RequiredBorder(making, cut, layoutIndex);
    }
}

/// The single photo of a cut, as it is archived and repeated: with its resolution and border.
void MakeSingle(imaging::LayeredImage& image, const SheetMaking& making, int layoutIndex) {
    const QSize photo = image.Photo().Size();
    image.SetResolution(PrintResolution(photo.width(), {making.shape.canvas.width()}));
    if (making.paper.paper) {
        return;
    }
    const QSize bordered = RequiredBorder(making, photo, layoutIndex);
    if (bordered != photo) {
        image.ChangePhoto(imaging::CanvasEnlarged(image.Photo(), bordered));
    }
}

}  // namespace

void ArchiveSingle(imaging::LayeredImage& sheet, const SheetMaking& making) {
    if (making.single.photo.IsEmpty() || making.single.isArchived) {
        return;
    }
    imaging::LayeredImage image;
    image.Open(making.single.photo, {making.single.resolution});
    image.SetIptc(sheet.Iptc());
    ArchiveSinglePhoto(image, making);
    sheet.SetIptc(image.Iptc());
}

void CropPhoto(imaging::LayeredImage& image, const SheetMaking& making, int layoutIndex) {
    image.SetCurrentLayer(1);
    const QRect rectangle = image.LayerAt(1).rectangle;
    RequireSheet(making, rectangle.size(), layoutIndex);
    image.SetCurrentLayer(0);
    try {
        making.layout.Save(LayerSection(making.shape.name, image.Photo().Size()), rectangle);
    } catch (const platform::Error& error) {
        // A place that cannot be remembered must not cost the customer the photos.
        making.ui.ShowMessage(error.Text());
    }
    OriginalToKeep original = OriginalOf(image, making, rectangle);
    // First, for whoever follows the image would take the template for one of the cut.
    image.RemoveLayersAbovePhoto();
    image.ChangePhoto(imaging::Cropped(image.Photo(), rectangle));
    TilePhoto(image, making, layoutIndex, std::move(original));
}

void TilePhoto(imaging::LayeredImage& image, const SheetMaking& making, int layoutIndex,
               std::optional<OriginalToKeep> original) {
    const QSize photo = image.Photo().Size();
    MakeSingle(image, making, layoutIndex);
    // Those of an original that was opened to be cut anew; another cut begins without any.
    QStringList tags;
    if (making.single.photo.IsEmpty()) {
        tags = std::move(making.single.tags);
    }
    making.single = {.photo = image.Photo(),
                     .resolution = image.Resolution(),
                     .templateName = making.shape.name,
                     .original = std::move(original),
                     .tags = std::move(tags)};
    if (making.settings.ImageAutoSave()) {
        ArchiveSinglePhoto(image, making);
    }
    if (making.paper.paper) {
        const imaging::DotsPerInch resolution = SheetResolution(making, photo.width());
        image.ChangePhoto(CopiesOnPaper(image.Photo(), PrintedSize(making.shape.canvas), resolution,
                                        making.paper, layoutIndex));
        image.SetResolution(resolution);
        return;
    }
    LayOutCopies(image, making.settings, layoutIndex);
}

void LayOutCopies(imaging::LayeredImage& image, const Settings& settings, int layoutIndex) {
    if (settings.RotateBeforeTileImg()) {
        image.ChangePhoto(imaging::Turned(image.Photo(), imaging::QuarterTurn::CounterClockwise));
    }
    if (const auto layout = SheetLayoutAt(layoutIndex)) {
        image.ChangePhoto(imaging::Repeated(image.Photo(), layout->columns, layout->rows));
    }
}

}  // namespace kadrona::core
