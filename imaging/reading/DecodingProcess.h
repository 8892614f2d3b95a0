#pragma once

#include "imaging/reading/CamerasPart.h"

namespace kadrona::imaging {

/// Decodes a file by the part "kadrona-cameras" in a process of its own with limits of its own
/// (docs/trust.md), for its libraries are large and what strangers hand over makes them fail.
/// Waits for it; where the task has a progress, that is asked ten times a second from its beginning
/// on. Throws ReadError and ReadCancelled. `program` is the path of kadrona-decode.
DecodedImage DecodeByProcess(const QString& program, CameraFormat format, const ReadTask& task);

}  // namespace kadrona::imaging
