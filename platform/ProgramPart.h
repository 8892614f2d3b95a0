#pragma once

#include "platform/Error.h"

namespace kadrona::platform {

/// A part of the program cannot be opened; the text says which and why, and what to do.
class PartMissing : public FileError {
    using FileError::FileError;
};

/// Address of a function in a part of the program: a library of its own, which is opened by the
/// first call and stays open. A part holds what needs large libraries of others, so that these are
/// read when they are first needed and not before the first window. `part` is its file's name
/// without the extension: in "../lib/kadrona" beside the program, in "parts" there, in the
/// program's own folder, or where the build put it. Throws PartMissing, and Error where memory is
/// short.
void* AddressInPart(const char* part, const char* function);

/// The same, as a function of that type. It must be the type that the part declares, `function` the
/// name that it exports (extern "C").
template <typename Function>
Function* PartFunction(const char* part, const char* function) {
    return reinterpret_cast<Function*>(AddressInPart(part, function));
}

/// The path of a program of that name that stands where the parts do. Throws PartMissing.
QString PartProgram(const char* program);

}  // namespace kadrona::platform
