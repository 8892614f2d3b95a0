#pragma once

#include <QString>

namespace kadrona::printing::cups {

/// The German word for what drivers usually call an option or a choice in English; the text itself
/// where it is not one of those.
QString InGerman(const QString& text);

}  // namespace kadrona::printing::cups
