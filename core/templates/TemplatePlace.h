#pragma once

#include <QString>
#include <optional>

namespace kadrona::core {

/// Left and top edge and width of the template on the photo, in photo pixels. The height follows
/// the template's aspect ratio.
struct TemplatePlace {
    int left = 0;
    int top = 0;
    int width = 0;
};

/// From "left,top,width", blanks around each; nothing where that is none.
std::optional<TemplatePlace> ParsePlace(const QString& text);

}  // namespace kadrona::core
