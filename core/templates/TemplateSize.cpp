#include "core/templates/TemplateSize.h"

#include "core/templates/Template.h"

namespace kadrona::core {

QSizeF TemplateSize(const QString& path) {
    constexpr double UnitsPerMillimetre = 10;
    try {
        const auto read = ReadTemplate(path);
        return read ? QSizeF(read->canvas) / UnitsPerMillimetre : QSizeF();
    } catch (const platform::Error&) {
        return {};
    }
}

}  // namespace kadrona::core
