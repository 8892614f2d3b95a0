#pragma once

#include <QString>
#include <optional>
#include <vector>

#include "core/sheet/SheetLayout.h"
#include "platform/Error.h"

namespace kadrona::tools {

/// What an authority allows of a length; an end that it does not publish is empty.
struct Band {
    std::optional<core::TenthsOfMillimetre> from;
    std::optional<core::TenthsOfMillimetre> to;

    bool IsComplete() const { return from && to; }
    /// The middle of a complete band in tenths of a millimetre.
    double Middle() const { return (from->value + to->value) / 2.0; }
};

/// One document of the template table.
struct TemplateRow {
    QString name;
    QString file;
    core::TenthsOfMillimetre width;
    core::TenthsOfMillimetre height;
    Band head;  ///< chin to crown
    Band eyes;  ///< pupils above the lower edge
    Band top;   ///< crown to upper edge
    Band face;  ///< width of the face
    Band chin;  ///< chin above the lower edge
    Band axis;  ///< middle of the face from the left edge
    bool headIsAdvice = false;
    bool eyesAreAdvice = false;
};

/// The table cannot be used; one line "file:line: reason" for each fault.
class TemplateTableError : public platform::Error {
    using Error::Error;
};

/// Reads the template table: lines of cells separated by tabs, "#" starts a comment line, the first
/// other line names the columns. Lengths are millimetres with at most one decimal after a point or
/// a comma. `path` is named in faults. Throws TemplateTableError with every fault found.
std::vector<TemplateRow> ParseTemplateTable(const QString& text, const QString& path);

}  // namespace kadrona::tools
