// Pages that come out of a real print service, measured.

#include <gmock/gmock.h>

#include <QDir>
#include <QListWidget>
#include <QTemporaryDir>

#include "PrintingFixture.h"
#include "core/sheet/PaperSheet.h"
#include "platform/UserRegistry.h"
#include "printing/SheetOnPaper.h"
#include "printing/cups/service/ChosenPrinters.h"
#include "printing/cups/service/Job.h"
#include "printing/cups/service/TemporaryFile.h"
#include "tests/support/ModalDriver.h"

using namespace kadrona;
using namespace kadrona::printing;
using namespace kadrona::testing;
using namespace Qt::StringLiterals;
using printing::cups::CupsPrinterLayer;
using printing::cups::DeviceMode;
using ::testing::HasSubstr;

namespace {

void ExpectTrueSize(const PrintedPage& printed, const PrintImage& image, QSizeF photo, QSizeF paper,
                    bool turned) {
    EXPECT_EQ(printed.count, 1);
    EXPECT_NEAR(printed.page.width(), paper.width(), 0.02);
    EXPECT_NEAR(printed.page.height(), paper.height(), 0.02);
    ASSERT_EQ(printed.copies.size(), static_cast<size_t>(image.columns * image.rows));
    const QSizeF lying = turned ? photo.transposed() : photo;
    for (const PrintedPage::Copy& copy : printed.copies) {
        EXPECT_EQ(copy.turned, turned);
        EXPECT_NEAR(copy.place.width(), lying.width(), 0.05);
        EXPECT_NEAR(copy.place.height(), lying.height(), 0.05);
    }
    const QRectF sheet = printed.Sheet();
    const QSizeF size = turned ? image.Millimetres().transposed() : image.Millimetres();
    EXPECT_NEAR(sheet.width(), size.width(), 0.05) << "the copies do not touch each other";
    EXPECT_NEAR(sheet.height(), size.height(), 0.05) << "the copies do not touch each other";
    EXPECT_NEAR(sheet.center().x(), paper.width() / 2, 0.1);
    EXPECT_NEAR(sheet.center().y(), paper.height() / 2, 0.1);
}

/// The filter that labels pages names a font that it does not bring, so that poppler complains.
bool HasLabel(const QString& pdf) {
    QProcess texts;
    texts.start(u"pdftotext"_s, {pdf, u"-"_s});
    EXPECT_TRUE(texts.waitForFinished());
    return (texts.readAllStandardOutput() + texts.readAllStandardError()).contains("pagelabel");
}

/// What is shown before printing is what comes out.
void ExpectPlacesOf(const SheetOnPaper& shown, const PrintedPage& printed, bool turned) {
    const QTransform turn = QTransform().rotate(turned ? -90 : 0);
    const QPointF corner = turn.mapRect(shown.paper).topLeft();
    ASSERT_EQ(shown.copies.size(), printed.copies.size());
    for (const SheetOnPaper::Copy& copy : shown.copies) {
        const QRectF place = turn.mapRect(copy.place).translated(-corner);
        EXPECT_TRUE(
            std::any_of(printed.copies.begin(), printed.copies.end(), [&](const auto& found) {
                return QPointF(found.place.topLeft() - place.topLeft()).manhattanLength() < 0.1 &&
                       QPointF(found.place.bottomRight() - place.bottomRight()).manhattanLength() <
                           0.1;
            }));
    }
}

struct PaperCase {
    const char* name;
    QSizeF photo;
    const char* paper;
    const char* orientation;
    QSizeF millimetres;
};

class TrueSizeTest : public PrintingTest, public ::testing::WithParamInterface<PaperCase> {};

TEST_P(TrueSizeTest, EveryLayoutComesOutAtItsSizeAndCentred) {
    const PaperCase& row = GetParam();
    CupsPrinterLayer layer(service_.Address());
    Set(layer, {{"PageSize", row.paper}, {DeviceMode::Orientation, row.orientation}});
    const bool turned = qstrcmp(row.orientation, "4") == 0;
    const QSizeF page = layer.Paper().geometry.page;
    EXPECT_NEAR(page.width(), row.millimetres.width(), 0.02);
    EXPECT_NEAR(page.height(), row.millimetres.height(), 0.02);
    for (const core::SheetLayout& layout : core::SheetLayouts) {
        SCOPED_TRACE(layout.name.data());
        const PrintImage image = Sheet(row.photo, layout);
        const PrintedPage printed = Printed(layer, image);
        ExpectTrueSize(printed, image, row.photo, row.millimetres, turned);
        ExpectPlacesOf(LaidOnPaper(image, layer.Paper()), printed, turned);
    }
}

// On the A6 in landscape "3 x 3" is higher than the paper, and the first two have margins that
// nothing may be fitted into.
INSTANTIATE_TEST_SUITE_P(
    Templates, TrueSizeTest,
    ::testing::Values(PaperCase{"A6Landscape", {35, 45}, "A6", "4", {105, 148}},
                      PaperCase{"A4", {50, 70}, "A4", "3", {210, 297}},
                      PaperCase{"Borderless", {25, 35}, "A6.Borderless", "3", {105, 148}},
                      PaperCase{"PhotoPaper", {50, 50}, "w288h432", "3", {101.6, 152.4}},
                      PaperCase{"Wide", {25, 35}, "Wide127x89", "4", {127, 88.9}}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(PrintingTest, QueueDefaultsThatWouldChangeThePageDoNot) {
    CupsPrinterLayer layer(service_.Address());
    Set(layer, {{"PageSize", "A6"}, {DeviceMode::Orientation, "3"}});
    const PrintImage image = Sheet({35, 45}, core::SheetLayouts[5]);
    for (const char* standard :
         {"mirror=true", "page-border=double-thick", "page-ranges=2-3", "page-set=even",
          "job-hold-until=indefinite", "number-up=2", "fit-to-page=true", "print-scaling=fill",
          "orientation-requested=4", "landscape=true", "booklet=true", "media=A4", "scaling=50",
          "page-label=Intern", "job-sheets=standard,none"}) {
        SCOPED_TRACE(standard);
        const QStringList option = QString::fromLatin1(standard).split(u'=');
        service_.Run(u"lpadmin"_s,
                     {u"-p"_s, u"Photo"_s, u"-o"_s, option[0] + u"-default="_s + option[1]});
        ExpectTrueSize(Printed(layer, image), image, {35, 45}, {105, 148}, false);
        EXPECT_FALSE(HasLabel(service_.PrintedFile()));
        service_.Run(u"lpadmin"_s, {u"-p"_s, u"Photo"_s, u"-R"_s, option[0] + u"-default"_s});
    }
}

TEST_F(PrintingTest, ASheetOnPaperComesOutWithItsCopiesAndGaps) {
    CupsPrinterLayer layer(service_.Address());
    Set(layer, {{"PageSize", "w288h432"}, {DeviceMode::Orientation, "auto"}});
    core::PaperChoice choice;
    choice.paper = QSize(101'600, 152'400);
    choice.marks = core::CuttingMarks::Corners;
    choice.fill = true;
    PrintImage image;
    image.dotsPerInch = 300;
    const QImage photo =
        Painted({413, 531}, [](int x, int y) { return qRgb(x % 256, y % 256, 9); });
    image.arrangement = *core::CopiesOnPaper(imaging::Pixels(photo), {35'000, 45'000},
                                             {image.dotsPerInch}, choice, 0)
                             .Arranged();
    const PrintedPage printed = Printed(layer, image);
    EXPECT_NEAR(printed.page.width(), 101.6, 0.02);
    EXPECT_NEAR(printed.page.height(), 152.4, 0.02);
    ASSERT_EQ(printed.copies.size(), 8);
    for (const PrintedPage::Copy& copy : printed.copies) {
        EXPECT_NEAR(copy.place.width(), 45, 0.05);
        EXPECT_NEAR(copy.place.height(), 35, 0.05);
    }
    const QRectF first = printed.copies[0].place;
    EXPECT_NEAR(printed.copies[1].place.left() - first.right(), 2, 0.085);
    EXPECT_NEAR(printed.copies[2].place.top() - first.bottom(), 2, 0.085);
    ExpectPlacesOf(LaidOnPaper(image, layer.Paper()), printed, false);
}

TEST_F(PrintingTest, TheTileIsInThePageOnceAndLossless) {
    CupsPrinterLayer layer(service_.Address());
    const PrintImage image = Sheet({35, 45}, core::SheetLayouts[0]);
    layer.Print(image);
    service_.WaitForJobs();
    QTemporaryDir folder;
    const QString page = service_.PrintedFile();
    Output(u"pdfimages"_s, {u"-png"_s, page, folder.filePath(u"i"_s)});
    EXPECT_EQ(QImage(folder.filePath(u"i-000.png"_s)).convertToFormat(QImage::Format_RGB32),
              image.tile);
    QStringList objects;
    for (const QString& line :
         Output(u"pdfimages"_s, {u"-list"_s, page}).trimmed().split(u'\n').mid(2)) {
        objects.append(line.simplified().section(u' ', 10, 10));
    }
    EXPECT_EQ(objects.size(), 8);
    EXPECT_EQ(objects.removeDuplicates(), 7) << "the tile is in the file more than once";
}

TEST(JobFile, IsReadWithoutANameThatAKilledProgramWouldLeave) {
    const QTemporaryDir folder;
    QTemporaryFile page(folder.filePath(u"page"_s));
    cups::WriteJobFile(page, Sheet({35, 45}, core::SheetLayouts[0]), {});
    const qsizetype names = QDir(folder.path()).entryList(QDir::Files).size();
    QFile read(cups::PathOf(page));
    EXPECT_TRUE(read.open(QIODevice::ReadOnly) && read.readAll().startsWith("%PDF"));
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files).size(), names);
}

TEST_F(PrintingTest, APrinterOfTheNetworkPrintsThroughAQueueThatIsMadeForIt) {
    const QString port = QString::number(20'000 + QCoreApplication::applicationPid() % 20'000);
    const PrintService far(port);
    const QString uri = u"ipp://localhost:"_s + port + u"/printers/Photo"_s;
    const auto chosen = [](const QString& name, const QString& place) {
        return PrinterChoice{
            name,
            {},
            {},
            "announced-uri=" + place.toUtf8() + "\nPageSize=A6\norientation-requested=3\n"};
    };
    CupsPrinterLayer patient(service_.Address());
    const auto choose = [&](CupsPrinterLayer& layer, const QString& place) {
        return ErrorOf([&] { layer.SetCurrentPrinter(chosen(u"Tot"_s, place)); });
    };
    for (const char* place :
         {"file:///etc/passwd", "ipp://localhost@evil.example/ipp", "ipp:///x"}) {
        EXPECT_THAT(choose(patient, QString::fromLatin1(place)), HasSubstr("nicht mehr vorhanden"));
    }
    EXPECT_THAT(choose(patient, uri), HasSubstr("noch nicht gewählt"));
    QStringList asked;
    const auto agree = [&asked](const QString& printer, const QString& address) {
        asked.append(printer + u' ' + address);
        return true;
    };
    patient.AskBeforeFirstUse(agree);
    CupsPrinterLayer hurried(service_.Address(), std::chrono::milliseconds(500));
    hurried.AskBeforeFirstUse(agree);
    EXPECT_THAT(choose(hurried, u"ipp://localhost:1/ipp"_s), HasSubstr("antwortet"));

    asked.clear();
    patient.SetCurrentPrinter(chosen(u"Fern"_s, uri));
    EXPECT_EQ(asked, QStringList{u"Fern "_s + uri});
    EXPECT_TRUE(cups::ChosenPrinters().Holds(uri.toLatin1())) << "never asked again";
    const PrintImage image = Sheet({35, 45}, core::SheetLayouts[5]);
    patient.Print(image);
    service_.WaitForJobs();
    far.WaitForJobs();
    ExpectTrueSize(Measured(far.PrintedFile()), image, {35, 45}, {105, 148}, false);
    ModalDriver driver;
    driver.Expect(u"PrinterSetupDialog"_s, [](QWidget& window) {
        const auto& list = Child<QListWidget>(window, "QueueList");
        EXPECT_EQ(list.currentItem()->text(), u"Fern\nIm Netz gefunden"_s);
        Child<QAbstractButton>(window, "OkButton").click();
    });
    ASSERT_TRUE(patient.ShowSetupDialog(nullptr));
    EXPECT_EQ(DeviceMode(patient.CurrentPrinter().deviceMode).Value("announced-uri"), uri.toUtf8());

    // The queue is there, at an address that this user has not chosen.
    platform::WriteRegistryText(u"NetworkPrinters"_s, u"ipp://localhost:1/ipp"_s);
    CupsPrinterLayer other(service_.Address());
    EXPECT_THAT(
        ErrorOf([&] { other.SetCurrentPrinter(chosen(u"Fern"_s, u"ipp://localhost:1/ipp"_s)); }),
        HasSubstr("noch nicht gewählt"));
}

}  // namespace
