#pragma once

#include <exception>
#include <utility>

class QWidget;

namespace kadrona::controls {

/// The application's standard error display. Never throws.
void ShowFailure(QWidget* parent, const std::exception_ptr& failure) noexcept;

/// Runs `function` and shows whatever escapes from it; true if nothing did. Every handler that Qt
/// calls and that may fail goes through here, because nothing may be thrown through Qt's event
/// loop. `parent` may be null.
template <typename Function>
bool Guarded(QWidget* parent, Function&& function) noexcept {
    try {
        std::forward<Function>(function)();
        return true;
    } catch (...) {
        ShowFailure(parent, std::current_exception());
        return false;
    }
}

}  // namespace kadrona::controls
