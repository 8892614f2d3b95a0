#pragma once

#include <QString>

namespace kadrona::app {

/// The German help text of the whole command line.
QString CommandLineHelp();

/// What of it tells of one command, "sheet", "photo", "check" or "archive".
QString HelpOf(const QString& command);

}  // namespace kadrona::app
