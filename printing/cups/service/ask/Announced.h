#pragma once

#include "printing/cups/service/AskCodes.h"

namespace kadrona::printing::cups {

/// Writes the printers that the network announces (DNS-SD) as an IPP message with a group each;
/// none where there is nobody to ask, or where `server` stands on another machine, which makes no
/// queues for them. Takes at most that long.
AskCode FindAnnounced(const char* server, int milliseconds);

}  // namespace kadrona::printing::cups
