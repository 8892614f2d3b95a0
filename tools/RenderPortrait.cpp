// Renders the sample portrait to a JPEG of the drawing's own size.

#include <QCoreApplication>
#include <QImage>
#include <QPainter>
#include <QSaveFile>
#include <QSvgRenderer>
#include <QTextStream>

#include "platform/Error.h"

using kadrona::platform::FileError;
using namespace Qt::StringLiterals;

namespace {

constexpr int JpegQuality = 95;
constexpr int WrongUsage = 2;

void RenderPortrait(const QString& drawing, const QString& photo) {
    QSvgRenderer renderer(drawing);
    if (!renderer.isValid()) {
        throw FileError(u"„%1“ ist keine lesbare SVG-Zeichnung."_s.arg(drawing));
    }
    QImage image(renderer.viewBox().size(), QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    renderer.render(&painter);
    painter.end();

    QSaveFile file(photo);
    if (!file.open(QIODevice::WriteOnly) || !image.save(&file, "jpg", JpegQuality) ||
        !file.commit()) {
        throw FileError(u"„%1“ kann nicht geschrieben werden: %2"_s.arg(photo, file.errorString()));
    }
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
    } catch (const FileError& error) {
        errors << error.Text() << u'\n';
        return EXIT_FAILURE;
    }
}
