#pragma once

#include <QString>

namespace kadrona::app {

/// A foreign name as it may stand in a terminal: what would steer the terminal or turn the
/// direction of writing (control and format characters, line ends) becomes "\u001B".
QString HarmlessName(const QString& name);

/// The same for a message, whose line breaks stay.
QString HarmlessText(const QString& text);

/// Which photo could not be done and why, in one line; for the handler of what was thrown.
QString FailureLine(const QString& photo);

}  // namespace kadrona::app
