#pragma once

#include <QString>

namespace kadrona::app {

/// The German help text of the whole command line.
QString CommandLineHelp();

}  // namespace kadrona::app
