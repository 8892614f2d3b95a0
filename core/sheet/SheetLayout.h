#pragma once

#include <QLatin1StringView>
#include <QSize>
#include <array>
#include <optional>

#include "imaging/pixels/Resolution.h"

namespace kadrona::core {

/// A length in tenths of a millimetre of the finished photo, the unit of template drawings.
struct TenthsOfMillimetre {
    int value = 0;
    bool operator==(const TenthsOfMillimetre&) const = default;
};

/// How many copies stand on a sheet. The name says rows first.
struct SheetLayout {
    QLatin1StringView name;
    int columns;
    int rows;
};

/// The layouts by layout index, the item index of the picture count box.
inline constexpr std::array SheetLayouts{
    SheetLayout{QLatin1StringView("2 x 4"), 4, 2}, SheetLayout{QLatin1StringView("2 x 3"), 3, 2},
    SheetLayout{QLatin1StringView("2 x 2"), 2, 2}, SheetLayout{QLatin1StringView("1 x 4"), 4, 1},
    SheetLayout{QLatin1StringView("1 x 3"), 3, 1}, SheetLayout{QLatin1StringView("1 x 2"), 2, 1},
    SheetLayout{QLatin1StringView("1 x 1"), 1, 1}, SheetLayout{QLatin1StringView("3 x 3"), 3, 3},
};

/// Layout index of "1 x 1", the single photo: never given a border.
inline constexpr int SinglePhotoLayout = 6;

/// The layout of an index; nothing for an index outside 0 ... 7.
std::optional<SheetLayout> SheetLayoutAt(int layoutIndex);

/// The index of a layout's name; -1 when there is none of that name.
int SheetLayoutIndexOf(QStringView name);

/// The resolution at which a photo `photoWidth` pixels wide prints exactly `printedWidth` wide,
/// rounded to the nearest integer: round(W / (width / 100) * 2.54), the width in tenths of a
/// millimetre divided by 100 giving centimetres. 0 (unknown) for a width of 0 or less or a result
/// that no integer holds.
imaging::DotsPerInch PrintResolution(int photoWidth, TenthsOfMillimetre printedWidth);

/// Size of a single photo with its border of `frameSize` pixels between copies; without one for the
/// single photo layout and for a frame size of 0 or less.
QSize BorderedSize(QSize photo, int frameSize, int layoutIndex);

}  // namespace kadrona::core
