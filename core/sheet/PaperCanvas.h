#pragma once

#include <QImage>
#include <QRect>
#include <QSize>
#include <QString>
#include <map>
#include <optional>
#include <tuple>
#include <vector>

#include "core/sheet/CuttingMarks.h"
#include "imaging/pixels/Pixels.h"
#include "imaging/pixels/Resolution.h"

namespace kadrona::core {

/// Where a line of text may stand; a turned one is read from the right. Micrometres.
struct TextRoom {
    QRect place;
    bool turned = false;
};

/// Height of a line of text on a sheet.
inline constexpr int TextHeight = 2'500;

/// Room for a line of text between the photos, which stand in the middle, and the paper's edge, off
/// the ticks of cutting marks where there is enough: below the photos or at their right. Nothing
/// where both are too narrow. Micrometres.
std::optional<TextRoom> RoomForText(const std::vector<QRect>& photos, QSize paper);

/// A line of text as it is seen on a sheet, and where, in micrometres.
struct TextOnPaper {
    QImage picture;
    QRect place;
};

/// The line of text of a sheet with these photos, drawn at a resolution. Nothing where it is empty
/// or has no room, and without a QGuiApplication. Micrometres.
std::optional<TextOnPaper> TextBeside(const std::vector<QRect>& photos, QSize paper,
                                      const QString& text, imaging::DotsPerInch resolution);

/// A sheet larger than this is refused, in pixels.
inline constexpr qint64 MostSheetPixels = 1'000'000'000;

/// Makes a sheet of exactly a paper's size: what is placed in micrometres comes to stand on whole
/// pixels, its corner and its size rounded once each.
class PaperCanvas {
 public:
    /// Throws platform::Error for a paper of 0, a resolution below 1, and where the sheet would
    /// have more than MostSheetPixels.
    PaperCanvas(QSize paper, imaging::DotsPerInch resolution);

    /// A picture that fills places of `size` micrometres, resampled where its pixels are not as
    /// many as the resolution has there, and turned first where `turned`. Returns its index. Throws
    /// platform::Error where memory is short.
    size_t AddPhoto(const imaging::Pixels& photo, QSize size, bool turned);
    /// Goes on to the right by the pixel that rounding would have it cover of one placed before;
    /// what stands side by side is placed from the left.
    void Place(size_t picture, QPoint topLeft);
    /// Copies that touch each other in rows and columns, whose block stands in the middle of the
    /// paper: whole pixels side by side. Rounded each by itself, one would cover a pixel of the
    /// next or leave a white line beside it. Where the paper has no room for that, they are.
    void PlaceTouching(size_t picture, const std::vector<QRect>& places);

    /// A line of text in the middle of its room, cut off at its end where it is too long. Needs a
    /// QGuiApplication; does nothing without one.
    void PlaceText(const QString& text, const TextRoom& room);

    /// The sheet with marks that keep off everything placed.
    imaging::Pixels Finished(CuttingMarks marks) const;

 private:
    int Pixels(int micrometres) const;
    QPoint Inside(QPoint at, QSize picture) const;

    imaging::DotsPerInch resolution_;
    imaging::Arrangement sheet_;
    /// Placed after all photos.
    std::vector<imaging::Arrangement::Placed> texts_;
    /// The picture of a text in a room of so many pixels, turned or not: each is kept once.
    std::map<std::tuple<QString, int, int, bool>, size_t> textPictures_;
};

}  // namespace kadrona::core
