#pragma once

#include "store/ServerAddress.h"

class QWidget;

namespace kadrona::core {
class TData;
}

namespace kadrona::dialogs {

/// "Archiv übertragen": copies this machine's archive to a server, with its progress and a button
/// that ends it, and says how it went. Throws platform::Error.
void TransferArchiveTo(const store::ServerAddress& server, const core::TData& data,
                       QWidget* parent);

}  // namespace kadrona::dialogs
