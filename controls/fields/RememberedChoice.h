#pragma once

#include <QStringList>

namespace kadrona::controls {

/// Where an item stands today that was chosen from an older list, by the text and the place that
/// it had there; -1 where it is gone. The text decides; the place only tells which of several
/// equal texts it was, and which item a choice without a text meant.
int RememberedChoice(const QStringList& items, const QString& text, int place);

}  // namespace kadrona::controls
