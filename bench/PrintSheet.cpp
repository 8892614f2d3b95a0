// Prints a sheet of dark photos as the program does:
//
//   bench_print_sheet SERVER QUEUE WIDTHxHEIGHT COLUMNSxROWS [KEY=VALUE...]
//
// WIDTH and HEIGHT of a photo are in tenths of a millimetre; the keys are the driver's options.
// Writes "turned" or "upright", and the warning that the user would read, if any.
#include <QApplication>
#include <QPainter>
#include <QTextStream>

#include "printing/cups/CupsPrinterLayer.h"
#include "printing/cups/service/DeviceMode.h"

using namespace kadrona::printing;

namespace {

QSize SizeOf(const QString& text) {
    const QStringList parts = text.split(u'x');
    return {parts.value(0).toInt(), parts.value(1).toInt()};
}

/// Ten dots to the millimetre; 2 mm of white between the photos.
PrintImage DarkSheet(QSize photo, QSize grid) {
    constexpr int Gap = 20;
    QImage tile(photo + QSize(Gap, Gap), QImage::Format_RGB32);
    tile.fill(Qt::white);
    QPainter(&tile).fillRect(QRect(QPoint(Gap / 2, Gap / 2), photo), QColor(30, 30, 30));
    return {.tile = tile,
            .columns = grid.width(),
            .rows = grid.height(),
            .dotsPerInch = 254,
            .title = QStringLiteral("Messblatt"),
            .gap = Gap};
}

}  // namespace

int main(int count, char** arguments) {
    const QApplication application(count, arguments);
    const QStringList words = QApplication::arguments();
    QTextStream out(stdout);
    try {
        cups::CupsPrinterLayer layer(words.value(1), std::chrono::minutes(1));
        layer.AskBeforeFirstUse([](const QString&, const QString&) { return true; });
        cups::DeviceMode mode;
        mode.SetSheetOrientation(Orientation::Automatic);
        for (const QString& option : words.mid(5)) {
            mode.Set(option.section(u'=', 0, 0).toUtf8(), option.section(u'=', 1).toUtf8());
        }
        layer.SetCurrentPrinter({words.value(2), {}, {}, mode.ToBlock()});
        const PrintImage image = DarkSheet(SizeOf(words.value(3)), SizeOf(words.value(4)));
        const PrinterPaper paper = layer.Paper();
        QStringList said = PaperWarning(image, paper).split(QStringLiteral("\n\n"));
        said.removeIf([](const QString& part) { return part.startsWith(u"Fotos:"); });
        out << (IsTurned(image, paper) ? "turned" : "upright") << '\n' << said.join(u' ') << '\n';
        layer.Print(image);
        return 0;
    } catch (const kadrona::platform::Error& error) {
        out << error.Text() << '\n';
        return 1;
    }
}
