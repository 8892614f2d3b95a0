#pragma once

namespace kadrona::platform {

/// Whether the user has a message bus. Where he has none ("disabled:" is its address) nobody should
/// ask the toolkit for it: that starts a thread, which may still be at work when the program ends.
bool HasSessionBus();

}  // namespace kadrona::platform
