#pragma once

#include <QRect>
#include <QSize>
#include <optional>
#include <vector>

namespace kadrona::core {

/// Copies of one photo on a paper. All lengths in micrometres.
struct PaperRequest {
    QSize paper;
    /// Kept free at every side of the paper.
    int edge = 0;
    /// Between neighbouring photos.
    int gap = 0;
    QSize photo;
    /// Nothing fills the paper.
    std::optional<int> count;
};

/// Where they lie.
struct PaperLayout {
    /// The photos lie turned by a quarter, because more fit that way.
    bool turned = false;
    /// Of the photo's size, turned where `turned`, micrometres from the paper's upper left corner,
    /// row by row. Fewer than asked for where there is no room.
    std::vector<QRect> photos;
    /// How many would fit.
    int room = 0;
};

/// Lays the copies out as a grid in the middle of the paper. They are turned only where more of
/// those asked for fit. Throws platform::Error, whose text names the sizes, where not one fits, for
/// lengths below 0 or sizes of 0, a count below 1, and where more than MostCopies would fit.
PaperLayout LayOutOnPaper(const PaperRequest& request);

/// The widest gap that a user can choose, micrometres.
inline constexpr int WidestGap = 20'000;

/// More than any paper that is sold takes.
inline constexpr int MostCopies = 2000;

}  // namespace kadrona::core
