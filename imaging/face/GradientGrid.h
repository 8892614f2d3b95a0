#pragma once

#include <opencv2/core/mat.hpp>
#include <vector>

namespace kadrona::imaging {

/// How many numbers GradientGrid gives for each cell.
inline constexpr int GradientGridDepth = 9;

/// What a picture shows, told so that light and contrast hardly change it: for each cell of `cell`
/// by `cell` pixels, row by row, how strong the changes of brightness in eight directions are
/// beside the cells around it (N. Dalal and B. Triggs, "Histograms of oriented gradients for human
/// detection", CVPR 2005), and how light the cell is beside the whole. `colours` is blue, green,
/// red, 8 bits a channel; what is left of a last cell is not looked at.
std::vector<float> GradientGrid(const cv::Mat& colours, int cell);

}  // namespace kadrona::imaging
