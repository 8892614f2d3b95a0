// Reads IPTC items from anything, and rewrites those of anything that passes for a JPEG file.

#include <cstdlib>

#include "imaging/metadata/IptcFile.h"
#include "imaging/metadata/PhotoshopBlock.h"
#include "platform/Error.h"

using namespace kadrona::imaging;

namespace {

void Require(bool condition) {
    if (!condition) {
        std::abort();
    }
}

void ReadItems(QByteArrayView bytes) {
    const IptcItems items = DecodeIptc(bytes);
    const QByteArray stream = EncodeIptc(items);
    Require(EncodeIptc(DecodeIptc(stream)) == stream);
    const QByteArray block = WithIptcStream(bytes, stream);
    Require(IptcStream(block) == stream);
    Require(WithIptcStream(block, stream) == block);
}

void RewriteItems(QByteArrayView jpeg) {
    IptcItems items;
    items.AddText(2, 5, QStringLiteral("Köln"));
    const QByteArray changed = WithIptc(jpeg, items);
    Require(WithIptc(changed, items) == changed);
    // From the scan on nothing changes, whatever the length of what comes before.
    const QByteArray without = WithIptc(jpeg, {});
    Require(without.size() < changed.size());
    Require(jpeg.last(1) == without.last(1) && jpeg.last(1) == changed.last(1));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArrayView bytes(data, static_cast<qsizetype>(size));
    ReadItems(bytes);
    try {
        RewriteItems(bytes);
    } catch (const kadrona::platform::Error&) {
        // What is no JPEG file is refused, and by nothing else.
    }
    return 0;
}
