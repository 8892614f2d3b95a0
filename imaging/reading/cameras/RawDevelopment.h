#pragma once

#include <libraw/libraw.h>

#include <QImage>
#include <functional>

namespace kadrona::imaging {

/// What DevelopedRaw and what is unpacked for it take beside the picture, in bytes. Known from the
/// header on, and told once more when the data are unpacked, which may be of another kind.
qint64 RawBytesBeside(LibRaw& raw);

/// An image of QImage::Format_RGB32. Throws platform::Error where memory is short.
using NewPictureOfRaw = std::function<QImage(QSize size)>;

/// Makes pixels of 32 bits of what `raw` has unpacked, as its parameters say, a few million of the
/// sensor's pixels at a time, so that only those take LibRaw's twelve bytes each. A sensor whose
/// rows do not lie as they are shown is developed as a whole.
///
/// `newPicture` makes the result's image. `check` is called with each of LibRaw's results and
/// throws where it is a failure. `onPart` is told before each part of the work, from 0 to 1, where
/// it begins and where the next one does. Throws platform::Error where memory is short. Afterwards
/// `raw` has neither pixels nor its data.
QImage DevelopedRaw(LibRaw& raw, const NewPictureOfRaw& newPicture,
                    const std::function<void(int result)>& check,
                    const std::function<void(double begin, double end)>& onPart);

}  // namespace kadrona::imaging
