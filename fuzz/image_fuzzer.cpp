// Any bytes into the image reader: it returns a picture or throws its own error.
#include <QBuffer>
#include <QGuiApplication>
#include <QLoggingCategory>

#include "imaging/reading/CameraFiles.h"
#include "imaging/reading/ImageReader.h"

using namespace Qt::StringLiterals;

// Its cache of fonts lives as long as the process. What the decoder of AV1 leaves behind of damaged
// pictures ends with the process that decodes them.
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libfontconfig\nleak:libdav1d";
}

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // Its memory of a thread that was just ending looked like a leak, once in 700,000 runs.
    qputenv("QT_NO_GLIB", "1");
    kadrona::imaging::DecodeCameraFilesHere();
    QLoggingCategory::setFilterRules(u"*=false"_s);
    static int count = 1;
    static char name[] = "image_fuzzer";
    static char* arguments[] = {name, nullptr};
    static QGuiApplication application(count, arguments);  // metafiles have text
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    // Half of the inputs as one reads what is only to be looked at: other code takes the previews.
    const kadrona::imaging::ReadOptions options{true, 1'000'000, size % 2 == 0 ? 1 : 8};
    QByteArray bytes =
        QByteArray::fromRawData(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    try {
        kadrona::imaging::ReadImage(buffer, u"x"_s, options);
    } catch (const kadrona::imaging::ReadError&) {
        return 0;
    }
    return 0;
}
