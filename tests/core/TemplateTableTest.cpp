#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QHash>
#include <algorithm>
#include <vector>

#include "core/check/TemplateTable.h"
#include "core/templates/TemplateCatalogue.h"
#include "core/templates/TemplateDrawing.h"
#include "core/templates/TemplateFile.h"
#include "tests/core/GeometryPrinting.h"

namespace kadrona::core {
namespace {

using namespace Qt::StringLiterals;
using testing::HasSubstr;

const QString Header =
    u"Name\tDatei\tBreite\tHöhe\tKopf von\tKopf bis\tAugen von\tAugen bis\tOben von\tOben bis\t"
    "Kinn von\tKinn bis\tGesicht von\tGesicht bis\tAchse von\tAchse "
    "bis\tAugenabstand von\tRichtwert\tScheitel\tBearbeitung\tHintergrund\tPapier\tHinweis\tBeleg\t"
    "Gelesen am\n"_s;

/// A row of the header's columns: the cells given, the rest empty.
QString Row(QStringList cells) {
    cells.resize(25);
    return cells.join(u'\t') + u'\n';
}

/// The faults of a table, "t:line: reason" each; empty when it is good.
std::string FaultsOf(const QString& text) {
    try {
        ParseTemplateTable(text, u"t"_s);
        return {};
    } catch (const TemplateTableError& error) {
        return error.what();
    }
}

TEST(TemplateTable, CellsMayHaveADecimalCommaAndSeveralAdvices) {
    const QStringList cells = u"A;a.s;50.8;45,5;;;;;;;;;;;;;;Augen, Kopf"_s.split(u';');
    const auto rows = ParseTemplateTable(u"# a comment\n\n"_s + Header + Row(cells), u"t"_s);
    EXPECT_EQ(rows.at(0).width.value, 508);
    EXPECT_EQ(rows.at(0).height.value, 455);
    EXPECT_TRUE(rows.at(0).headIsAdvice && rows.at(0).eyesAreAdvice);
}

TEST(TemplateTable, FaultsNameTheirLine) {
    const QString good = Row({u"A"_s, u"a.s"_s, u"35"_s, u"45"_s});
    const auto size = [](const QString& width, const QString& height,
                         const QStringList& bands = {}) {
        return Row(QStringList{u"B"_s, u"b.s"_s, width, height} + bands);
    };
    struct Case {
        const char* name;
        QString row;
        const char* fault;
    };
    const std::vector<Case> table = {
        {"no name", Row({u""_s, u"b.s"_s, u"35"_s, u"45"_s}), "Name fehlt"},
        {"name with =", Row({u"B=C"_s, u"b.s"_s, u"35"_s, u"45"_s}), "Gleichheitszeichen"},
        {"same name", Row({u"A"_s, u"b.s"_s, u"35"_s, u"45"_s}), "Der Name „A“ kommt schon vor"},
        {"same file", Row({u"B"_s, u"A.S"_s, u"35"_s, u"45"_s}), "Die Datei „A.S“ kommt schon vor"},
        {"the catalogue's file", Row({u"B"_s, u"masklist.KDR"_s, u"35"_s, u"45"_s}), "schon vor"},
        {"file in another folder", Row({u"B"_s, u"../b.s"_s, u"35"_s, u"45"_s}), "Dateiname"},
        {"hidden file", Row({u"B"_s, u".b"_s, u"35"_s, u"45"_s}), "Dateiname"},
        {"no file", Row({u"B"_s, u""_s, u"35"_s, u"45"_s}), "Dateiname"},
        {"no height", size(u"35"_s, u""_s), "Höhe muss"},
        {"no extent", size(u"0"_s, u"45"_s), "Breite muss"},
        {"too wide", size(u"1000.1"_s, u"45"_s), "Breite muss"},
        {"no number", size(u"35 mm"_s, u"45"_s), "Breite: „35 mm“"},
        {"negative", size(u"-35"_s, u"45"_s), "Breite: „-35“"},
        {"two decimals", size(u"35.25"_s, u"45"_s), "Breite: „35.25“"},
        {"inverted", size(u"35"_s, u"45"_s, {u"36"_s, u"32"_s}), "Kopf: 36 mm bis 32 mm"},
        {"larger than the photo", size(u"35"_s, u"45"_s, {u"32"_s, u"45.1"_s}), "Kopf: 45.1 mm"},
        {"half a band", size(u"35"_s, u"45"_s, {u""_s, u""_s, u"22"_s}), "Augen: Es fehlt"},
        {"a cell too few", u"B\tb.s\t35\t45\n"_s, "4 Spalten statt 25"},
        {"unknown advice",
         Row(QStringList{u"B"_s, u"b.s"_s, u"35"_s, u"45"_s} + QStringList(12) +
             QStringList{u"Nase"_s}),
         "„Nase“"},
    };
    for (const auto& row : table) {
        EXPECT_THAT(FaultsOf(Header + good + row.row), HasSubstr("t:3: ")) << row.name;
        EXPECT_THAT(FaultsOf(Header + good + row.row), HasSubstr(row.fault)) << row.name;
    }
    EXPECT_EQ(FaultsOf(Header + good), "");
    EXPECT_EQ(FaultsOf(Header + size(u"0"_s, u"45"_s) + good + size(u"35"_s, u"0"_s)),
              "t:2: Breite muss zwischen 0,1 und 1000 mm liegen.\n"
              "t:4: Höhe muss zwischen 0,1 und 1000 mm liegen.\n"
              "t:4: Der Name „B“ kommt schon vor.\n"
              "t:4: Die Datei „b.s“ kommt schon vor.");
}

TEST(TemplateTable, ColumnsMustBeThereOnce) {
    EXPECT_EQ(FaultsOf(u"#\n"_s + QString(Header).remove(u"Augen bis\t"_s)),
              "t:2: Die Spalte „Augen bis“ fehlt.");
    EXPECT_EQ(FaultsOf(u"Name\t"_s + Header), "t:1: Die Spalte „Name“ kommt zweimal vor.");
    EXPECT_THAT(FaultsOf(u"# nothing\n"_s), HasSubstr("Spaltennamen fehlt"));
}

QRect DrawnPart(const QImage& image) {
    QRect drawn;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            drawn |= qAlpha(image.pixel(x, y)) ? QRect(x, y, 1, 1) : QRect();
        }
    }
    return drawn;
}

