// The report of a check: where its texts stand, and what a reader finds in the file.

#include <QProcess>
#include <QTextDocument>

#include "app/face/ReportLayout.h"
#include "core/check/FacePlacement.h"
#include "core/check/PhotoCheck.h"
#include "tests/app/StoryFixture.h"
#include "tests/support/DrawnPortrait.h"

using namespace Qt::StringLiterals;

namespace kadrona::testing {

/// The whole check of the drawn portrait in a template, all edits made.
app::CheckReport ReportOf(const core::TemplateRow& row, bool withFace) {
    static const imaging::Pixels portrait(DrawnPortrait());
    imaging::Face face;
    face.leftEye.position = DrawnLeftEye;
    face.rightEye.position = DrawnRightEye;
    face.chin.position = DrawnChin;
    face.crown.position = DrawnCrown;
    face.skull.position = DrawnCrown + QPointF(0, 30);
    face = imaging::Turned(face, QTransform()
                                     .translate(DrawnChin.x(), DrawnChin.y())
                                     .rotate(7)
                                     .translate(-DrawnChin.x(), -DrawnChin.y()));
    core::CheckedPhoto photo;
    photo.rectangle =
        core::PlaceOnFace(face, row, {row.width.value, row.height.value}, portrait.Size())
            .rectangle;
    photo.figures = row;
    photo.printedWidth = row.width;
    photo.edits = {.tone = true, .colours = true, .retouched = true};
    if (withFace) {
        photo.face = face;
    }
    return {portrait, photo.rectangle, row.name, photo.face, core::CheckPhoto(photo), row.crown};
}

TEST(CheckReport, StandsOnOnePageWithoutTextsOverOthers) {
    QFile table(QStringLiteral(TEMPLATE_TABLE));
    ASSERT_TRUE(table.open(QFile::ReadOnly));
    auto rows = core::ParseTemplateTable(QString::fromUtf8(table.readAll()), table.fileName());
    rows.push_back(rows.front());
    rows.back().editing = core::AllowedEditing::GeometryOnly;
    rows.back().paper = rows.back().paper.repeated(15);
    for (const core::TemplateRow& row : rows) {
        for (const bool withFace : {false, true}) {
            SCOPED_TRACE(row.name.toStdString());
            const app::CheckReport report = ReportOf(row, withFace);
            const app::ReportLayout layout = app::LayOutReport(report);
            std::vector<QRectF> places{layout.picture};
            if (withFace) {
                ASSERT_EQ(layout.marks.size(), 4);
                const app::ReportMark& axis = layout.marks.back();
                places.push_back(axis.place);
                EXPECT_NEAR(
                    (axis.line.x1() - layout.picture.left()) / layout.picture.width(),
                    *report.lines[3].value / (row.IsFileOnly() ? 100 : row.width.value / 10.0),
                    0.001);
            }
            for (const app::ReportText& text : layout.texts) {
                QTextDocument shown(text.text);
                shown.setDocumentMargin(0);
                shown.setDefaultFont(text.font);
                shown.setTextWidth(text.place.width());
                places.emplace_back(text.place.topLeft(), shown.size());
            }
            // A document counts whole dots.
            const QRectF page(0, 0, app::ReportDots(170), app::ReportDots(261) + 1);
            for (auto place = places.begin(); place != places.end(); ++place) {
                EXPECT_TRUE(page.contains(*place)) << place->bottom();
                EXPECT_TRUE(std::none_of(places.begin(), place, [&](const QRectF& other) {
                    return other.intersects(*place);
                })) << place - places.begin();
            }
            EXPECT_GE(layout.picture.height(), app::ReportDots(30));
            if (withFace) {
                const double percent = row.IsFileOnly() ? 100.0 / row.height.value : 0.1;
                EXPECT_EQ(layout.brackets.size(), row.chin.from ? 4 : row.top.from ? 3 : 2);
                const app::ReportBracket& head = layout.brackets.at(0);
                EXPECT_EQ(head.text, u"Kopf\n"_s + core::ValueText(report.lines[1]));
                EXPECT_NEAR(head.line.length() / layout.picture.width() * row.width.value * percent,
                            *report.lines[1].value, 0.01)
                    << "the line is as long as it says";
                EXPECT_TRUE(page.contains(layout.brackets.back().place));
            }
        }
    }
}

/// What `program` says of a file; spaces and breaks of lines count as one space.
QString TextOf(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.start(program, arguments);
    EXPECT_TRUE(process.waitForFinished());
    EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().toStdString();
    return QString::fromUtf8(process.readAllStandardOutput()).simplified();
}

TEST_F(SavingStory, TheSavedReportReadsBackAndTheShownCheckIsRemembered) {
    Trigger(u"acShowCheck"_s);
    Start();
    EXPECT_TRUE(IsChecked(u"acShowCheck"_s));
    EXPECT_TRUE(DrawnPortrait().save(installation.Path("face.png")));
    Open("face.png");
    Trigger(u"acAlignToFace"_s);
    const QString path = installation.Path("saved/bericht.pdf");
    driver.Expect(u"SaveDialog"_s, [&](QWidget& shown) { Type(shown, path); });
    Child<QAction>(*window, "SaveReport").trigger();
    EXPECT_TRUE(TextOf(u"pdfinfo"_s, {path}).contains(u"Pages: 1 "_s));
    const QString text = TextOf(u"pdftotext"_s, {u"-layout"_s, path, u"-"_s});
    for (const auto& expected :
         {u"Prüfung des Passbilds"_s, u"Auflösung im Druck"_s, u"mindestens 300 dpi"_s,
          u"nur Richtwert"_s, u"Quellen:"_s, u"ISO/IEC 19794-5:2011, 7.2.2"_s, u"eigene Zahl"_s,
          u"Keine Zusage"_s}) {
        EXPECT_TRUE(text.contains(expected)) << expected.toStdString() << " in\n"
                                             << text.toStdString();
    }
}

}  // namespace kadrona::testing
