#pragma once

#include <QSize>
#include <QString>
#include <optional>

#include "core/sheet/CuttingMarks.h"
#include "core/sheet/PaperLayout.h"
#include "core/sheet/SheetLayout.h"
#include "imaging/pixels/Pixels.h"
#include "imaging/pixels/Resolution.h"

namespace kadrona::core {

class Settings;

/// What a sheet is made on. Lengths in micrometres.
struct PaperChoice {
    /// Nothing: no paper, but the bare grid of the layout.
    std::optional<QSize> paper;
    int edge = 3'000;
    int gap = 2'000;
    CuttingMarks marks = CuttingMarks::None;
    /// As many copies as the paper takes; else `count`, else those of the layout.
    bool fill = false;
    std::optional<int> count;
    /// Of the sheet; nothing keeps that of the photo, at which it has its printed width.
    std::optional<imaging::DotsPerInch> resolution;
    /// A line of text in the free edge; empty for none.
    QString text;
    /// The gap of the bare grid in micrometres, in place of the one in pixels.
    std::optional<int> gridGap;
};

/// What the settings choose, without the line of text itself.
PaperChoice PaperChoiceOf(const Settings& settings);

/// The line of text of a sheet: the photo's name without folder and extension, the day, the
/// document.
QString SheetText(const QString& photoFile, const QString& document);

/// What of `choice`, which has a paper, is asked of its layout for photos of `photo` micrometres.
PaperRequest RequestOf(const PaperChoice& choice, QSize photo, int layoutIndex);

/// The layout of such a sheet. Throws platform::Error where it takes fewer photos than are asked
/// for, and as LayOutOnPaper does.
PaperLayout RequiredLayout(const PaperChoice& choice, QSize photo, int layoutIndex);

/// The copies of a photo on the paper. `size` is its printed size in micrometres, `resolution` that
/// of the sheet. Throws platform::Error as RequiredLayout and PaperCanvas do.
imaging::Pixels CopiesOnPaper(const imaging::Pixels& photo, QSize size,
                              imaging::DotsPerInch resolution, const PaperChoice& choice,
                              int layoutIndex);

/// Whether only `room` pictures are to be made, fewer than are asked for.
QString RoomQuestion(const PaperRequest& request, int room);

/// Size of a template's canvas, tenths of a millimetre, in micrometres.
QSize PrintedSize(QSize canvas);

/// A photo and how large it prints, micrometres.
struct SizedPhoto {
    imaging::Pixels photo;
    QSize size;
};

/// The middle of a photo that has a white border all around it, as the bare grid gives one, where
/// the part without it is known to print at `printed`; the whole one where it is not, or the photo
/// has no such border. Micrometres; an unknown resolution gives an empty size.
SizedPhoto WithoutBorder(const imaging::Pixels& bordered, imaging::DotsPerInch resolution,
                         QSize printed);

}  // namespace kadrona::core
