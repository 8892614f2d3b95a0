#pragma once

#include <QRect>
#include <QSize>
#include <QString>

namespace kadrona::core {

/// Section of "kdr.ini" that keeps the position of a template on photos of one size:
/// "<template> <width>x<height>".
QString LayerSection(const QString& templateName, QSize photo);

/// The rectangle of a template layer restored from a saved one: the saved left and top; where both
/// saved sides are positive the saved width, with the height that the template's aspect ratio gives
/// (halves rounded to the even neighbour); else the drawn size.
QRect RestoredLayerRectangle(const QRect& saved, QSize drawn, QSize templateCanvas);

/// A moved layer pushed back inside the photo: first away from the left and top, then from the
/// right and bottom, so that a layer larger than the photo ends with a negative left or top.
QRect KeptInsidePhoto(QRect layer, QSize photo);

}  // namespace kadrona::core
