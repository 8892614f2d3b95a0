#include "printing/cups/OptionBox.h"

#include <QWheelEvent>

namespace kadrona::printing::cups {

OptionBox::OptionBox(QWidget* parent) : QComboBox(parent) {
    // Some drivers' texts are longer than any window is wide.
    constexpr int ShownCharacters = 12;
    setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    setMinimumContentsLength(ShownCharacters);
}

void OptionBox::ShowOption(const DriverOption& option, const DeviceMode& mode) {
    keyword_ = option.keyword;
    clear();
    for (const DriverChoice& choice : option.choices) {
        addItem(choice.label, choice.name);
    }
    const QByteArray chosen = mode.Value(option.keyword);
    setCurrentIndex(findData(option.Offers(chosen) ? chosen : option.standard));
}

void OptionBox::Store(DeviceMode& mode) const {
    mode.Set(keyword_, currentData().toByteArray());
}

void OptionBox::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

}  // namespace kadrona::printing::cups
