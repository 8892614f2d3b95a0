#pragma once

#include <QRect>
#include <QSize>
#include <QString>
#include <vector>

#include "core/sheet/PaperSheet.h"
#include "imaging/pixels/Pixels.h"
#include "imaging/pixels/Resolution.h"

namespace kadrona::core {

/// A cut picture that waits for a sheet that it shares with others.
struct CollectedItem {
    imaging::Pixels picture;
    /// Printed size in micrometres.
    QSize size;
    /// The document, as the template is called, and whose picture it is.
    QString document;
    QString name;
    int count = 1;
};

/// Where copies of collected pictures lie, micrometres.
struct CollectedLayout {
    struct Copy {
        size_t item;
        QRect place;
        bool turned;
    };
    std::vector<Copy> copies;
    /// How many of each item have no room.
    std::vector<int> missing;

    int MissingCount() const;
};

/// Packs the copies of all items, each with room for a line of text below it, on the choice's
/// paper; on one of 10 x 15 where it has none. Where not all fit, the first in their order go
/// first. Throws platform::Error for more than MostCopies copies.
CollectedLayout LayOutCollected(const std::vector<CollectedItem>& items, const PaperChoice& choice);

/// The paper of a collected sheet, micrometres.
QSize CollectedPaper(const PaperChoice& choice);

/// More than what printers show.
inline constexpr int HighestCollectedResolution = 600;

/// Of all pictures of a sheet together; the program adds some two million with each.
inline constexpr qint64 MostCollectedPixels = 200'000'000;

/// An item's picture in pixels of its own, for a cut keeps its whole photo in memory; one that is
/// finer than `finest` at its printed size is brought to that. Throws platform::Error where memory
/// is short.
imaging::Pixels KeptPicture(const CollectedItem& item, imaging::DotsPerInch finest);

/// The choice's resolution, or the highest at which one of the pictures keeps all its pixels, but
/// not more than HighestCollectedResolution.
imaging::DotsPerInch CollectedResolution(const std::vector<CollectedItem>& items,
                                         const PaperChoice& choice);

/// The sheet: every picture resampled once to the sheet's resolution, with its name and document
/// below. Throws platform::Error where memory is short and as PaperCanvas does.
imaging::Pixels MakeCollectedSheet(const std::vector<CollectedItem>& items,
                                   const CollectedLayout& layout, const PaperChoice& choice);

}  // namespace kadrona::core
