// Template files from outside: reading, sizing and drawing.

#include <cstdint>
#include <cstdlib>

#include "core/templates/TemplateDrawing.h"
#include "core/templates/TemplateFile.h"

using namespace kadrona::core;

namespace {

/// Larger canvases are valid, but would only make the runs slow.
constexpr int LongestSide = 300;
constexpr size_t MostElements = 64;

void Require(bool condition) {
    if (!condition) {
        std::abort();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    try {
        const QByteArrayView bytes(data, static_cast<qsizetype>(size));
        const std::vector<TMask> elements = ParseTemplate(bytes);
        const QByteArray written = SerializeTemplate(elements);
        Require(SerializeTemplate(ParseTemplate(written)) == written);

        const QSize canvas = TemplateCanvas(elements);
        if (canvas.width() <= LongestSide && canvas.height() <= LongestSide &&
            elements.size() <= MostElements) {
            Require(DrawTemplate(elements).size() == canvas);
        }
    } catch (const TemplateFileError&) {
        // What is no template is refused, and by nothing else.
    }
    return 0;
}
