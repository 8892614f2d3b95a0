// Renders the sample portrait to a JPEG of the drawing's own size.

#include <QCoreApplication>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>
#include <QTextStream>

#include "imaging/ImageWriter.h"
#include "platform/Error.h"

using namespace kadrona;
using namespace Qt::StringLiterals;

namespace {

constexpr imaging::DotsPerInch CameraResolution{300};
constexpr int WrongUsage = 2;

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
    // Drawing into an image needs no window system; the build has none.
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    QTextStream errors(stderr);
    if (arguments.size() != 3) {
        errors << u"Aufruf: kadrona-render-portrait ZEICHNUNG FOTO.jpg\n"_s;
        return WrongUsage;
    }
    try {
        RenderPortrait(arguments[1], arguments[2]);
        return EXIT_SUCCESS;
    } catch (const platform::Error& error) {
        errors << error.Text() << u'\n';
        return EXIT_FAILURE;
    }
}
