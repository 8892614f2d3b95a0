// Sheets through real photo printers' drivers, measured on the raster that the printer is sent.

#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

#include "PrintService.h"
#include "printing/Calibration.h"
#include "printing/RulerSheet.h"
#include "printing/SheetOnPaper.h"
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

// Half a dot of the coarsest raster that is measured, 300 to the inch.
constexpr double Tolerance = 0.1 + 25.4 / 300 / 2;

/// Starts and lengths along one direction of the raster.
std::vector<QPointF> Stretches(const QJsonValue& values) {
    std::vector<QPointF> stretches;
    for (const auto& value : values.toArray()) {
        stretches.emplace_back(value[0].toDouble(), value[1].toDouble());
    }
    return stretches;
}

/// `corner` is where the raster begins in the coordinates of `expected`, if that is known.
void ExpectStretches(const QJsonValue& printed, const std::vector<QPointF>& expected,
                     std::optional<double> corner) {
    const std::vector<QPointF> stretches = Stretches(printed);
    ASSERT_EQ(stretches.size(), expected.size());
    if (corner) {
        EXPECT_NEAR(stretches[0].x() + *corner, expected[0].x(), 2 * Tolerance);
    }
    for (size_t i = 0; i < expected.size(); ++i) {
        EXPECT_NEAR(stretches[i].y(), expected[i].y(), Tolerance);
        EXPECT_NEAR(stretches[i].x() - stretches[0].x(), expected[i].x() - expected[0].x(),
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
    bool fits = true;
    std::pair<const char*, const char*> option = {};
};

const char* const Gutenprint = "gutenprint.5.3";
const char* const Epson =
    "escpr:0/cups/model/epson-inkjet-printer-escpr/Epson-ET-7750_Series-epson-escpr-en.ppd";
const PhotoPrinter Bordered{"StylusPhoto", Gutenprint, "gutenprint.5.3://escp2-r300/expert",
                            "w288h432",    2,          2};

class PhotoPrinters : public ::testing::Test {
 protected:
    /// Makes it the current printer, set to the row's paper.
    void AddPrinter(CupsPrinterLayer& layer, const PhotoPrinter& row) {
        service_.AddPhotoPrinter(u"Foto"_s, QString::fromLatin1(row.driver),
                                 QString::fromLatin1(row.model));
        service_.Run(u"lpadmin"_s, {u"-d"_s, u"Foto"_s});
        PrinterChoice choice = layer.CurrentPrinter();
        DeviceMode mode(choice.deviceMode);
        mode.Set("PageSize", row.paper);
        if (row.option.first != nullptr) {
            mode.Set(row.option.first, row.option.second);
        }
        choice.deviceMode = mode.ToBlock();
        layer.SetCurrentPrinter(choice);
    }

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

class PhotoPrinterTest : public PhotoPrinters,
                         public ::testing::WithParamInterface<PhotoPrinter> {};

/// What the preview shows of the copies along one direction of the sheet, in the raster's order: a
/// sheet is turned to the left.
std::vector<QPointF> Shown(const SheetOnPaper& sheet, const PrintImage& image, bool across,
                           bool turned) {
    std::vector<QPointF> stretches;
    for (int i = 0; i < (across ? image.columns : image.rows); ++i) {
        const auto& copy = sheet.copies[static_cast<size_t>(across ? i : i * image.columns)];
        const QRectF kept = copy.photo.marginsRemoved(copy.lost);
        const QPointF stretch =
            across ? QPointF(kept.left(), kept.width()) : QPointF(kept.top(), kept.height());
        const bool backwards = across && turned;
        stretches.insert(backwards ? stretches.begin() : stretches.end(),
                         backwards ? QPointF(-kept.right(), kept.width()) : stretch);
    }
    return stretches;
}

TEST_P(PhotoPrinterTest, EveryCopyHasItsSizeAndThePreviewsPlace) {
    const PhotoPrinter& row = GetParam();
    CupsPrinterLayer layer(service_.Address(), std::chrono::seconds(20));
    AddPrinter(layer, row);
    PrintImage image = DarkSheet(row.columns, row.rows);
    const PrinterPaper paper = layer.Paper();
    EXPECT_EQ(LossText(image, paper).isEmpty(), row.fits);
    EXPECT_EQ(paper.remarks, QStringList());
    EXPECT_EQ(paper.uncalibratedRemarks.isEmpty(), qstrcmp(row.name, "PixmaBorderless") != 0);
    const SheetOnPaper shown = LaidOnPaper(image, paper);
    const QJsonObject printed = Printed(layer, image);
    // A sheet that lies turned, and a printer that is fed the broad side first.
    const QJsonArray raster = printed[u"raster"_s].toArray();
    const QSizeF page = paper.geometry.page;
    const bool broad =
        (raster[0].toDouble() > raster[1].toDouble()) != (page.width() > page.height());
    const bool turned = IsTurned(image, paper);
    std::optional<double> left;
    std::optional<double> top;
    if (printed.contains(u"origin"_s)) {
        left = printed[u"origin"_s][0].toDouble() - page.width() / 2;
        top = printed[u"origin"_s][1].toDouble() - page.height() / 2;
    }
    ExpectStretches(printed[u"x"_s], Shown(shown, image, turned == broad, turned), left);
    ExpectStretches(printed[u"y"_s], Shown(shown, image, turned != broad, turned), top);
}

TEST_F(PhotoPrinters, ACalibratedSheetComesOutRightOnAPrinterThatIsOff) {
    CupsPrinterLayer layer(service_.Address(), std::chrono::seconds(20));
    AddPrinter(layer, Bordered);
    PrintImage image = DarkSheet(2, 2);
    const auto across = [](const QJsonObject& printed) { return Stretches(printed[u"x"_s]); };
    const auto middle = [](const std::vector<QPointF>& copies) {
        return (copies[0].x() + copies[1].x() + copies[1].y()) / 2;
    };
    const double nominalMiddle = middle(across(Printed(layer, image)));
    // What somebody reads off the ruler sheet of a printer that is 2.3 % and 1.4 mm off.
    const PaperGeometry paper = layer.Paper().geometry;
    const RulerLines lines = RulerLinesFor(paper);
    const QPointF cross(paper.paper.width() / 2, paper.paper.height() / 2);
    const auto read = [](double length) { return std::round(length * 10) / 10; };
    image.calibration = Calibrated(
        paper, {}, {read(lines.across * 1.023), lines.along, read(cross.x() + 1.4), cross.y()});
    const std::vector<QPointF> copies = across(Printed(layer, image));
    ASSERT_EQ(copies.size(), 2);
    for (const QPointF& copy : copies) {
        EXPECT_NEAR(copy.y() * 1.023, Photo.width(), Tolerance);
    }
    EXPECT_NEAR((middle(copies) - nominalMiddle) * 1.023 + 1.4, 0, Tolerance);
}

const PhotoPrinter Printers[] = {
    {"Selphy", Gutenprint, "gutenprint.5.3://canon-cp1300/expert", "Postcard", 4, 2},
    {"Dnp", Gutenprint, "gutenprint.5.3://dnp-ds620/expert", "w288h432", 4, 2},
    Bordered,
    {"StylusPhotoThatLoses", Gutenprint, "gutenprint.5.3://escp2-r300/expert", "w288h432", 5, 2,
     false},
    {"PixmaThatLoses", Gutenprint, "gutenprint.5.3://bjc-PIXMA-iP4500/expert", "w288h432", 5, 2,
     false},
    {"PixmaBorderless",
     Gutenprint,
     "gutenprint.5.3://bjc-PIXMA-iP4500/expert",
     "w288h432",
     4,
     2,
     true,
     {"StpFullBleed", "True"}},
    {"Roll", Gutenprint, "gutenprint.5.3://escp2-r300/expert", "Custom.120.5x180.0mm", 2, 2},
    {"RollOfAPrinterThatStretchesIt",
     Gutenprint,
     "gutenprint.5.3://escp2-4800/expert",
     "w288h432",
     2,
     2,
     true,
     {"InputSlot", "RollCutPage"}},
    {"EcoTank", "escpr", Epson, "4X6FULL", 2, 2},
    {"EcoTankThatLoses", "escpr", Epson, "4X6FULL", 5, 2, false},
    {"EcoTankBorderless", "escpr", Epson, "T4X6FULL", 4, 2},
};
INSTANTIATE_TEST_SUITE_P(Debian, PhotoPrinterTest, ::testing::ValuesIn(Printers),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
