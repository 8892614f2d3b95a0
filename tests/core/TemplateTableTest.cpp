#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
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
    "Gelesen am\tBelege\n"_s;

/// A row of the header's columns: the cells given between semicolons, the rest empty.
QString Row(const char* given) {
    QStringList cells = QString::fromUtf8(given).split(u';');
    cells.resize(26);
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
        u"# a comment\n\n"_s + Header +
            Row("A;a.s;50.8;45,5;1;2;3;4;5;6;7;8;9;10;11;12;13;Augen, Kopf") + Row("B;b.s;35;45"),
        u"t"_s);
    const TemplateRow& row = rows.at(0);
    QList<int> tenths{row.width.value, row.height.value};
    for (const Band& band : {row.head, row.eyes, row.top, row.chin, row.face, row.axis}) {
        tenths << band.from->value << band.to->value;
    }
    EXPECT_EQ(tenths << row.eyeDistance->value,
              QList({508, 455, 10, 20, 30, 40, 50, 60, 70, 80, 90, 100, 110, 120, 130}));
    EXPECT_TRUE(row.headIsAdvice && row.eyesAreAdvice);
    EXPECT_FALSE(rows.at(1).headIsAdvice || rows.at(1).eyesAreAdvice || rows.at(1).head.from);
}

TEST(TemplateTable, FaultsNameTheirLine) {
    using Case = std::pair<const char*, const char*>;
    const QString good = Header + Row("A;a.s;35;45");
    for (const auto& [row, fault] :
         {Case{";b.s;35;45", "Name fehlt"},
          Case{"B=C;b.s;35;45", "Gleichheitszeichen"},
          Case{"a;b.s;35;45", "Der Name „a“ kommt schon vor"},
          Case{"B;A.S;35;45", "Die Datei „A.S“ kommt schon vor"},
          Case{"B;masklist.KDR;35;45", "schon vor"},
          Case{"B;../b.s;35;45", "Dateiname"},
          Case{"B;.b;35;45", "Dateiname"},
          Case{"B;;35;45", "Dateiname"},
          Case{"B;b.s;35", "Höhe muss"},
          Case{"B;b.s;0;45", "Breite muss"},
          Case{"B;b.s;1000.1;45", "Breite muss"},
          Case{"B;b.s;35 mm;45", "Breite: „35 mm“"},
          Case{"B;b.s;35.25;45", "Breite: „35.25“"},
          Case{"B;b.s;35;45;36;32", "Kopf: 36 mm bis 32 mm"},
          Case{"B;b.s;35;45;32;45.1", "Kopf: 45.1 mm"},
          Case{"B;b.s;35;45;;;22", "Augen: Es fehlt"},
          Case{"B;b.s;35;45;;;;;;;;;35.1", "Gesicht: 35.1 mm"},
          Case{"B;b.s;35;45;;;;;;;;;;;;;;Nase", "„Nase“"},
          Case{"B;b.s;35;45;;;;;;;;;;;;;;;Bart", "Scheitel: „Bart“"},
          Case{"B;b.s;35;45;;;;;;;;;;;;;;;;;;;;;;Kopf: O", "Belege: „Kopf: O“"}}) {
        EXPECT_THAT(FaultsOf(good + Row(row)), HasSubstr("t:3: ")) << row;
        EXPECT_THAT(FaultsOf(good + Row(row)), HasSubstr(fault)) << row;
    }
    EXPECT_THAT(FaultsOf(good + u"B\tb.s\t35\t45\n"_s), HasSubstr("t:3: Die Zeile hat 4 Spalten"));
    EXPECT_EQ(FaultsOf(good), "");
    EXPECT_EQ(FaultsOf(good + Row("B;b.s;1000;0.1")), "");
    EXPECT_EQ(FaultsOf(good + Row("B;b.s;35;45;;;;;4;;;12")), "") << "one end is enough for these";
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
    EXPECT_EQ(FaultsOf(u"Scheitl\t"_s + Header), "t:1: Die Spalte „Scheitl“ gibt es nicht.");
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

/// What the build delivered.
class DeliveredTemplates : public ::testing::Test {
 protected:
    struct Delivered {
        TemplateRow row;
        std::vector<TMask> elements;

        const TMask* Find(const QString& name) const {
            const auto found = std::ranges::find(elements, name, &TMask::name);
            return found == elements.end() ? nullptr : &*found;
        }
        std::string Name() const { return row.name.toStdString(); }
    };

    static QString Content(const QString& path) {
        return QString::fromUtf8(platform::ReadWholeFile(path, 1 << 20));
    }

    void SetUp() override {
        const QString table = Content(QStringLiteral(KADRONA_TEMPLATE_TABLE));
        for (const TemplateRow& row : ParseTemplateTable(table, u"t"_s)) {
            delivered_.push_back(
                {row, ParseTemplate(platform::ReadWholeFile(folder_ + row.file, 1 << 20))});
        }
        ASSERT_GE(delivered_.size(), 37U);
    }

    const QString folder_ = QStringLiteral(KADRONA_TEMPLATE_FOLDER "/");
    std::vector<Delivered> delivered_;
};

TEST_F(DeliveredTemplates, CatalogueListsTheTableInItsOrder) {
    const auto entries = ParseCatalogue(Content(folder_ + u"MaskList.kdr"_s));
    ASSERT_EQ(entries.size(), delivered_.size());
    for (size_t i = 0; i < entries.size(); ++i) {
        EXPECT_EQ(entries[i].name, delivered_[i].row.name);
        EXPECT_EQ(entries[i].file, delivered_[i].row.file);
    }
    EXPECT_EQ(QDir(folder_).entryList(QDir::Files).size(),
              static_cast<qsizetype>(entries.size()) + 2)
        << "with the catalogue and the figures";
}

TEST_F(DeliveredTemplates, CanvasIsThePhotoInTenthsOfMillimetre) {
    for (const Delivered& made : delivered_) {
        const QSize canvas = TemplateCanvas(made.elements);
        EXPECT_EQ(canvas, QSize(made.row.width.value, made.row.height.value)) << made.Name();
        const QImage image = DrawTemplate(made.elements);
        EXPECT_EQ(qAlpha(image.pixel(0, 0)), 255) << made.Name() << ": frame";
        EXPECT_EQ(qAlpha(image.pixel(canvas.width() - 1, canvas.height() - 1)), 255) << made.Name();
        EXPECT_EQ(qAlpha(image.pixel(canvas.width() / 4, canvas.height() - 8)), 0) << made.Name();
    }
}

TEST_F(DeliveredTemplates, HeadsAreAsHighAsPublishedAndStandOnOneChinLine) {
    int heads = 0;
    for (const Delivered& made : delivered_) {
        SCOPED_TRACE(made.Name());
        const QRect canvas({0, 0}, TemplateCanvas(made.elements));
        for (const auto& [name, published] : {std::pair(u"Kleinster Kopf"_s, made.row.head.from),
                                              {u"Größter Kopf"_s, made.row.head.to}}) {
            const TMask* const head = made.Find(name);
            ASSERT_EQ(head != nullptr, published.has_value()) << name.toStdString();
            if (!head) {
                continue;
            }
            ++heads;
            const QRect drawn = DrawnPart(DrawTemplate({made.elements.front(), *head}));
            EXPECT_EQ(drawn.height(), published->value);
            EXPECT_TRUE(canvas.adjusted(3, 0, -3, 0).contains(drawn)) << name.toStdString();
            EXPECT_LE(std::abs(drawn.left() + drawn.right() + 1 - canvas.width()), 1);
            EXPECT_NEAR(drawn.bottom(), made.Find(u"Kinnmarke"_s)->top, 3) << name.toStdString();
        }
    }
    EXPECT_GE(heads, 60);
}

TEST_F(DeliveredTemplates, MiddleHeadHasItsEyesInTheirBandAndItsCrownInTheUpperQuarter) {
    for (const Delivered& made : delivered_) {
        SCOPED_TRACE(made.Name());
        const TMask* const tick = made.Find(u"Kinnmarke"_s);
        const Band& head = made.row.head;
        ASSERT_EQ(tick != nullptr, head.to.has_value());
        if (!tick) {
            continue;
        }
        const int height = made.row.height.value;
        const int chin = height - tick->top;
        const int middle = (head.from.value_or(*head.to).value + head.to->value) / 2;
        EXPECT_LE(chin + middle, height);
        EXPECT_GE(chin + middle, height * 3 / 4);
        for (const auto& [band, place] : {std::pair(made.row.eyes, chin + middle / 2),
                                          {made.row.chin, chin},
                                          {made.row.top, height - chin - middle}}) {
            if (band.from) {
                EXPECT_GE(place, band.from->value);
                EXPECT_LE(place, band.to->value);
            }
        }
        if (const TMask* const eyes = made.Find(u"Augen oben"_s)) {
            EXPECT_NEAR(eyes->top, height - made.row.eyes.to->value, 3);
            EXPECT_NEAR(made.Find(u"Augen unten"_s)->top, height - made.row.eyes.from->value, 3);
        }
    }
}

TEST_F(DeliveredTemplates, NothingIsDrawnThatIsNotPublished) {
    for (const Delivered& made : delivered_) {
        const TemplateRow& row = made.row;
        for (const auto& [element, published] : {std::pair(u"Augen oben"_s, row.eyes.to),
                                                 {u"Augen unten"_s, row.eyes.from},
                                                 {u"Augen links"_s, row.eyes.from},
                                                 {u"Augen rechts"_s, row.eyes.from},
                                                 {u"Scheitel von"_s, row.top.from},
                                                 {u"Scheitel bis"_s, row.top.to},
                                                 {u"Kinn von"_s, row.chin.from},
                                                 {u"Kinn bis"_s, row.chin.to},
                                                 {u"Achse von"_s, row.axis.from},
                                                 {u"Achse bis"_s, row.axis.to}}) {
            EXPECT_EQ(made.Find(element) != nullptr, published.has_value())
                << made.Name() << ": " << element.toStdString();
        }
        EXPECT_TRUE(made.Find(u"Rahmen"_s) && made.Find(u"Mittellinie"_s));
    }
}

}  // namespace
}  // namespace kadrona::core
