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

/// What decides how a driver of Gutenprint treats a paper.
struct GutenprintSetting {
    /// The description's "StpDriverModelFamily": "63_escp2".
    QByteArray model;
    QByteArray tray;
    /// What the driver is told of printing without a border.
    enum class Borderless {
        /// It has no switch for it.
        Unknown,
        Off,
        On,
    };
    Borderless borderless = Borderless::Unknown;
    bool isOnBothSides = false;
};

/// What the driver leaves white on `paper`, in points: its descriptions name only the margins of
/// sheets while borderless printing is on. The widest border of all where the model is unknown.
QMarginsF BorderOf(const Paper& paper, const GutenprintSetting& setting);

/// Where the driver spreads the page to, in points of the paper. It puts the first row that the
/// description lets it print where it prints first, and where it prints over more of the paper than
/// the description says, it enlarges what was cut to that. Canon's printers without a border get
/// the page's corner where the area that they are told begins, left of the paper and above it.
QRectF SpreadOf(const Paper& paper, const GutenprintSetting& setting);

/// Whether the driver moves the page off the paper's corner, by what it tells the printer, as long
/// as nobody has measured that on paper.
bool IsMovedOffCorner(const Paper& paper, const GutenprintSetting& setting);

}  // namespace kadrona::printing::cups
