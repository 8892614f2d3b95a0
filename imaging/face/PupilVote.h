#pragma once

#include <opencv2/core/mat.hpp>

namespace kadrona::imaging {

/// The middle of the dark disc of an eye in a grey picture: the point that most gradients of the
/// picture point away from, dark points preferred (F. Timm and E. Barth, "Accurate eye centre
/// localisation by means of gradients", VISAPP 2011). Pixels from the picture's corner.
cv::Point2d PupilIn(const cv::Mat& grey);

}  // namespace kadrona::imaging
