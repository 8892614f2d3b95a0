// Scaling a picture to another size with the bicubic filter.

#include <algorithm>
#include <array>
#include <cmath>
#include <opencv2/core/utility.hpp>
#include <vector>

#include "imaging/pixels/CubicKernel.h"
#include "imaging/pixels/NewImage.h"
#include "imaging/pixels/Processing.h"

namespace kadrona::imaging {

namespace {

constexpr int Channels = 4;

/// What a target pixel is mixed from: source pixels from `first` on, by weights that sum up to 1.
struct Mix {
    int first = 0;
    std::vector<float> weights;
};

/// The mixes of one axis. Where the picture shrinks the kernel is stretched to as many source
/// pixels as that takes, so that what is finer than the target's pixels averages out. What lies
/// outside the source does not count.
std::vector<Mix> MixesOf(int source, int target) {
    const double step = static_cast<double>(source) / target;
    const double stretch = std::max(step, 1.0);
    std::vector<Mix> mixes(static_cast<size_t>(target));
    for (int i = 0; i < target; ++i) {
        const double centre = (i + 0.5) * step;
        const int first = std::max(0, static_cast<int>(std::floor(centre - 2 * stretch)));
        const int end = std::min(source, static_cast<int>(std::ceil(centre + 2 * stretch)));
        Mix& mix = mixes[static_cast<size_t>(i)];
        mix.first = first;
        double sum = 0;
        for (int pixel = first; pixel < end; ++pixel) {
            const double weight = CubicKernel((pixel + 0.5 - centre) / stretch);
            mix.weights.push_back(static_cast<float>(weight));
            sum += weight;
        }
        for (float& weight : mix.weights) {
            weight = static_cast<float>(weight / sum);
        }
    }
    return mixes;
}

/// One row of the tile's pixels mixed from several; rows of a grid repeat those of its tile.
void MixRows(const QImage& tile, const Mix& mix, std::vector<float>& mixed) {
    std::fill(mixed.begin(), mixed.end(), 0.0F);
    int row = mix.first % tile.height();
    for (const float weight : mix.weights) {
        const uchar* source = tile.constScanLine(row);
        float* sum = mixed.data();
        for (size_t i = 0; i < mixed.size(); ++i) {
            sum[i] += weight * static_cast<float>(source[i]);
        }
        row = row + 1 == tile.height() ? 0 : row + 1;
    }
}

/// A negative lobe may lead outside of what a channel holds; premultiplied, no colour may exceed
/// its alpha, which stands last.
void StorePixel(const std::array<float, Channels>& sums, uchar* pixel) {
    float limit = 255;
    for (int channel = Channels - 1; channel >= 0; --channel) {
        const float value = std::clamp(sums[static_cast<size_t>(channel)], 0.0F, limit);
        pixel[channel] = static_cast<uchar>(std::lround(value));
        limit = channel == Channels - 1 ? value : limit;
    }
}

void MixColumns(const std::vector<float>& mixed, const std::vector<Mix>& columns, uchar* target) {
    const int width = static_cast<int>(mixed.size()) / Channels;
    for (const Mix& mix : columns) {
        std::array<float, Channels> sums{};
        int column = mix.first % width;
        for (const float weight : mix.weights) {
            const float* pixel = mixed.data() + ptrdiff_t{column} * Channels;
            for (size_t channel = 0; channel < Channels; ++channel) {
                sums[channel] += weight * pixel[channel];
            }
            column = column + 1 == width ? 0 : column + 1;
        }
        StorePixel(sums, target);
        target += Channels;
    }
}

}  // namespace

Pixels Resampled(const Pixels& pixels, QSize size) {
    if (pixels.IsEmpty() || size.isEmpty()) {
        return {};
    }
    if (size == pixels.Size()) {
        return pixels;
    }
    const QImage& tile = pixels.Tile();
    QImage result = NewImage(size, tile.format());
    const std::vector<Mix> columns = MixesOf(pixels.Width(), size.width());
    const std::vector<Mix> rows = MixesOf(pixels.Height(), size.height());
    uchar* const bits = result.bits();
    const qsizetype bytesPerLine = result.bytesPerLine();
    cv::parallel_for_(cv::Range(0, size.height()), [&](const cv::Range& range) {
        std::vector<float> mixed(static_cast<size_t>(tile.width()) * Channels);
        for (int row = range.start; row < range.end; ++row) {
            MixRows(tile, rows[static_cast<size_t>(row)], mixed);
            MixColumns(mixed, columns, bits + row * bytesPerLine);
        }
    });
    return Pixels(std::move(result));
}

}  // namespace kadrona::imaging
