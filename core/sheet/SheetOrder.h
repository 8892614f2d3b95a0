#pragma once

#include <QString>
#include <optional>
#include <vector>

#include "core/templates/TemplatePlace.h"

namespace kadrona::core {

/// A line of an order: "photo; template; auto or left,top,width; count". Blanks around each do not
/// count. Lines that are empty or begin with "#" say nothing.
struct OrderLine {
    int number;  ///< in the file, from 1
    QString photo;
    QString templateName;
    /// Nothing places the template on the face.
    std::optional<TemplatePlace> place;
    int count;
};

/// Why a line cannot be done.
struct OrderError {
    int number;  ///< of the line; 0 for the whole order
    QString reason;
};

struct Order {
    std::vector<OrderLine> lines;
    std::vector<OrderError> errors;
};

/// More lines than any sheet takes are refused.
inline constexpr int MostOrderLines = 1000;

/// Reads an order, which anybody may have written.
Order ParseOrder(const QString& text);

}  // namespace kadrona::core
