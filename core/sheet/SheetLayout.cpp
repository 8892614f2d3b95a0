#include "core/sheet/SheetLayout.h"

#include <algorithm>
#include <limits>

namespace kadrona::core {

namespace {

constexpr qint64 LargestInteger = std::numeric_limits<int>::max();

}  // namespace

std::optional<SheetLayout> SheetLayoutAt(int layoutIndex) {
    if (layoutIndex < 0 || layoutIndex >= static_cast<int>(SheetLayouts.size())) {
        return std::nullopt;
    }
    return SheetLayouts[static_cast<size_t>(layoutIndex)];
}

int SheetLayoutIndexOf(QStringView name) {
    const auto* const found =
        std::find_if(SheetLayouts.begin(), SheetLayouts.end(),
                     [name](const SheetLayout& layout) { return layout.name == name; });
    return found == SheetLayouts.end() ? -1 : static_cast<int>(found - SheetLayouts.begin());
}

imaging::DotsPerInch PrintResolution(int photoWidth, TenthsOfMillimetre printedWidth) {
    if (photoWidth <= 0 || printedWidth.value <= 0) {
        return {};
    }
    // W / (width / 100) * 2.54 = 254 W / width, in integers so that no representable half is lost.
    const qint64 width = printedWidth.value;
    const qint64 rounded = (qint64{2} * 254 * photoWidth + width) / (2 * width);
    return {rounded > LargestInteger ? 0 : static_cast<int>(rounded)};
}

QSize BorderedSize(QSize photo, int frameSize, int layoutIndex) {
    if (layoutIndex == SinglePhotoLayout || frameSize <= 0) {
        return photo;
    }
    const auto widened = [frameSize](int side) {
        return static_cast<int>(std::min(qint64{side} + frameSize, LargestInteger));
    };
    return {widened(photo.width()), widened(photo.height())};
}

}  // namespace kadrona::core
