#pragma once

#include <functional>
#include <optional>

#include "core/archive/FiledFiles.h"
#include "core/sheet/PaperSheet.h"
#include "core/templates/Template.h"
#include "imaging/document/LayeredImage.h"

namespace kadrona::core {

class PhotoArchive;
class Settings;
class UserInterface;

/// The single photo of the sheet that was made last, for the archive.
struct SinglePhoto {
    imaging::Pixels photo;  ///< with its border; empty where no sheet was made of the open photo
    imaging::DotsPerInch resolution;
    QString templateName;
    std::optional<OriginalToKeep> original;
    /// Those typed last for it; before it is made, those that its tag editor begins with.
    QStringList tags;
    /// Also where it waits for the archive's server.
    bool isArchived = false;
};

/// What a sheet is made by, beside the photo. All references outlive the call.
struct SheetMaking {
    const Template& shape;
    const Settings& settings;
    const LayoutFile& layout;
    PhotoArchive& archive;
    UserInterface& ui;
    int frameSize;  ///< between copies, in pixels
    const PaperChoice& paper;
    /// Gets what is made.
    SinglePhoto& single;
    /// The file that the photo was opened from, as long as it is still the same; else empty.
    QString openedFile = {};
    /// Opens the archive's database anew. Throws platform::Error.
    std::function<void()> openArchive = {};
};

/// From the photo under a template to the sheet: remembers where the template lies, cuts the photo
/// to it, drops the template, and makes the sheet of copies. Throws platform::Error, with nothing
/// changed, where a chosen paper does not take them.
void CropPhoto(imaging::LayeredImage& image, const SheetMaking& making, int layoutIndex);

/// From the cut photo to the sheet: stamps its resolution, adds its border, files it in the archive
/// where the settings say so, and lays out the copies: as a bare grid, or on the chosen paper,
/// which has its own gap in place of the border and turns them where more fit. The original goes
/// into the archive with the photo where the settings say so.
void TilePhoto(imaging::LayeredImage& image, const SheetMaking& making, int layoutIndex,
               std::optional<OriginalToKeep> original = {});

/// Archives the single photo after its sheet was made, as it would have been then. `sheet` gets the
/// tags. Does nothing where it is archived.
void ArchiveSingle(imaging::LayeredImage& sheet, const SheetMaking& making);

/// From a single photo to the sheet: turns it counter-clockwise where RotateBeforeTileImg is on and
/// repeats it as the layout says. An index beyond the layouts repeats nothing.
void LayOutCopies(imaging::LayeredImage& image, const Settings& settings, int layoutIndex);

}  // namespace kadrona::core
