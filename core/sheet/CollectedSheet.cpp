#include "core/sheet/CollectedSheet.h"

#include <algorithm>
#include <map>
#include <numeric>
#include <utility>

#include "core/sheet/PaperCanvas.h"
#include "core/sheet/PaperLayout.h"
#include "core/sheet/PaperSize.h"
#include "core/sheet/ShelfPacking.h"
#include "imaging/pixels/NewImage.h"
#include "imaging/pixels/Resampling.h"
#include "platform/Error.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

namespace {

/// Between a picture and the line below it.
constexpr int AboveText = 400;
constexpr int BesideText = 500;

TextRoom TextBelow(const QRect& place) {
    return {{place.left() + BesideText, place.bottom() + 1 + AboveText,
             place.width() - 2 * BesideText, TextHeight}};
}

/// Packs all, or as many of the first as fit together: those that were collected first go first.
std::vector<std::optional<PackedItem>> PackedInOrder(const std::vector<PackItem>& copies,
                                                     const PaperChoice& choice) {
    const size_t all = copies.size();
    const auto packed = [&](size_t count) {
        const std::vector<PackItem> first(copies.begin(),
                                          copies.begin() + static_cast<ptrdiff_t>(count));
        return PackOnShelves(first, CollectedPaper(choice), choice.edge, choice.gap);
    };
    const auto fit = [&](size_t count) {
        return std::ranges::all_of(packed(count),
                                   [](const auto& item) { return item.has_value(); });
    };
    size_t most = fit(all) ? all : 0;
    size_t tooMany = all;
    while (most + 1 < tooMany) {
        const size_t middle = (most + tooMany) / 2;
        (fit(middle) ? most : tooMany) = middle;
    }
    auto result = packed(most);
    result.resize(all);
    return result;
}

}  // namespace

int CollectedLayout::MissingCount() const {
    return std::accumulate(missing.begin(), missing.end(), 0);
}

QSize CollectedPaper(const PaperChoice& choice) {
    return choice.paper.value_or(NamedPapers.front().size);
}

CollectedLayout LayOutCollected(const std::vector<CollectedItem>& items,
                                const PaperChoice& choice) {
    std::vector<PackItem> copies;
    std::vector<size_t> itemOf;
    for (size_t i = 0; i < items.size(); ++i) {
        if (items[i].count < 0 || items[i].count > MostCopies - static_cast<int>(copies.size())) {
            throw platform::Error(u"Ein Blatt hat höchstens %1 Bilder."_s.arg(MostCopies));
        }
        const auto count = static_cast<size_t>(items[i].count);
        copies.insert(copies.end(), count, {items[i].size, TextHeight + AboveText});
        itemOf.insert(itemOf.end(), count, i);
    }
    const auto packed = PackedInOrder(copies, choice);
    CollectedLayout layout;
    layout.missing.resize(items.size());
    for (size_t i = 0; i < copies.size(); ++i) {
        if (packed[i]) {
            layout.copies.push_back({itemOf[i], packed[i]->place, packed[i]->turned});
        } else {
            ++layout.missing[itemOf[i]];
        }
    }
    return layout;
}

imaging::Pixels KeptPicture(const CollectedItem& item, imaging::DotsPerInch finest) {
    const QSize size(PixelsOf(item.size.width(), finest.value),
                     PixelsOf(item.size.height(), finest.value));
    if (item.picture.Width() > size.width()) {
        return imaging::Resampled(item.picture, size);
    }
    return imaging::Pixels(imaging::RequireAllocated(item.picture.ToImage().copy()));
}

imaging::DotsPerInch CollectedResolution(const std::vector<CollectedItem>& items,
                                         const PaperChoice& choice) {
    if (choice.resolution) {
        return *choice.resolution;
    }
    int resolution = 1;
    for (const CollectedItem& item : items) {
        const TenthsOfMillimetre width{item.size.width() * 10 / MicrometresPerMillimetre};
        resolution = std::max(resolution, PrintResolution(item.picture.Width(), width).value);
    }
    return {std::min(resolution, HighestCollectedResolution)};
}

imaging::Pixels MakeCollectedSheet(const std::vector<CollectedItem>& items,
                                   const CollectedLayout& layout, const PaperChoice& choice) {
    PaperCanvas canvas(CollectedPaper(choice), CollectedResolution(items, choice));
    std::map<std::pair<size_t, bool>, size_t> pictures;
    std::vector<CollectedLayout::Copy> fromTheLeft = layout.copies;
    std::ranges::stable_sort(fromTheLeft, {}, [](const auto& copy) { return copy.place.left(); });
    for (const CollectedLayout::Copy& copy : fromTheLeft) {
        const std::pair key(copy.item, copy.turned);
        if (!pictures.contains(key)) {
            pictures[key] =
                canvas.AddPhoto(items.at(copy.item).picture, copy.place.size(), copy.turned);
        }
        canvas.Place(pictures.at(key), copy.place.topLeft());
        const CollectedItem& item = items.at(copy.item);
        canvas.PlaceText(item.name.isEmpty() ? item.document : item.name + u" · "_s + item.document,
                         TextBelow(copy.place));
    }
    return canvas.Finished(choice.marks);
}

}  // namespace kadrona::core
