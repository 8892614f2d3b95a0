#pragma once

#include <QRect>
#include <QSize>
#include <optional>
#include <vector>

namespace kadrona::core {

/// A picture to be packed. Micrometres.
struct PackItem {
    QSize size;
    /// Kept free below it, whichever way it lies.
    int below = 0;
};

struct PackedItem {
    /// Of the picture alone, turned where `turned`.
    QRect place;
    bool turned = false;
};

/// Packs pictures of different sizes on a paper, each upright or lying, `gap` apart and `edge` from
/// the paper's edges; what there is no room for has no place. Micrometres.
///
/// First-fit decreasing height on shelves (Coffman, Garey, Johnson and Tarjan 1980, "Performance
/// bounds for level-oriented two-dimensional packing algorithms"): the pictures, highest first,
/// each go on the first shelf with room. Shelves were chosen over maximal rectangles because
/// straight cuts across the paper take them apart. Every way to turn the sizes that there are is
/// tried (of the first eight), and the one that places most on the least height is taken; the same
/// pictures always lie the same way. The packed block stands in the middle of the paper.
std::vector<std::optional<PackedItem>> PackOnShelves(const std::vector<PackItem>& items,
                                                     QSize paper, int edge, int gap);

}  // namespace kadrona::core
