#pragma once

#include <QString>
#include <exception>

namespace kadrona::platform {

/// The German text for an exception: that of an Error as it stands, a fixed one for lack of memory,
/// a lead sentence and what() for any other.
QString FailureText(const std::exception_ptr& failure);

}  // namespace kadrona::platform
