#pragma once

#include <QtGlobal>

namespace kadrona::imaging {

/// Why a metafile cannot be drawn.
enum class MetafileFault { Damaged, Incomplete, TooComplex };

/// A record that would change the picture and that is not drawn.
struct UnsupportedRecord {
    /// As Microsoft's description of the format calls it, without its prefix; null where it knows
    /// no such record.
    const char* name = nullptr;
    quint32 number = 0;
};

}  // namespace kadrona::imaging
