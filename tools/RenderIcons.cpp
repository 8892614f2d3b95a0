// Renders a drawing to PNG files of the sizes that desktops' icon themes have.

#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>
#include <array>

#include "platform/Error.h"
#include "tools/ToolMain.h"

using namespace kadrona;
using namespace Qt::StringLiterals;

namespace {

/// Sides in pixels.
constexpr std::array Sizes{16, 22, 24, 32, 48, 64, 128, 256, 512};

/// `pattern` is a path with "%1" in the place of the size.
void RenderIcons(const QString& drawing, const QString& pattern) {
    QSvgRenderer renderer(drawing);
    if (!renderer.isValid()) {
        throw platform::FileError(u"„%1“ ist keine lesbare SVG-Zeichnung."_s.arg(drawing));
    }
    for (const int size : Sizes) {
        QImage image(size, size, QImage::Format_ARGB32);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        renderer.render(&painter);
        painter.end();
        const QString path = pattern.arg(size);
        if (!QDir().mkpath(QFileInfo(path).path()) || !image.save(path)) {
            throw platform::FileError(u"„%1“ konnte nicht geschrieben werden."_s.arg(path));
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    return tools::ToolMain(argc, argv, u"Aufruf: kadrona-render-icons ZEICHNUNG MUSTER"_s,
                           RenderIcons);
}
