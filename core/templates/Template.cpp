#include "core/templates/Template.h"

#include <QFileInfo>
#include <algorithm>

#include "core/templates/LayerPosition.h"
#include "core/templates/TemplateDrawing.h"
#include "platform/AtomicFile.h"
#include "platform/Paths.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

namespace {

/// How much of a template covers the photo, of 255.
constexpr int TemplateTransparency = 60;

/// A template of a few dozen elements takes a few kilobytes.
constexpr qint64 LargestTemplateFile = 16 << 20;

/// Finely enough that outlines stay smooth on a large photo; a canvas larger than usual is drawn at
/// its own size.
int PixelsPerUnit(QSize canvas) {
    constexpr int Finest = 4;
    constexpr int LongestSide = 2800;
    return std::clamp(LongestSide / std::max(canvas.width(), canvas.height()), 1, Finest);
}

}  // namespace

std::optional<Template> ReadTemplate(const QString& path) {
    if (!platform::IsFile(path)) {
        return std::nullopt;
    }
    const QByteArray bytes = platform::ReadWholeFile(path, LargestTemplateFile);
    try {
        Template read{
            .name = QFileInfo(path).fileName(), .elements = ParseTemplate(bytes), .canvas = {}};
        read.canvas = TemplateCanvas(read.elements);
        RequireQuickDrawing(read.elements, PixelsPerUnit(read.canvas));
        return read;
    } catch (const TemplateFileError& error) {
        throw TemplateFileError(
            u"Die Schablone „%1“ kann nicht verwendet werden: %2"_s.arg(path, error.Text()));
    }
}

void ShowTemplate(const Template& shown, imaging::LayeredImage& image) {
    image.RemoveLayersAbovePhoto();
    image.AddLayer(
        {.pixels = imaging::Pixels(DrawTemplate(shown.elements, PixelsPerUnit(shown.canvas))),
         .rectangle = QRect(QPoint(), shown.canvas),
         .transparency = TemplateTransparency});
}

void RestoreTemplatePlace(const Template& shown, const LayoutFile& layout,
                          imaging::LayeredImage& image) {
    if (image.LayerCount() < 2) {
        return;
    }
    const QRect saved = layout.Read(LayerSection(shown.name, image.Photo().Size()));
    const QSize drawn = image.LayerAt(1).rectangle.size();
    image.SetLayerRectangle(1, RestoredLayerRectangle(saved, drawn, shown.canvas));
}

}  // namespace kadrona::core