/// What the build delivered, with the table read once more by this test's own few lines.
class DeliveredTemplates : public testing::Test {
 protected:
    struct Delivered {
        QHash<QString, QString> cells;
        std::vector<core::TMask> elements;

        int Tenths(const QString& column) const {
            return qRound(cells.value(column).toDouble() * 10);
        }
        const core::TMask* Find(const QString& name) const {
            const auto found = std::find_if(elements.begin(), elements.end(),
                                            [&](const auto& mask) { return mask.name == name; });
            return found == elements.end() ? nullptr : &*found;
        }
    };

    static QByteArray Content(const QString& path) {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
        return file.readAll();
    }

    void SetUp() override {
        QStringList columns;
        for (const QString& line :
             QString::fromUtf8(Content(QStringLiteral(KADRONA_TEMPLATE_TABLE))).split(u'\n')) {
            if (line.isEmpty() || line.startsWith(u'#')) {
                continue;
            }
            const QStringList cells = line.split(u'\t');
            if (columns.isEmpty()) {
                columns = cells;
                continue;
            }
            Delivered& row = delivered_.emplace_back();
            for (qsizetype i = 0; i < columns.size(); ++i) {
                row.cells.insert(columns[i], cells.value(i));
            }
            row.elements = core::ParseTemplate(Content(folder_ + row.cells[u"Datei"_s]));
        }
        ASSERT_EQ(delivered_.size(), 37U);
    }

    const QString folder_ = QStringLiteral(KADRONA_TEMPLATE_FOLDER "/");
    std::vector<Delivered> delivered_;
};

TEST_F(DeliveredTemplates, CatalogueListsTheTableInItsOrder) {
    const auto entries =
        core::ParseCatalogue(QString::fromUtf8(Content(folder_ + u"MaskList.kdr"_s)));
    ASSERT_EQ(entries.size(), delivered_.size());
    for (size_t i = 0; i < entries.size(); ++i) {
        EXPECT_EQ(entries[i].name, delivered_[i].cells[u"Name"_s]);
        EXPECT_EQ(entries[i].file, delivered_[i].cells[u"Datei"_s]);
    }
    EXPECT_EQ(QDir(folder_).entryList(QDir::Files).size(), 39)
        << "with the catalogue and the figures";
}

TEST_F(DeliveredTemplates, CanvasIsThePhotoInTenthsOfMillimetre) {
    for (const Delivered& row : delivered_) {
        const std::string name = row.cells[u"Name"_s].toStdString();
        const QSize canvas = core::TemplateCanvas(row.elements);
        EXPECT_EQ(canvas, QSize(row.Tenths(u"Breite"_s), row.Tenths(u"Höhe"_s))) << name;
        const QImage image = core::DrawTemplate(row.elements);
        EXPECT_EQ(qAlpha(image.pixel(0, 0)), 255) << name << ": frame";
        EXPECT_EQ(qAlpha(image.pixel(canvas.width() - 1, canvas.height() - 1)), 255) << name;
        EXPECT_EQ(qAlpha(image.pixel(canvas.width() / 4, canvas.height() - 8)), 0) << name;
    }
}

