// How long packing collected pictures of mixed sizes takes: what each change of the tray and each
// number beside it waits for.
//
//   bench_pack_items       thirty pictures of eight sizes, one and four copies of each

#include <QImage>
#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>
#include <vector>

#include "core/sheet/CollectedSheet.h"

using namespace kadrona;

namespace {

/// Micrometres.
constexpr std::array Sizes{QSize(35'000, 45'000), QSize(50'800, 50'800), QSize(26'000, 32'000),
                           QSize(50'000, 70'000), QSize(33'000, 48'000), QSize(36'000, 47'000),
                           QSize(60'000, 60'000), QSize(48'000, 61'500)};

std::vector<core::CollectedItem> Items(int copies) {
    std::vector<core::CollectedItem> items;
    const imaging::Pixels picture(QImage(350, 450, QImage::Format_RGB32));
    for (size_t i = 0; i < 30; ++i) {
        items.push_back({picture, Sizes.at(i * 5 % Sizes.size()), {}, {}, copies});
    }
    return items;
}

void Measure(const char* paper, QSize size, int copies) {
    const std::vector<core::CollectedItem> items = Items(copies);
    core::PaperChoice choice;
    choice.paper = size;
    std::vector<double> times;
    size_t placed = 0;
    for (int run = 0; run < 51; ++run) {
        // Of the processor: what else the machine does is not the packing's.
        const std::clock_t start = std::clock();
        placed = core::LayOutCollected(items, choice).copies.size();
        times.push_back(static_cast<double>(std::clock() - start) * 1e3 / CLOCKS_PER_SEC);
    }
    std::sort(times.begin(), times.end());
    std::printf("%-10s %3zu of %3d copies: median %.3f ms, worst %.3f ms\n", paper, placed,
                copies * 30, times[times.size() / 2], times.back());
}

}  // namespace

int main() {
    for (const int copies : {1, 4}) {
        Measure("10 x 15", {101'600, 152'400}, copies);
        Measure("A4", {210'000, 297'000}, copies);
        Measure("1 x 1 m", {1'000'000, 1'000'000}, copies);
    }
    return 0;
}
