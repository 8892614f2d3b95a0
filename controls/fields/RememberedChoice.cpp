#include "controls/fields/RememberedChoice.h"

namespace kadrona::controls {

int RememberedChoice(const QStringList& items, const QString& text, int place) {
    const bool isPlace = place >= 0 && place < items.size();
    if (isPlace && (text.isEmpty() || items[place] == text)) {
        return place;
    }
    return text.isEmpty() ? -1 : static_cast<int>(items.indexOf(text));
}

}  // namespace kadrona::controls
