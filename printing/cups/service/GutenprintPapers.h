#pragma once

#include <QByteArray>
#include <QMarginsF>
#include <QRectF>
#include <optional>

#include "printing/cups/service/Driver.h"

namespace kadrona::printing::cups {

/// Where the real paper lies on a page that Gutenprint makes larger, millimetres; nothing where the
/// page is the paper.
std::optional<QRectF> NamedPaper(const Paper& paper);

/// What Gutenprint leaves white on `paper`, in points, while its borderless printing is off: its
/// descriptions name only what holds while it is on. `model` is the description's
/// "StpDriverModelFamily" ("63_escp2"), the widest border of all where it is another; `tray` the
/// chosen one; `onBothSides` whether the driver prints on both.
QMarginsF BorderOf(const Paper& paper, const QByteArray& model, const QByteArray& tray,
                   bool onBothSides);

}  // namespace kadrona::printing::cups
