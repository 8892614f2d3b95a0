#pragma once

#include <QByteArray>
#include <optional>

#include "app/commandline/WindowRequest.h"

namespace kadrona::app {

/// The request as one start hands it to another: four fields, NUL between them.
QByteArray Packed(const WindowRequest& request);

/// Nothing for bytes that are no request.
std::optional<WindowRequest> Unpacked(const QByteArray& bytes);

}  // namespace kadrona::app
