#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "printing/Calibration.h"
#include "printing/PrinterLayer.h"
#include "printing/RulerSheet.h"
#include "printing/SheetOnPaper.h"

using namespace kadrona::printing;
using namespace Qt::StringLiterals;

namespace {

const PaperGeometry Paper = PaperGeometry::Plain({101.6, 152.4});

/// What a printer makes of the paper's coordinates that enlarges and shifts: 2.3 % and 1.4 mm.
const QTransform Fault = QTransform::fromTranslate(-50.8, -76.2) *
                         QTransform::fromScale(1.023, 0.985) *
                         QTransform::fromTranslate(50.8 + 1.4, 76.2 - 0.8);

QRectF Printed(const PrintImage& image, const QRectF& sheetPart) {
    return (SheetToPaper(image, Paper, false) * Fault).mapRect(sheetPart);
}

TEST(CalibrationTest, UndoesAPrintersErrorAndIsKeptByProfile) {
    const PrintImage sheet = RulerSheet(Paper, {});
    const RulerLines lines = RulerLinesFor(Paper);
    EXPECT_EQ(lines.across, 80);
    EXPECT_EQ(lines.along, 100);
    const QRectF cross = Printed(sheet, {-40, -50, 80, 100});
    const auto read = [](double length) { return std::round(length * 10) / 10; };
    const Calibration calibration =
        Calibrated(Paper, {},
                   {read(cross.width()), read(cross.height()), read(cross.center().x()),
                    read(cross.center().y())});
    QTemporaryDir folder;
    StoreCalibration(folder.path(), u"Foto"_s, calibration);
    EXPECT_EQ(StoredCalibration(folder.path(), u"Laser"_s), Calibration());
    PrintImage photo = sheet;
    photo.calibration = StoredCalibration(folder.path(), u"Foto"_s);
    EXPECT_EQ(photo.calibration, calibration);
    const QRectF printed = Printed(photo, {-17.5, -22.5, 35, 45});
    const QRectF meant(50.8 - 17.5, 76.2 - 22.5, 35, 45);
    EXPECT_LT((printed.topLeft() - meant.topLeft()).manhattanLength(), 0.15);
    EXPECT_LT((printed.bottomRight() - meant.bottomRight()).manhattanLength(), 0.15);
    const QRectF again = Printed(photo, {-40, -50, 80, 100});
    const Calibration second =
        Calibrated(Paper, calibration,
                   {again.width(), again.height(), again.center().x(), again.center().y()});
    EXPECT_NEAR(second.across, calibration.across, 0.002) << "what is right stays";
    EXPECT_NEAR(second.along, calibration.along, 0.002);
    EraseCalibration(folder.path(), u"Foto"_s);
    EXPECT_EQ(StoredCalibration(folder.path(), u"Foto"_s), Calibration());
    StoreCalibration(folder.path(), u"Foto"_s, {1.3, 0.7, {41, -41}});
    EXPECT_EQ(StoredCalibration(folder.path(), u"Foto"_s), Calibration()) << "nonsense";
}

TEST(CalibrationTest, TheRulersCrossAtTheirSize) {
    const PrintImage sheet = RulerSheet(Paper, {});
    EXPECT_EQ(sheet.Millimetres(), Paper.page);
    const auto dark = [&](int x, int y) { return qRed(sheet.tile.pixel(x, y)) < 128; };
    EXPECT_TRUE(dark(508 - 398, 762) && dark(508 + 398, 762));
    EXPECT_TRUE(dark(508, 762 - 498) && dark(508, 762 + 498));
    EXPECT_FALSE(dark(508, 762 - 503) || dark(508 - 403, 762));
}

TEST(PaperToPage, UndoesTheDriversSpreading) {
    PaperGeometry paper = Paper;
    paper.spread = {-1.5, -2.5, 104, 160};
    EXPECT_EQ(PaperToPage(paper).mapRect(paper.spread), QRectF({}, paper.page));
}

TEST(SheetOnPaper, ShowsPhotosWithoutTheirWhiteAndWhatIsLost) {
    PrintImage image{QImage(300, 200, QImage::Format_RGB32), 1, 1, 254, {}, 20};
    const PrinterPaper paper{.geometry = PaperGeometry::Plain({30, 20}, {0, 0, 3, 0})};
    const SheetOnPaper shown = LaidOnPaper(image, paper);
    EXPECT_EQ(shown.copies.front().photo, QRectF(-14, -9, 28, 18));
    EXPECT_EQ(shown.copies.front().LostParts(), std::vector{QRectF(12, -9, 2, 18)});
    EXPECT_FALSE(shown.told);
    EXPECT_FALSE(TurningHelps(image, paper));
    image.calibration.across = 1.1;
    EXPECT_EQ(LaidOnPaper(image, paper).told, QRectF(-16.5, -10, 33, 20));
    image.calibration = {.offset = {-4, 0}};
    EXPECT_EQ(LostOf(image, paper.geometry, false), QMarginsF(3, 0, 0, 0))
        << "told beyond the reach";
}

TEST(PaperWarning, ACalibrationSettlesWhatNobodyKnewOfThePrinter) {
    PrintImage image{QImage(9, 9, QImage::Format_RGB32), 1, 1, 254, {}};
    const PrinterPaper paper{.geometry = {}, .remarks = {u"a"_s}, .uncalibratedRemarks = {u"b"_s}};
    EXPECT_EQ(PaperWarning(image, paper), u"a\n\nb"_s);
    image.calibration.offset = {2.8, 0};
    EXPECT_EQ(PaperWarning(image, paper), u"a"_s);
}

TEST(CalibrationTest, ReadingsThatMakeNoSenseAreRefused) {
    const double none = std::nan("");
    for (const RulerReadings& readings :
         {RulerReadings{0, 100, 50.8, 76.2}, RulerReadings{3000, 100, 50.8, 76.2},
          RulerReadings{80, none, 50.8, 76.2}, RulerReadings{80, 100, 508, 76.2},
          RulerReadings{80, 100, 50.8, -1}}) {
        try {
            Calibrated(Paper, {}, readings);
            ADD_FAILURE() << readings.across;
        } catch (const PrinterError& error) {
            EXPECT_FALSE(error.Text().contains(u"nan"_s)) << error.Text().toStdString();
        }
    }
    EXPECT_THROW(RulerSheet({}, {}), PrinterError);
    EXPECT_THROW(RulerSheet(PaperGeometry::Plain({40, 90}), {}), PrinterError);
}

TEST(LostOf, TellsWhatOfThePhotosIsBeyondThePaperButForATenthOfAMillimetre) {
    // 28 x 18 mm of photo with a millimetre of white around it.
    const PrintImage image{QImage(300, 200, QImage::Format_RGB32), 1, 1, 254, {}, 20};
    const std::tuple<QSizeF, bool, QMarginsF> cases[] = {
        {{28, 18}, false, {}},
        {{27.9, 18}, false, {}},
        {{27.7, 17}, false, {0.15, 0.5, 0.15, 0.5}},
        {{18, 28}, true, {}},
        {{17, 28}, true, {0, 0.5, 0, 0.5}},
    };
    for (const auto& [paper, turned, lost] : cases) {
        EXPECT_EQ(LostOf(image, PaperGeometry::Plain(paper), turned), lost) << paper.width();
    }
}

}  // namespace
