#include "core/check/WhiteCorners.h"

#include <algorithm>
#include <array>

namespace kadrona::core {

bool HasWhiteCorners(const imaging::Pixels& photo, const QRect& rectangle) {
    constexpr int Side = 6;
    const QRect inside = rectangle & QRect({0, 0}, photo.Size());
    if (inside.width() < 2 * Side || inside.height() < 2 * Side) {
        return false;
    }
    const auto isWhite = [&](const QPoint& corner) {
        const QImage part = photo.Region({corner, QSize(Side, Side)}, qRgb(0, 0, 0));
        for (int y = 0; y < Side; ++y) {
            for (int x = 0; x < Side; ++x) {
                if ((part.pixel(x, y) & RGB_MASK) != RGB_MASK) {
                    return false;
                }
            }
        }
        return true;
    };
    const int right = inside.x() + inside.width() - Side;
    const int bottom = inside.y() + inside.height() - Side;
    const std::array corners{inside.topLeft(), QPoint(right, inside.y()),
                             QPoint(inside.x(), bottom), QPoint(right, bottom)};
    const auto white = std::ranges::count_if(corners, isWhite);
    // A white wall fills both upper corners alike; a rotation leaves white opposite to it too.
    return white > 0 && !(white == 2 && isWhite(corners[0]) && isWhite(corners[1]));
}

}  // namespace kadrona::core
