#pragma once

#include <QByteArray>

class QMimeData;

namespace kadrona::controls {

/// Whether a drag or the clipboard holds a picture itself, and the bytes of the image file that it
/// comes as; empty where there is none. A picture that only has an address is none: the program
/// fetches nothing from the net.
bool HasPicture(const QMimeData& data);
QByteArray PictureIn(const QMimeData& data);

}  // namespace kadrona::controls
