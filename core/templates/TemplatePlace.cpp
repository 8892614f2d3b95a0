#include "core/templates/TemplatePlace.h"

#include <QStringList>
#include <array>

namespace kadrona::core {

std::optional<TemplatePlace> ParsePlace(const QString& text) {
    const QStringList parts = text.split(u',');
    std::array<int, 3> numbers{};
    bool valid = parts.size() == 3;
    for (size_t i = 0; valid && i < numbers.size(); ++i) {
        numbers.at(i) = parts.at(static_cast<qsizetype>(i)).trimmed().toInt(&valid);
    }
    return valid && numbers[2] > 0
               ? std::optional(TemplatePlace{numbers[0], numbers[1], numbers[2]})
               : std::nullopt;
}

}  // namespace kadrona::core
