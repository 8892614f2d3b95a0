#pragma once

#include <QtGlobal>

namespace kadrona::platform {

/// What a process may still use of the machine, from now on.
struct ProcessLimits {
    /// Address space beside what it has already, in bytes.
    qint64 memory = 0;
    /// The largest size of each file or shared memory, in bytes.
    qint64 file = 0;
    /// Processor time of all its threads.
    int seconds = 0;
};

/// The process ends with the thread that started it, has no core file, and what it prints goes
/// nowhere: the standard streams are closed where /dev/null cannot be opened. To be called first.
void BindToStarter();

/// Takes from this process for good what a computation does not need: it may no longer open files
/// or connections, start or end programs, make code, or use more than the limits. What it has open
/// it may read and write; threads it may start. A kernel that has no filter for system calls leaves
/// it the limits alone; where it has one that cannot be set, throws platform::Error. With an
/// address sanitizer memory has no limit.
void Confine(const ProcessLimits& limits);

/// Lets this process have no more than `bytes` of address space beside what it had when Confine()
/// was called; more where it is called again, up to the limit given there. What is in use already
/// stays. Throws std::bad_alloc where that is more.
void BoundMemory(qint64 bytes);

}  // namespace kadrona::platform
