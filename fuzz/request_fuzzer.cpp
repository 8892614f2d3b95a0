// What a later start hands over to the program that runs.

#include <cstdint>
#include <cstdlib>

#include "app/commandline/PackedRequest.h"

using namespace kadrona::app;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const auto request = Unpacked(bytes);
    if (!request) {
        return 0;
    }
    const bool isFull = request->photo.isEmpty() || request->photo.startsWith(u'/');
    const QByteArray& token = request->activationToken;
    if (!isFull || request->photo.contains(QChar::Null) || token.contains('\0') ||
        token.contains('\n') || Packed(*request) != bytes) {
        std::abort();
    }
    return 0;
}
