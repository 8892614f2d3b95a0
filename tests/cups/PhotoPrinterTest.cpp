// Sheets through real photo printers' drivers, measured on the raster that the printer is sent.

#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

#include "PrintService.h"
#include "printing/cups/CupsPrinterLayer.h"
#include "printing/cups/service/DeviceMode.h"
#include "tests/support/PixelMatchers.h"

using namespace kadrona::printing;
using namespace kadrona::testing;
using namespace Qt::StringLiterals;
using cups::CupsPrinterLayer;
using cups::DeviceMode;

namespace {

constexpr int DotsPerMillimetre = 10;
constexpr double Gap = 2;
constexpr QSizeF Photo(35, 45);

/// Dark photos with white between them.
PrintImage DarkSheet(int columns, int rows) {
    const int gap = static_cast<int>(Gap * DotsPerMillimetre);
    const QRect photo(QPoint(gap, gap) / 2, (Photo * DotsPerMillimetre).toSize());
    const QImage tile = Painted(photo.size() + QSize(gap, gap), [&](int x, int y) {
        return photo.contains(x, y) ? qRgb(30, 30, 30) : ColourOf('w');
    });
    return {tile, columns, rows, 254, u"x"_s, gap};
}

/// Expects photos of that length, each a gap behind the one before. `stretches` are starts and
/// lengths along one direction of the raster.
void ExpectRow(const QJsonArray& stretches, int count, double length) {
    ASSERT_EQ(stretches.size(), count);
    // Half a dot of the coarsest raster that is measured, 300 to the inch.
    constexpr double Tolerance = 0.1 + 25.4 / 300 / 2;
    for (int i = 0; i < count; ++i) {
        EXPECT_NEAR(stretches[i][1].toDouble(), length, Tolerance);
        EXPECT_NEAR(stretches[i][0].toDouble() - stretches[0][0].toDouble(), i * (length + Gap),
                    2 * Tolerance);
    }
}

struct PhotoPrinter {
    const char* name;
    const char* driver;
    const char* model;
    const char* paper;
    int columns;
    int rows;
};

class PhotoPrinterTest : public ::testing::TestWithParam<PhotoPrinter> {
 protected:
    /// What the printer was sent, as printed-copies sees it.
    QJsonObject Printed(CupsPrinterLayer& layer, const PrintImage& image) const {
        layer.Print(image);
        service_.WaitForJobs();
        QProcess measure;
        measure.start(QStringLiteral(KADRONA_CUPS_TESTS "/printed-copies"),
                      {service_.SentFile(u"Foto"_s)});
        EXPECT_TRUE(measure.waitForFinished());
        EXPECT_EQ(measure.exitCode(), 0) << measure.readAllStandardError().toStdString();
        return QJsonDocument::fromJson(measure.readAllStandardOutput()).object();
    }

    PrintService service_;
};

TEST_P(PhotoPrinterTest, EveryCopyHasItsSize) {
    const PhotoPrinter& row = GetParam();
    service_.AddPhotoPrinter(u"Foto"_s, QString::fromLatin1(row.driver),
                             QString::fromLatin1(row.model));
    service_.Run(u"lpadmin"_s, {u"-d"_s, u"Foto"_s});
    CupsPrinterLayer layer(service_.Address(), std::chrono::seconds(20));
    PrinterChoice choice = layer.CurrentPrinter();
    DeviceMode mode(choice.deviceMode);
    mode.Set("PageSize", row.paper);
    choice.deviceMode = mode.ToBlock();
    layer.SetCurrentPrinter(choice);

    const PrintImage image = DarkSheet(row.columns, row.rows);
    const PrinterPaper paper = layer.Paper();
    EXPECT_EQ(PaperWarning(image, paper), QString());
    const bool turned = IsTurned(image, paper);
    const QJsonObject printed = Printed(layer, image);
    // A sheet that lies turned, and a printer that is fed the broad side first.
    const QJsonArray raster = printed[u"raster"_s].toArray();
    const QSizeF page = paper.geometry.page;
    const bool broad =
        (raster[0].toDouble() > raster[1].toDouble()) != (page.width() > page.height());
    const bool lying = turned != broad;
    ExpectRow(printed[u"x"_s].toArray(), lying ? row.rows : row.columns,
              lying ? Photo.height() : Photo.width());
    ExpectRow(printed[u"y"_s].toArray(), lying ? row.columns : row.rows,
              lying ? Photo.width() : Photo.height());
}

const char* const Gutenprint = "gutenprint.5.3";
const char* const Epson =
    "escpr:0/cups/model/epson-inkjet-printer-escpr/Epson-ET-7750_Series-epson-escpr-en.ppd";
const PhotoPrinter Printers[] = {
    {"Selphy", Gutenprint, "gutenprint.5.3://canon-cp1300/expert", "Postcard", 4, 2},
    {"Dnp", Gutenprint, "gutenprint.5.3://dnp-ds620/expert", "w288h432", 4, 2},
    {"StylusPhoto", Gutenprint, "gutenprint.5.3://escp2-r300/expert", "w288h432", 2, 2},
    {"EcoTank", "escpr", Epson, "4X6FULL", 2, 2},
    {"EcoTankBorderless", "escpr", Epson, "T4X6FULL", 4, 2},
};
INSTANTIATE_TEST_SUITE_P(Debian, PhotoPrinterTest, ::testing::ValuesIn(Printers),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
