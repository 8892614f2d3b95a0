#pragma once

namespace kadrona::app {

/// The whole program: the window, or what the command line asks for instead. Returns the exit code.
int Run(int argc, char** argv);

}  // namespace kadrona::app
