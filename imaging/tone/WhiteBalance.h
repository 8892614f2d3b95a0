#pragma once

#include <QRect>

#include "imaging/pixels/Pixels.h"

namespace kadrona::imaging {

/// Automatic white balance for portraits: red and blue scaled so that what is grey in the scene
/// becomes neutral. Where it is unsure the picture comes back as it is, sharing its pixels: where
/// its colours are likely without a cast, where no skin tells a coloured wall from coloured light,
/// where the cast is so slight that the paint of a wall could be it, where what is brightest is
/// white already, and where the face asks for a light that the wall behind it speaks against.
///
/// A light is judged by what it would leave after its correction: how much of the picture is grey
/// then, how much of it has the colours of skin, and how likely the light is by itself, for cameras
/// have corrected most of it (after Finlayson, Hordley and Hubel, "Color by correlation", IEEE
/// Trans. PAMI 23(11), 2001; Barron, "Convolutional color constancy", ICCV 2015). Averaging over
/// the points that are nearly grey in it then settles the gains (Huo, Chang, Wang and Wei, "Robust
/// automatic white balance algorithm using gray color points in images", IEEE Trans. Consumer
/// Electronics 52(2), 2006).
///
/// `skin` is a part of the picture that is skin of a face, in pixels of the tile; empty where none
/// is known. Its middle colour is a second witness: complexions in neutral light are much alike,
/// and the brighter the less red. Where no grey settles the gains only a part of the light is
/// taken, for they are not quite alike.
///
/// OpenCV's xphoto was weighed: its methods know no skin, and turn a face orange before a light
/// blue wall. Throws platform::Error where memory is short.
Pixels WhiteBalanced(const Pixels& pixels, const QRect& skin = {});

}  // namespace kadrona::imaging
