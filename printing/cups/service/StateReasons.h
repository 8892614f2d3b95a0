#pragma once

#include <QByteArray>
#include <QString>
#include <vector>

namespace kadrona::printing::cups {

/// What the keywords of a printer's state say (RFC 8011, 5.4.12), in German, joined by commas; each
/// once, whatever its suffix "-error", "-warning" or "-report". Empty where they say nothing that a
/// user need know.
QString PrinterReasons(const std::vector<QByteArray>& keywords);

/// The same of a job's state (RFC 8011, 5.3.8, and those of CUPS).
QString JobReasons(const std::vector<QByteArray>& keywords);

/// What the service or a driver says in its own words, without a full stop, in German where it is
/// one of the service's own sentences; empty for those that only repeat the state.
QString StateMessage(const QString& message);

}  // namespace kadrona::printing::cups
