#pragma once

#include "imaging/pixels/Pixels.h"

namespace kadrona::imaging {

/// Automatic white balance: red and blue scaled so that the picture's grey middle tones are neutral
/// on average. A neutral picture, and one in which too little can be grey, comes back as it is,
/// sharing its pixels.
///
/// A grey world over all middle tones would turn the background of a portrait blue, for skin fills
/// much of it. So the light is first found in the histogram of the middle tones' logarithmic
/// chromaticities: the one that makes most of them grey, weighted by how likely it is (Finlayson,
/// Hordley and Hubel, "Color by correlation", IEEE Trans. PAMI 23(11), 2001; Barron, "Convolutional
/// color constancy", ICCV 2015). Averaging over the points that are nearly grey in it then settles
/// the gains (Huo, Chang, Wang and Wei, "Robust automatic white balance algorithm using gray color
/// points in images", IEEE Trans. Consumer Electronics 52(2), 2006).
Pixels WhiteBalanced(const Pixels& pixels);

}  // namespace kadrona::imaging
