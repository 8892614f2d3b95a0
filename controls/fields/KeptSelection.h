#pragma once

class QListWidget;

namespace kadrona::controls {

/// Leaves the current row of a list selected when the user clicks below the rows, where the
/// toolkit would show none selected.
void KeepSelection(QListWidget& list);

}  // namespace kadrona::controls
