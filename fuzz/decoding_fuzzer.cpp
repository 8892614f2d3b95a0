// What a decoder says that a file may have taken over.

#include <cstdint>
#include <cstdlib>

#include "imaging/reading/DecodingMessages.h"

using namespace kadrona::imaging;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const auto message = DecodingMessageFrom(bytes);
    const auto* const picture = message ? std::get_if<decoding::Picture>(&*message) : nullptr;
    if (picture != nullptr &&
        (picture->size.isEmpty() || picture->profileBytes < 0 || picture->profileBytes > 1 << 24)) {
        std::abort();
    }
    return 0;
}
