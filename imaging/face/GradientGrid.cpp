#include "imaging/face/GradientGrid.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <opencv2/imgproc.hpp>

namespace kadrona::imaging {

namespace {

constexpr int Directions = GradientGridDepth - 1;
/// For each direction the strength in each cell.
using Strengths = std::array<cv::Mat1f, Directions>;

/// A place between two neighbours of a row of bins, shared between them.
struct Between {
    int lower = 0;
    float part = 0;  ///< of the upper one

    explicit Between(float at)
        : lower(static_cast<int>(std::floor(at))), part(at - static_cast<float>(lower)) {}
    /// The share of the lower bin (0) or the upper one (1).
    float Share(int which) const { return which == 0 ? 1 - part : part; }
};

/// Adds a gradient at a place, given in cells, to the four nearest cells.
void Spread(cv::Mat1f& strengths, Between row, Between column, float strength) {
    for (const int down : {0, 1}) {
        for (const int right : {0, 1}) {
            const int y = row.lower + down;
            const int x = column.lower + right;
            if (y >= 0 && x >= 0 && y < strengths.rows && x < strengths.cols) {
                strengths(y, x) += strength * row.Share(down) * column.Share(right);
            }
        }
    }
}

Strengths StrengthsOf(const cv::Mat1f& grey, int cell) {
    Strengths strengths;
    for (cv::Mat1f& direction : strengths) {
        direction = cv::Mat1f::zeros(grey.rows / cell, grey.cols / cell);
    }
    cv::Mat1f dx;
    cv::Mat1f dy;
    cv::Sobel(grey, dx, CV_32F, 1, 0);
    cv::Sobel(grey, dy, CV_32F, 0, 1);
    const auto inCells = [&](int pixel) {
        return Between((static_cast<float>(pixel) + 0.5F) / static_cast<float>(cell) - 0.5F);
    };
    for (int y = 0; y < grey.rows; ++y) {
        for (int x = 0; x < grey.cols; ++x) {
            const float strength = std::hypot(dx(y, x), dy(y, x));
            const float turn = std::atan2(dy(y, x), dx(y, x)) / (2 * std::numbers::pi_v<float>);
            const Between direction((turn + 0.5F) * Directions);
            for (const int next : {0, 1}) {
                const auto bin = static_cast<size_t>((direction.lower + next) % Directions);
                Spread(strengths.at(bin), inCells(y), inCells(x), strength * direction.Share(next));
            }
        }
    }
    return strengths;
}

/// One over the strength around each cell.
cv::Mat1f Scales(const Strengths& strengths) {
    constexpr double PartOfWhole = 0.25;  // so that noise in a plain cell stays small
    cv::Mat1f energy(strengths.front().size(), 0.0F);
    for (const cv::Mat1f& direction : strengths) {
        energy += direction.mul(direction);
    }
    cv::Mat1f around;
    cv::blur(energy, around, {3, 3}, {-1, -1}, cv::BORDER_REPLICATE);
    around += PartOfWhole * cv::mean(energy)[0] + 1e-3;
    cv::Mat1f scales;
    cv::pow(around, -0.5, scales);
    return scales;
}

/// Each cell's lightness less the mean of all, beside their deviation.
cv::Mat1f Lightness(const cv::Mat1f& grey, cv::Size cells, int cell) {
    constexpr double Weight = 0.25;
    cv::Mat1f light;
    cv::resize(grey(cv::Rect(0, 0, cells.width * cell, cells.height * cell)), light, cells, 0, 0,
               cv::INTER_AREA);
    cv::Scalar mean;
    cv::Scalar deviation;
    cv::meanStdDev(light, mean, deviation);
    return (light - mean[0]) * (Weight / (deviation[0] + 4));
}

}  // namespace

std::vector<float> GradientGrid(const cv::Mat& colours, int cell) {
    constexpr float Most = 0.6F;  // one strong edge tells no more than a clear one
    cv::Mat bytes;
    cv::cvtColor(colours, bytes, cv::COLOR_BGR2GRAY);
    cv::Mat1f grey;
    bytes.convertTo(grey, CV_32F);
    cv::GaussianBlur(grey, grey, {0, 0}, 1);
    const Strengths strengths = StrengthsOf(grey, cell);
    const cv::Mat1f scales = Scales(strengths);
    const cv::Mat1f light = Lightness(grey, scales.size(), cell);
    std::vector<float> grid;
    grid.reserve(scales.total() * GradientGridDepth);
    for (int row = 0; row < scales.rows; ++row) {
        for (int column = 0; column < scales.cols; ++column) {
            for (const cv::Mat1f& direction : strengths) {
                grid.push_back(std::min(Most, direction(row, column) * scales(row, column)));
            }
            grid.push_back(light(row, column));
        }
    }
    return grid;
}

}  // namespace kadrona::imaging