TEST_F(DeliveredTemplates, HeadsAreAsHighAsPublishedAndStandOnOneChinLine) {
    int heads = 0;
    for (const Delivered& row : delivered_) {
        SCOPED_TRACE(row.cells[u"Name"_s].toStdString());
        const QRect canvas({0, 0}, core::TemplateCanvas(row.elements));
        int chin = 0;
        for (const auto& [name, column] : {std::pair(u"Kleinster Kopf"_s, u"Kopf von"_s),
                                           std::pair(u"Größter Kopf"_s, u"Kopf bis"_s)}) {
            const core::TMask* const head = row.Find(name);
            ASSERT_EQ(head != nullptr, !row.cells[column].isEmpty()) << name.toStdString();
            if (!head) {
                continue;
            }
            ++heads;
            const QImage alone = core::DrawTemplate({row.elements.front(), *head});
            const QRect drawn = DrawnPart(alone);
            EXPECT_EQ(drawn.height(), row.Tenths(column));
            EXPECT_TRUE(canvas.adjusted(3, 0, -3, 0).contains(drawn)) << name.toStdString();
            EXPECT_LE(std::abs(drawn.left() + drawn.right() + 1 - canvas.width()), 1);
            EXPECT_TRUE(chin == 0 || chin == drawn.bottom()) << "chin lines differ";
            chin = drawn.bottom();
            EXPECT_NEAR(chin, row.Find(u"Kinnmarke"_s)->top, 3) << name.toStdString();
        }
    }
    EXPECT_EQ(heads, 60);
}

TEST_F(DeliveredTemplates, MiddleHeadHasItsEyesInTheirBandAndItsCrownInTheUpperQuarter) {
    for (const Delivered& row : delivered_) {
        SCOPED_TRACE(row.cells[u"Name"_s].toStdString());
        const core::TMask* const tick = row.Find(u"Kinnmarke"_s);
        if (!tick) {
            EXPECT_TRUE(row.cells[u"Kopf bis"_s].isEmpty());
            continue;
        }
        const int height = row.Tenths(u"Höhe"_s);
        const int chin = height - tick->top;
        const int largest = row.Tenths(u"Kopf bis"_s);
        const int smallest = row.Tenths(u"Kopf von"_s) ? row.Tenths(u"Kopf von"_s) : largest;
        const int middle = (smallest + largest) / 2;
        EXPECT_LE(chin + middle, height);
        EXPECT_GE(chin + middle, height * 3 / 4);
        for (const auto& [band, place] :
             {std::pair(u"Augen"_s, chin + middle / 2), std::pair(u"Kinn"_s, chin),
              std::pair(u"Oben"_s, height - chin - middle)}) {
            if (const int from = row.Tenths(band + u" von"_s)) {
                EXPECT_GE(place, from) << band.toStdString();
                EXPECT_LE(place, row.Tenths(band + u" bis"_s)) << band.toStdString();
            }
        }
        if (const core::TMask* const eyes = row.Find(u"Augen oben"_s)) {
            EXPECT_NEAR(eyes->top, height - row.Tenths(u"Augen bis"_s), 3);
            EXPECT_NEAR(row.Find(u"Augen unten"_s)->top, height - row.Tenths(u"Augen von"_s), 3);
        }
    }
}

TEST_F(DeliveredTemplates, NothingIsDrawnThatIsNotPublished) {
    const QHash<QString, QString> columnOf{
        {u"Augen oben"_s, u"Augen bis"_s},  {u"Augen unten"_s, u"Augen von"_s},
        {u"Augen links"_s, u"Augen von"_s}, {u"Augen rechts"_s, u"Augen von"_s},
        {u"Scheitel von"_s, u"Oben von"_s}, {u"Scheitel bis"_s, u"Oben bis"_s},
        {u"Kinn von"_s, u"Kinn von"_s},     {u"Kinn bis"_s, u"Kinn bis"_s},
        {u"Achse von"_s, u"Achse von"_s},   {u"Achse bis"_s, u"Achse bis"_s}};
    for (const Delivered& row : delivered_) {
        for (auto pair = columnOf.begin(); pair != columnOf.end(); ++pair) {
            EXPECT_EQ(row.Find(pair.key()) != nullptr, !row.cells[pair.value()].isEmpty())
                << row.cells[u"Name"_s].toStdString() << ": " << pair.key().toStdString();
        }
        EXPECT_TRUE(row.Find(u"Rahmen"_s) && row.Find(u"Mittellinie"_s));
    }
}

}  // namespace
}  // namespace kadrona::core
