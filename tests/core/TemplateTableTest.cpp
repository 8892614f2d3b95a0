#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QHash>
#include <algorithm>
#include <vector>

#include "core/check/TemplateTable.h"
#include "core/templates/TemplateCatalogue.h"
#include "core/templates/TemplateDrawing.h"
#include "core/templates/TemplateFile.h"
#include "platform/AtomicFile.h"
#include "tests/support/PixelMatchers.h"

namespace kadrona::core {
namespace {

using namespace Qt::StringLiterals;
using ::testing::HasSubstr;

const QString Header =
    u"Name\tDatei\tBreite\tHöhe\tKopf von\tKopf bis\tAugen von\tAugen bis\tOben von\tOben bis\t"
    "Kinn von\tKinn bis\tGesicht von\tGesicht bis\tAchse von\tAchse "
    "bis\tAugenabstand von\tRichtwert\tScheitel\tBearbeitung\tHintergrund\tPapier\tHinweis\tBeleg\t"
    "Gelesen am\n"_s;

/// A row of the header's columns: the cells given between semicolons, the rest empty.
QString Row(const char* given) {
    QStringList cells = QString::fromUtf8(given).split(u';');
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
    const auto rows = ParseTemplateTable(
        u"# a comment\n\n"_s + Header + Row("A;a.s;50.8;45,5;;;;;;;;;;;;;;Augen, Kopf"), u"t"_s);
    EXPECT_EQ(rows.at(0).width.value, 508);
    EXPECT_EQ(rows.at(0).height.value, 455);
    EXPECT_TRUE(rows.at(0).headIsAdvice && rows.at(0).eyesAreAdvice);
}

TEST(TemplateTable, FaultsNameTheirLine) {
    using Case = std::pair<const char*, const char*>;
    const QString good = Header + Row("A;a.s;35;45");
    for (const auto& [row, fault] :
         {Case{";b.s;35;45", "Name fehlt"}, Case{"B=C;b.s;35;45", "Gleichheitszeichen"},
          Case{"a;b.s;35;45", "Der Name „a“ kommt schon vor"},
          Case{"B;A.S;35;45", "Die Datei „A.S“ kommt schon vor"},
          Case{"B;masklist.KDR;35;45", "schon vor"}, Case{"B;../b.s;35;45", "Dateiname"},
          Case{"B;.b;35;45", "Dateiname"}, Case{"B;;35;45", "Dateiname"},
          Case{"B;b.s;35", "Höhe muss"}, Case{"B;b.s;0;45", "Breite muss"},
          Case{"B;b.s;1000.1;45", "Breite muss"}, Case{"B;b.s;35 mm;45", "Breite: „35 mm“"},
          Case{"B;b.s;35.25;45", "Breite: „35.25“"},
          Case{"B;b.s;35;45;36;32", "Kopf: 36 mm bis 32 mm"},
          Case{"B;b.s;35;45;32;45.1", "Kopf: 45.1 mm"}, Case{"B;b.s;35;45;;;22", "Augen: Es fehlt"},
          Case{"B;b.s;35;45;;;;;;;;;35.1", "Gesicht: 35.1 mm"},
          Case{"B;b.s;35;45;;;;;;;;;;;;;;Nase", "„Nase“"},
          Case{"B;b.s;35;45;;;;;;;;;;;;;;;Bart", "Scheitel: „Bart“"}}) {
        EXPECT_THAT(FaultsOf(good + Row(row)), HasSubstr("t:3: ")) << row;
        EXPECT_THAT(FaultsOf(good + Row(row)), HasSubstr(fault)) << row;
    }
    EXPECT_THAT(FaultsOf(good + u"B\tb.s\t35\t45\n"_s), HasSubstr("t:3: Die Zeile hat 4 Spalten"));
    EXPECT_EQ(FaultsOf(good), "");
    EXPECT_EQ(FaultsOf(good + Row("B;b.s;1000;0.1")), "");
    EXPECT_EQ(FaultsOf(Header + Row("B;b.s;0;45") + Row("A;a.s;35;45") + Row("B;b.s;35;0")),
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
class DeliveredTemplates : public ::testing::Test {
 protected:
    struct Delivered {
        QHash<QString, QString> cells;
        std::vector<TMask> elements;

        int Tenths(const QString& column) const {
            return qRound(cells.value(column).toDouble() * 10);
        }
        const TMask* Find(const QString& name) const {
            const auto found = std::ranges::find(elements, name, &TMask::name);
            return found == elements.end() ? nullptr : &*found;
        }
        std::string Name() const { return cells[u"Name"_s].toStdString(); }
    };

    static QByteArray Content(const QString& path) {
        return platform::ReadWholeFile(path, 1 << 20);
    }

    void SetUp() override {
        QStringList columns;
        for (const QString& line :
             QString::fromUtf8(Content(QStringLiteral(KADRONA_TEMPLATE_TABLE))).split(u'\n')) {
            const QStringList cells = line.split(u'\t');
            if (line.isEmpty() || line.startsWith(u'#')) {
                continue;
            }
            if (columns.isEmpty()) {
                columns = cells;
                continue;
            }
            Delivered& row = delivered_.emplace_back();
            for (qsizetype i = 0; i < columns.size(); ++i) {
                row.cells.insert(columns[i], cells.value(i));
            }
            row.elements = ParseTemplate(Content(folder_ + row.cells[u"Datei"_s]));
        }
        ASSERT_GE(delivered_.size(), 37U);
    }

    const QString folder_ = QStringLiteral(KADRONA_TEMPLATE_FOLDER "/");
    std::vector<Delivered> delivered_;
};

TEST_F(DeliveredTemplates, CatalogueListsTheTableInItsOrder) {
    const auto entries = ParseCatalogue(QString::fromUtf8(Content(folder_ + u"MaskList.kdr"_s)));
    ASSERT_EQ(entries.size(), delivered_.size());
    for (size_t i = 0; i < entries.size(); ++i) {
        EXPECT_EQ(entries[i].name, delivered_[i].cells[u"Name"_s]);
        EXPECT_EQ(entries[i].file, delivered_[i].cells[u"Datei"_s]);
    }
    EXPECT_EQ(QDir(folder_).entryList(QDir::Files).size(),
              static_cast<qsizetype>(entries.size()) + 2)
        << "with the catalogue and the figures";
}

TEST_F(DeliveredTemplates, CanvasIsThePhotoInTenthsOfMillimetre) {
    for (const Delivered& row : delivered_) {
        const QSize canvas = TemplateCanvas(row.elements);
        EXPECT_EQ(canvas, QSize(row.Tenths(u"Breite"_s), row.Tenths(u"Höhe"_s))) << row.Name();
        const QImage image = DrawTemplate(row.elements);
        EXPECT_EQ(qAlpha(image.pixel(0, 0)), 255) << row.Name() << ": frame";
        EXPECT_EQ(qAlpha(image.pixel(canvas.width() - 1, canvas.height() - 1)), 255) << row.Name();
        EXPECT_EQ(qAlpha(image.pixel(canvas.width() / 4, canvas.height() - 8)), 0) << row.Name();
    }
}

TEST_F(DeliveredTemplates, HeadsAreAsHighAsPublishedAndStandOnOneChinLine) {
    int heads = 0;
    for (const Delivered& row : delivered_) {
        SCOPED_TRACE(row.Name());
        const QRect canvas({0, 0}, TemplateCanvas(row.elements));
        for (const auto& [name, column] :
             {std::pair(u"Kleinster Kopf"_s, u"Kopf von"_s), {u"Größter Kopf"_s, u"Kopf bis"_s}}) {
            const TMask* const head = row.Find(name);
            ASSERT_EQ(head != nullptr, !row.cells[column].isEmpty()) << name.toStdString();
            if (!head) {
                continue;
            }
            ++heads;
            const QRect drawn = DrawnPart(DrawTemplate({row.elements.front(), *head}));
            EXPECT_EQ(drawn.height(), row.Tenths(column));
            EXPECT_TRUE(canvas.adjusted(3, 0, -3, 0).contains(drawn)) << name.toStdString();
            EXPECT_LE(std::abs(drawn.left() + drawn.right() + 1 - canvas.width()), 1);
            EXPECT_NEAR(drawn.bottom(), row.Find(u"Kinnmarke"_s)->top, 3) << name.toStdString();
        }
    }
    EXPECT_GE(heads, 60);
}

TEST_F(DeliveredTemplates, MiddleHeadHasItsEyesInTheirBandAndItsCrownInTheUpperQuarter) {
    for (const Delivered& row : delivered_) {
        SCOPED_TRACE(row.Name());
        const TMask* const tick = row.Find(u"Kinnmarke"_s);
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
        for (const auto& [band, place] : {std::pair(u"Augen"_s, chin + middle / 2),
                                          {u"Kinn"_s, chin},
                                          {u"Oben"_s, height - chin - middle}}) {
            if (const int from = row.Tenths(band + u" von"_s)) {
                EXPECT_GE(place, from) << band.toStdString();
                EXPECT_LE(place, row.Tenths(band + u" bis"_s)) << band.toStdString();
            }
        }
        if (const TMask* const eyes = row.Find(u"Augen oben"_s)) {
            EXPECT_NEAR(eyes->top, height - row.Tenths(u"Augen bis"_s), 3);
            EXPECT_NEAR(row.Find(u"Augen unten"_s)->top, height - row.Tenths(u"Augen von"_s), 3);
        }
    }
}

TEST_F(DeliveredTemplates, NothingIsDrawnThatIsNotPublished) {
    for (const Delivered& row : delivered_) {
        for (const auto& [element, column] : {std::pair(u"Augen oben"_s, u"Augen bis"_s),
                                              {u"Augen unten"_s, u"Augen von"_s},
                                              {u"Augen links"_s, u"Augen von"_s},
                                              {u"Augen rechts"_s, u"Augen von"_s},
                                              {u"Scheitel von"_s, u"Oben von"_s},
                                              {u"Scheitel bis"_s, u"Oben bis"_s},
                                              {u"Kinn von"_s, u"Kinn von"_s},
                                              {u"Kinn bis"_s, u"Kinn bis"_s},
                                              {u"Achse von"_s, u"Achse von"_s},
                                              {u"Achse bis"_s, u"Achse bis"_s}}) {
            EXPECT_EQ(row.Find(element) != nullptr, !row.cells[column].isEmpty())
                << row.Name() << ": " << element.toStdString();
        }
        EXPECT_TRUE(row.Find(u"Rahmen"_s) && row.Find(u"Mittellinie"_s));
    }
}

}  // namespace
}  // namespace kadrona::core
