#pragma once

namespace kadrona::app {

/// Whether nothing is under way that a photo opened by itself would disturb: no dialog, no menu,
/// and no action that waits for an answer of the print service with the events that come meanwhile.
bool IsAtRest();

}  // namespace kadrona::app
