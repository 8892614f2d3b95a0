// The table of template figures beside the templates.

#include <cstdint>
#include <cstdlib>

#include "core/check/TemplateTable.h"

using namespace kadrona::core;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArrayView bytes(data, static_cast<qsizetype>(size));
    try {
        for (const TemplateRow& row : ParseTemplateTable(QString::fromUtf8(bytes), {})) {
            const int chin = ChinAboveLowerEdge(row);
            if (chin < 0 || chin > row.height.value) {
                std::abort();
            }
        }
    } catch (const TemplateTableError&) {
        // What is no table is refused, and by nothing else.
    }
    return 0;
}
