#include "controls/commands/BarArrangement.h"

#include <algorithm>

namespace kadrona::controls {
namespace {

// Marks the separators that stand between two shown items, and of several in a row only the last.
void ShowSeparatorsBetween(const std::vector<BarItem>& items, std::vector<bool>& shown) {
    bool itemBefore = false;
    std::ptrdiff_t pending = -1;
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (items[i].kind == BarItem::Kind::Separator) {
            shown[i] = false;
            pending = itemBefore && items[i].available ? static_cast<std::ptrdiff_t>(i) : pending;
        } else if (shown[i]) {
            if (pending >= 0) {
                shown[static_cast<std::size_t>(pending)] = true;
            }
            pending = -1;
            itemBefore = true;
        }
    }
}

}  // namespace

int BarWidth(const std::vector<BarItem>& items, const std::vector<bool>& shown, int spacing) {
    int width = 0;
    int count = 0;
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (shown[i]) {
            width += items[i].width;
            ++count;
        }
    }
    return width + spacing * std::max(0, count - 1);
}

BarArrangement ArrangeBar(const std::vector<BarItem>& items, int width, int spacing,
                          int extensionWidth) {
    BarArrangement result;
    for (const BarItem& item : items) {
        result.shown.push_back(item.available);
    }
    ShowSeparatorsBetween(items, result.shown);
    int room = width;
    for (std::size_t i = items.size(); i > 0 && BarWidth(items, result.shown, spacing) > room;
         --i) {
        if (items[i - 1].kind == BarItem::Kind::Command && result.shown[i - 1]) {
            result.shown[i - 1] = false;
            result.extensionNeeded = true;
            room = width - spacing - extensionWidth;
            ShowSeparatorsBetween(items, result.shown);
        }
    }
    return result;
}

std::size_t SecondRowBegin(const std::vector<BarItem>& items, int width, int spacing) {
    const auto fits = [&](std::size_t count) {
        const std::vector<BarItem> row(items.begin(),
                                       items.begin() + static_cast<std::ptrdiff_t>(count));
        constexpr int Unlimited = 1 << 20;
        return BarWidth(row, ArrangeBar(row, Unlimited, spacing, 0).shown, spacing) <= width;
    };
    if (fits(items.size())) {
        return items.size();
    }
    for (std::size_t i = items.size(); i > 0; --i) {
        if (items[i - 1].kind == BarItem::Kind::Separator && fits(i - 1)) {
            return i - 1;
        }
    }
    return items.size();
}

}  // namespace kadrona::controls
