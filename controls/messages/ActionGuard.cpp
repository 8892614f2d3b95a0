#include "controls/messages/ActionGuard.h"

#include "controls/messages/MessageBoxes.h"
#include "platform/FailureText.h"

namespace kadrona::controls {

void ShowFailure(QWidget* parent, const std::exception_ptr& failure) noexcept {
    try {
        ShowError(parent, platform::FailureText(failure));
    } catch (...) {
        // Not even the message could be made; going on is all that is left.
        qCritical("A failure could not be shown");
    }
}

}  // namespace kadrona::controls
