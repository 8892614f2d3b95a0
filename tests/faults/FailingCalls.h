#pragma once

#include <QByteArrayList>

/// Lets chosen system calls of this program fail, whoever in it makes them. A program that has
/// FailingCalls.cpp has its own "open", "write" and so on, which the libraries then find before the
/// system's.
namespace kadrona::testing {

struct Fault {
    int nth = 0;              // of the calls that touch the watched folder, from 1; 0 is none
    int error = 0;            // of errno; 0 lets a call write half of what it was given
    bool fromThenOn = false;  // and all calls after it
    QByteArray call = {};     // the name of the calls that count; all where it is empty
    bool removals = false;    // calls that remove files and folders may fail too
};

/// From now on counts the calls that touch what lies in `folder`, and lets those fail that the
/// fault names. Those that remove files only fail where the fault says so: what a program cannot
/// remove it has to leave.
void StartFailing(const QByteArray& folder, const Fault& fault);

/// Back to normal. Returns the names of the calls that there were.
QByteArrayList StopFailing();

}  // namespace kadrona::testing
