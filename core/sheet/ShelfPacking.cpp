#include "core/sheet/ShelfPacking.h"

#include <algorithm>
#include <numeric>

namespace kadrona::core {

namespace {

/// All ways to turn so many sizes are tried, 2 to that power.
constexpr size_t MostTurnedSizes = 8;

using Places = std::vector<std::optional<PackedItem>>;

struct Shelf {
    int top;
    int height;
    /// Where the next picture begins.
    int next;
};

struct Packing {
    Places places;
    int count = 0;
    int height = 0;
};

QSize Laid(const PackItem& item, bool turned) {
    const QSize size = turned ? item.size.transposed() : item.size;
    return {size.width(), size.height() + item.below};
}

/// Packs into `room` from its upper left corner; `turned` says it for each item.
Packing Packed(const std::vector<PackItem>& items, const std::vector<bool>& turned, QSize room,
               int gap) {
    std::vector<size_t> order(items.size());
    std::iota(order.begin(), order.end(), size_t{0});
    std::ranges::stable_sort(order, [&](size_t a, size_t b) {
        return Laid(items[a], turned[a]).height() > Laid(items[b], turned[b]).height();
    });
    Packing packing{Places(items.size())};
    std::vector<Shelf> shelves;
    for (const size_t i : order) {
        const QSize size = Laid(items[i], turned[i]);
        auto shelf = std::ranges::find_if(shelves, [&](const Shelf& candidate) {
            return room.width() - candidate.next >= size.width();
        });
        if (shelf == shelves.end()) {
            const int top = shelves.empty() ? 0 : packing.height + gap;
            if (size.width() > room.width() || room.height() - top < size.height()) {
                continue;
            }
            shelf = shelves.insert(shelf, {top, size.height(), 0});
            packing.height = top + size.height();
        }
        const QSize picture(size.width(), size.height() - items[i].below);
        packing.places[i] = {{{shelf->next, shelf->top}, picture}, turned[i]};
        shelf->next += size.width() + gap;
        ++packing.count;
    }
    return packing;
}

/// The sizes that may lie differently, each once.
std::vector<QSize> SizesOf(const std::vector<PackItem>& items) {
    std::vector<QSize> sizes;
    for (const PackItem& item : items) {
        if (sizes.size() < MostTurnedSizes && std::ranges::find(sizes, item.size) == sizes.end()) {
            sizes.push_back(item.size);
        }
    }
    return sizes;
}

void MoveToTheMiddle(Places& places, const Packing& packing, QSize paper) {
    int width = 0;
    for (const auto& item : places) {
        width = std::max(width, item ? item->place.right() + 1 : 0);
    }
    const QPoint by((paper.width() - width) / 2, (paper.height() - packing.height) / 2);
    for (auto& item : places) {
        if (item) {
            item->place.translate(by);
        }
    }
}

}  // namespace

Places PackOnShelves(const std::vector<PackItem>& items, QSize paper, int edge, int gap) {
    const QSize room = paper - QSize(2 * edge, 2 * edge);
    const std::vector<QSize> sizes = SizesOf(items);
    Packing best;
    for (size_t way = 0; way < size_t{1} << sizes.size(); ++way) {
        std::vector<bool> turned;
        for (const PackItem& item : items) {
            const auto size =
                static_cast<size_t>(std::ranges::find(sizes, item.size) - sizes.begin());
            turned.push_back(size < sizes.size() && ((way >> size) & 1) != 0);
        }
        Packing packing = Packed(items, turned, room, gap);
        if (best.places.empty() || packing.count > best.count ||
            (packing.count == best.count && packing.height < best.height)) {
            best = std::move(packing);
        }
    }
    MoveToTheMiddle(best.places, best, paper);
    return std::move(best.places);
}

}  // namespace kadrona::core
