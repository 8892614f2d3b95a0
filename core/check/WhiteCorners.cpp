#include "core/check/WhiteCorners.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace kadrona::core {

namespace {

constexpr int SmallestSide = 6;

/// One corner of the cut, seen with the corner at 0, 0 and both axes leading inside.
class Corner {
 public:
    Corner(const QImage& photo, const QRect& cut, bool right, bool bottom)
        : photo_(photo), cut_(cut), right_(right), bottom_(bottom) {}

    bool IsWhite() const {
        for (int y = 0; y < SmallestSide; ++y) {
            for (int x = 0; x < SmallestSide; ++x) {
                if (!IsWhite(x, y)) {
                    return false;
                }
            }
        }
        return true;
    }

    /// Both legs end before the next corner, and what lies between their ends is straight.
    bool IsWhiteTriangle() const {
        int width = 0;
        while (width < cut_.width() && IsWhite(width, 0)) {
            ++width;
        }
        int height = 0;
        while (width >= SmallestSide && height < cut_.height() && IsWhite(0, height)) {
            ++height;
        }
        if (height < SmallestSide || width == cut_.width() || height == cut_.height()) {
            return false;
        }
        constexpr double Inside = 0.75;
        constexpr double Outside = 1.25;
        return std::ranges::all_of(std::array{0.2, 0.4, 0.6, 0.8}, [&](double part) {
            const auto isWhite = [&](double reach) {
                return IsWhite(static_cast<int>(reach * part * width),
                               static_cast<int>(std::ceil(reach * (1 - part) * height)) - 1);
            };
            return isWhite(Inside) && !isWhite(Outside);
        });
    }

 private:
    /// False outside the cut.
    bool IsWhite(int x, int y) const {
        const QPoint at(right_ ? cut_.right() - x : cut_.left() + x,
                        bottom_ ? cut_.bottom() - y : cut_.top() + y);
        return cut_.contains(at) && (photo_.pixel(at) & RGB_MASK) == RGB_MASK;
    }

    const QImage& photo_;
    const QRect cut_;
    const bool right_;
    const bool bottom_;
};

/// What a rotation leaves along the whole upper edge: below it the photo begins in a straight line
/// that is not level, unlike a head before a white wall.
bool HasWhiteWedge(const QImage& photo, const QRect& cut) {
    constexpr int Columns = 9;
    constexpr double Straight = 2;
    std::array<double, Columns> heights{};
    for (int i = 0; i < Columns; ++i) {
        const int x = cut.left() + (cut.width() - 1) * i / (Columns - 1);
        int height = 0;
        while (height < cut.height() &&
               (photo.pixel(x, cut.top() + height) & RGB_MASK) == RGB_MASK) {
            ++height;
        }
        heights[static_cast<size_t>(i)] = height;
    }
    const double slope = (heights.back() - heights.front()) / (Columns - 1);
    const auto isOnLine = [&](const double& height) {
        const auto i = static_cast<double>(&height - heights.data());
        return std::abs(height - heights.front() - slope * i) <= Straight;
    };
    return std::abs(heights.back() - heights.front()) >= SmallestSide &&
           std::ranges::all_of(heights, isOnLine);
}

}  // namespace

bool HasWhiteCorners(const imaging::Pixels& photo, const QRect& rectangle, bool turned) {
    const QRect cut = rectangle & QRect({0, 0}, photo.Size());
    if (cut.width() < 2 * SmallestSide || cut.height() < 2 * SmallestSide) {
        return false;
    }
    const QImage image = photo.ToImage();
    const std::array corners{Corner(image, cut, false, false), Corner(image, cut, true, false),
                             Corner(image, cut, false, true), Corner(image, cut, true, true)};
    if (!turned) {
        return std::ranges::any_of(corners,
                                   [](const Corner& corner) { return corner.IsWhiteTriangle(); }) ||
               HasWhiteWedge(image, cut);
    }
    const auto isWhite = [](const Corner& corner) { return corner.IsWhite(); };
    const auto white = std::ranges::count_if(corners, isWhite);
    // A white wall fills both upper corners alike; a rotation leaves white opposite to it too, or a
    // wedge where the cut lies at the photo's edge.
    return white > 0 && (!(white == 2 && isWhite(corners[0]) && isWhite(corners[1])) ||
                         HasWhiteWedge(image, cut));
}

}  // namespace kadrona::core
