// Renders the sample portrait to a JPEG of the drawing's own size.

#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

#include "imaging/writing/ImageWriter.h"
#include "platform/Error.h"
#include "tools/ToolMain.h"

using namespace kadrona;
using namespace Qt::StringLiterals;

namespace {

constexpr imaging::DotsPerInch CameraResolution{300};

void RenderPortrait(const QString& drawing, const QString& photo) {
    QSvgRenderer renderer(drawing);
    if (!renderer.isValid()) {
        throw platform::FileError(u"„%1“ ist keine lesbare SVG-Zeichnung."_s.arg(drawing));
    }
    QImage image(renderer.viewBox().size(), QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    renderer.render(&painter);
    painter.end();

    imaging::WriteImageFile(photo, imaging::Pixels(image), CameraResolution);
}

}  // namespace

int main(int argc, char** argv) {
    return tools::ToolMain(argc, argv, u"Aufruf: kadrona-render-portrait ZEICHNUNG FOTO.jpg"_s,
                           RenderPortrait);
}
