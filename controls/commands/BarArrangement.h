#pragma once

#include <cstddef>
#include <vector>

namespace kadrona::controls {

/// One thing on a bar, for the question what fits.
struct BarItem {
    enum class Kind {
        Command,    ///< may go into the extension menu
        Pinned,     ///< always stays
        Separator,  ///< shown only between shown neighbours
    };
    Kind kind = Kind::Command;
    int width = 0;          ///< pixels
    bool available = true;  ///< false: its action is hidden, the item takes no room
};

struct BarArrangement {
    std::vector<bool> shown;       ///< per item
    bool extensionNeeded = false;  ///< some available command is not shown
};

/// Which items fit into `width` pixels with `spacing` between neighbours. Commands are given up
/// from the end; once one is given up, `extensionWidth` is set aside for the button of the menu.
BarArrangement ArrangeBar(const std::vector<BarItem>& items, int width, int spacing,
                          int extensionWidth);

/// Index of the separator that gives way to a second row where not all items fit into one of
/// `width` pixels: the last one up to which they do. The number of items where there is no such
/// separator or all fit.
std::size_t SecondRowBegin(const std::vector<BarItem>& items, int width, int spacing);

/// Width of everything shown, with the spacing between neighbours.
int BarWidth(const std::vector<BarItem>& items, const std::vector<bool>& shown, int spacing);

}  // namespace kadrona::controls
