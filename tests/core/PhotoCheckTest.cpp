#include <gtest/gtest.h>

#include <QFile>
#include <QImage>
#include <QPainter>
#include <QTemporaryDir>

#include "core/check/FacePlacement.h"
#include "core/check/PhotoCheck.h"
#include "core/check/WhiteCorners.h"
#include "tests/support/PixelMatchers.h"

namespace kadrona::core {
namespace {

using namespace Qt::StringLiterals;

/// A level face, 100 pixels between the pupils, hair 30 pixels above the skull.
imaging::Face FaceAt(QPointF eyes) {
    imaging::Face face;
    face.leftEye.position = eyes - QPointF(50, 0);
    face.rightEye.position = eyes + QPointF(50, 0);
    face.chin.position = eyes + QPointF(0, 190);
    face.skull.position = eyes - QPointF(0, 180);
    face.crown.position = eyes - QPointF(0, 210);
    return face;
}

std::vector<TemplateRow> Delivered() {
    QFile table(QStringLiteral(KADRONA_TEMPLATE_TABLE));
    EXPECT_TRUE(table.open(QFile::ReadOnly));
    return ParseTemplateTable(QString::fromUtf8(table.readAll()), table.fileName());
}

TemplateRow DeliveredRow(const QString& file) {
    return TemplateFigures(QStringLiteral(KADRONA_TEMPLATE_FOLDER), file).value();
}

CheckedPhoto PlacedPhoto(const TemplateRow& row, double tilt = 0) {
    const QSize photo(2000, 2600);
    CheckedPhoto checked;
    checked.face = Turned(FaceAt({0, 0}), QTransform().translate(1000, 1100).rotate(tilt));
    checked.figures = row;
    checked.printedWidth = row.width;
    const FacePlacement placement =
        PlaceOnFace(*checked.face, row, QSize(row.width.value, row.height.value), photo);
    EXPECT_FALSE(placement.photoTooTight || placement.offMiddle);
    checked.rectangle = placement.rectangle;
    return checked;
}

CheckLine LineOf(const CheckedPhoto& photo, const QString& name) {
    for (const CheckLine& line : CheckPhoto(photo)) {
        if (line.name == name) {
            return line;
        }
    }
    ADD_FAILURE() << "no line " << name.toStdString();
    return {};
}

TEST(FacePlacement, MeetsEveryFigureOfEveryTemplate) {
    for (const double tilt : {0.0, 15.0}) {
        for (const TemplateRow& row : Delivered()) {
            SCOPED_TRACE(row.name.toStdString());
            const CheckedPhoto photo = PlacedPhoto(row, tilt);
            for (const CheckLine& line : CheckPhoto(photo)) {
                EXPECT_NE(line.state, CheckState::Missed)
                    << line.label.toStdString() << ": " << FigureText(line).toStdString();
            }
            if (row.head.IsComplete()) {
                const double percent = row.IsFileOnly() ? 100.0 / row.height.value : 0.1;
                EXPECT_NEAR(*LineOf(photo, u"headHeight"_s).value, row.head.Middle() * percent,
                            0.2);
            }
        }
    }
}

TEST(FacePlacement, StaysInsideAPhotoThatIsTooTight) {
    const TemplateRow row = DeliveredRow(u"deutschland-reisepass.schablone"_s);
    const QSize canvas(row.width.value, row.height.value);
    struct Case {
        QSize photo;
        QPointF eyes;
    };
    for (const auto& [photo, eyes] : {Case{{1000, 1000}, {60, 300}}, Case{{300, 700}, {150, 300}},
                                      Case{{500, 360}, {250, 200}}, Case{{3, 2000}, {1, 900}}}) {
        const FacePlacement placement = PlaceOnFace(FaceAt(eyes), row, canvas, photo);
        EXPECT_TRUE(placement.photoTooTight);
        EXPECT_TRUE(PlacementRemark({{}, 2}, placement).contains(u"Foto endet"_s));
        EXPECT_TRUE(QRect({0, 0}, photo).contains(placement.rectangle))
            << ::testing::PrintToString(placement.rectangle);
        EXPECT_NEAR(placement.rectangle.height(), placement.rectangle.width() * 45 / 35.0, 1);
    }
}

TEST(FacePlacement, KeepsEveryBandOfATightPhotoWhileOneCan) {
    struct Case {
        QString file;
        QPointF eyes;
        QSize photo;
        double head;  ///< millimetres; 0 where the photo is too tight
    };
    const QString germany = u"deutschland-reisepass.schablone"_s;
    const QString ireland = u"irland-reisepass.schablone"_s;
    const QString finland = u"finnland-reisepass.schablone"_s;
    for (const auto& [file, eyes, photo, head] :
         {Case{finland, {1000, 260}, {2000, 2600}, 34},
          Case{finland, {1000, 1100}, {2000, 1376}, 34},
          Case{finland, {195, 800}, {1000, 2000}, 34.1},
          Case{finland, {1000, 267}, {2000, 540}, 34.85},
          Case{finland, {1000, 265}, {2000, 458}, 0}, Case{germany, {1000, 216}, {2000, 2600}, 34},
          Case{ireland, {1000, 230}, {2000, 2600}, 31.5},
          Case{ireland, {1000, 1100}, {2000, 1310}, 31.5}}) {
        SCOPED_TRACE(::testing::PrintToString(photo) + ::testing::PrintToString(eyes));
        const TemplateRow row = DeliveredRow(file);
        CheckedPhoto checked;
        checked.face = FaceAt(eyes);
        checked.figures = row;
        checked.printedWidth = row.width;
        const FacePlacement placement =
            PlaceOnFace(*checked.face, row, QSize(row.width.value, row.height.value), photo);
        checked.rectangle = placement.rectangle;
        EXPECT_EQ(placement.photoTooTight, head == 0);
        EXPECT_EQ(placement.offMiddle, head > 0);
        EXPECT_TRUE(PlacementRemark({}, placement).contains(head > 0 ? u"Mitte"_s : u"zu nah"_s));
        const std::vector<CheckLine> lines = CheckPhoto(checked);
        const auto isMissed = [](const CheckLine& line) {
            return line.state == CheckState::Missed;
        };
        EXPECT_EQ(std::ranges::any_of(lines, isMissed), head == 0);
        if (head > 0) {
            EXPECT_NEAR(*LineOf(checked, u"headHeight"_s).value, head, 0.1);
        }
    }
}

TEST(FacePlacement, AimsAtWhatIsPublishedBesideTheUsualPlace) {
    TemplateRow row = DeliveredRow(u"oesterreich-reisepass.schablone"_s);
    row.axis = {{{120}}, {{140}}};
    row.chin = {{{80}}, {{130}}};
    row.eyes = {{{220}}, {{238}}};
    const CheckedPhoto photo = PlacedPhoto(row);
    EXPECT_NEAR(*LineOf(photo, u"faceAxis"_s).value, 13, 0.1);
    EXPECT_EQ(LineOf(photo, u"eyeLine"_s).state, CheckState::Met);
    row = DeliveredRow(u"oesterreich-reisepass.schablone"_s);
    EXPECT_GE(*LineOf(PlacedPhoto(row), u"eyeLine"_s).value, 22.5) << "advised for all portraits";
    row.eyeDistance = TenthsOfMillimetre{85};
    EXPECT_EQ(LineOf(PlacedPhoto(row), u"eyeDistance"_s).state, CheckState::Met);
}

TEST(PhotoCheck, KeepsAndShowsABandOfOneEnd) {
    struct Case {
        QString name;
        Band TemplateRow::*band;
        Band published;
    };
    for (const auto& [name, band, published] :
         {Case{u"chin"_s, &TemplateRow::chin, {{{180}}, {}}},
          Case{u"chin"_s, &TemplateRow::chin, {{}, {{20}}}},
          Case{u"topGap"_s, &TemplateRow::top, {{{90}}, {}}},
          Case{u"topGap"_s, &TemplateRow::top, {{}, {{10}}}}}) {
        TemplateRow row = DeliveredRow(u"irland-reisepass.schablone"_s);
        row.*band = published;
        const CheckLine line = LineOf(PlacedPhoto(row), name);
        EXPECT_EQ(line.state, CheckState::Met) << FigureText(line).toStdString();
        EXPECT_EQ(line.minimum.has_value(), published.from.has_value());
        EXPECT_EQ(line.maximum.has_value(), published.to.has_value());
    }
}

TEST(PhotoCheck, MeasuresTheHeadByHairOrSkullAsTheDocumentDoes) {
    TemplateRow row = DeliveredRow(u"oesterreich-reisepass.schablone"_s);
    EXPECT_EQ(row.crown, Crown::Hair);
    CheckedPhoto photo = PlacedPhoto(row);
    photo.rectangle = {650, 700, 700, 900};  // 20 pixels a millimetre
    EXPECT_DOUBLE_EQ(*LineOf(photo, u"headHeight"_s).value, 20.0);
    EXPECT_TRUE(LineOf(photo, u"headHeight"_s).note.contains(u"ohne Frisur 18,5 mm"));
    CheckedPhoto tilted = photo;
    tilted.face = Turned(*photo.face, QTransform().rotate(15));
    EXPECT_NEAR(*LineOf(tilted, u"headHeight"_s).value, 20, 1e-9) << "along the face's axis";
    photo.figures->head.to = {200};
    photo.face->chin.position.ry() += 0.8;
    EXPECT_EQ(LineOf(photo, u"headHeight"_s).state, CheckState::Met) << "20,04 is shown as 20,0";
    EXPECT_EQ(ShownValue(LineOf(photo, u"headHeight"_s)), 20.0);
    EXPECT_FALSE(IsOutside(LineOf(photo, u"headHeight"_s)));
    photo.face->chin.position.ry() -= 0.8;
    photo.figures->crown = Crown::Skull;
    for (const auto& [name, value] :
         {std::pair(u"headHeight"_s, 18.5), std::pair(u"eyeLine"_s, 25.0),
          std::pair(u"faceAxis"_s, 17.5), std::pair(u"resolution"_s, 508.0)}) {
        EXPECT_DOUBLE_EQ(*LineOf(photo, name).value, value) << name.toStdString();
    }
    EXPECT_EQ(*LineOf(photo, u"resolution"_s).minimum, 300);
    for (const auto& [file, dots] : {std::pair(u"niederlande-reisepass.schablone"_s, 400),
                                     std::pair(u"deutschland-fuehrerschein.schablone"_s, 600)}) {
        photo.figures->resolution = DeliveredRow(file).resolution;
        EXPECT_EQ(*LineOf(photo, u"resolution"_s).minimum, dots);
        EXPECT_EQ(LineOf(photo, u"resolution"_s).state, CheckState::Guidance) << "advised only";
        const auto lines = CheckPhoto(PlacedPhoto(DeliveredRow(file)));
        EXPECT_EQ(std::ranges::count(lines, u"eyeDistance"_s, &CheckLine::name), dots / 600)
            << "too small heads";
    }
    const CheckLine distance = LineOf(photo, u"eyeDistance"_s);
    EXPECT_EQ(distance.state, CheckState::Missed);
    EXPECT_EQ(FigureText(distance), u"5,0 mm statt mindestens 8 mm"_s);
    CheckLine nothing;
    nothing.value = -0.04;
    EXPECT_EQ(ValueText(nothing), u"0,0"_s) << "without a sign";
}

TEST(PhotoCheck, JudgesOnlyWhatIsPublished) {
    CheckedPhoto photo = PlacedPhoto(DeliveredRow(u"frankreich-reisepass.schablone"_s));
    const QRect place = photo.rectangle;
    for (const auto& [move, fault] : {std::pair(QPoint(0, 0), u""_s),
                                      std::pair(QPoint(place.width(), 0), u"nicht im Ausschnitt"_s),
                                      std::pair(QPoint(0, 100), u"angeschnitten"_s),
                                      std::pair(QPoint(0, -100), u"angeschnitten"_s)}) {
        photo.rectangle = place.translated(move);
        const CheckLine head = LineOf(photo, u"headHeight"_s);
        EXPECT_EQ(head.state == CheckState::Missed, !fault.isEmpty());
        EXPECT_EQ(head.fault, fault);
    }
    photo.rectangle = place.adjusted(-300, -300, 300, 300);
    photo.measures.skinLightness = 2;
    photo.background.lightness = 99;
    EXPECT_EQ(LineOf(photo, u"headHeight"_s).state, CheckState::Missed);
    EXPECT_EQ(LineOf(photo, u"eyeLine"_s).state, CheckState::Guidance);
    EXPECT_EQ(LineOf(photo, u"exposure"_s).state, CheckState::Guidance);
    EXPECT_EQ(LineOf(photo, u"backgroundNotWhite"_s).state, CheckState::Missed);
    photo.background.chroma = 10;
    EXPECT_EQ(LineOf(photo, u"backgroundNotWhite"_s).state, CheckState::Met);
    photo.background.lightness = 80;
    EXPECT_EQ(BandText(LineOf(photo, u"backgroundNotWhite"_s)), u"höchstens 95 L*"_s);
    for (const CheckLine& line : CheckPhoto(photo)) {
        EXPECT_FALSE(line.source.isEmpty()) << line.name.toStdString();
        EXPECT_EQ(line.source.contains(u"Vorgaben „Frankreich"_s),
                  line.state != CheckState::Guidance)
            << line.name.toStdString();
    }
    EXPECT_TRUE(LineOf(photo, u"backgroundNotWhite"_s).source.contains(u"eigene"_s));
    photo.face.reset();
    for (const auto& [name, published] :
         {std::pair(u"headHeight"_s, true), std::pair(u"eyeLine"_s, false)}) {
        EXPECT_EQ(LineOf(photo, name).state,
                  published ? CheckState::Unmeasured : CheckState::Guidance);
    }
    TemplateRow own;
    own.width = own.height = {450};
    for (const auto& [figures, state] :
         {std::pair(own, CheckState::Guidance),
          std::pair(DeliveredRow(u"bewerbungsfoto.schablone"_s), CheckState::Guidance),
          std::pair(DeliveredRow(u"irland-reisepass.schablone"_s), CheckState::Missed),
          std::pair(DeliveredRow(u"frankreich-reisepass.schablone"_s), CheckState::Missed)}) {
        photo.figures = figures;
        EXPECT_EQ(LineOf(photo, u"face"_s).state, state);
        EXPECT_TRUE(IsOutside(LineOf(photo, u"face"_s)));
    }
    photo.wasFaceLookedFor = false;
    EXPECT_FALSE(IsOutside(LineOf(photo, u"face"_s)));
    EXPECT_FALSE(LineOf(photo, u"headHeight"_s).value);
}

TEST(PhotoCheck, RefusesEditsWhereGeometryAloneIsAllowed) {
    struct Case {
        QString file;
        imaging::PhotoEdits edits;
        CheckState state;
    };
    const QString usa = u"usa-reisepass.schablone"_s;
    const QString korea = u"suedkorea-reisepass.schablone"_s;
    for (const auto& [file, edits, state] :
         {Case{usa, {}, CheckState::Met}, Case{usa, {.tone = true}, CheckState::Missed},
          Case{korea, {}, CheckState::Met}, Case{korea, {.colours = true}, CheckState::Guidance},
          Case{u"schengen-visum.schablone"_s, {.colours = true}, CheckState::Missed},
          Case{u"oesterreich-reisepass.schablone"_s, {.tone = true}, CheckState::Met},
          Case{korea, {.retouched = true}, CheckState::Missed},
          Case{u"irland-reisepass.schablone"_s, {.colours = true}, CheckState::Guidance}}) {
        CheckedPhoto photo = PlacedPhoto(DeliveredRow(file));
        photo.edits = edits;
        EXPECT_EQ(LineOf(photo, u"editing"_s).state, state) << file.toStdString();
    }
    for (const auto& [file, line, source] :
         {std::tuple(u"deutschland-kind-6-bis-9.schablone"_s, u"paper"_s, u", Beleg O,"_s),
          std::tuple(u"indien-reisepass-datei.schablone"_s, u"cutWidth"_s, u", Beleg T,"_s),
          std::tuple(usa, u"editing"_s, u", Beleg S,"_s),
          std::tuple(usa, u"headHeight"_s, u", Beleg T, S,"_s),
          std::tuple(u"niederlande-reisepass.schablone"_s, u"faceWidth"_s, u", Beleg T, S,"_s)}) {
        const QString told = LineOf(PlacedPhoto(DeliveredRow(file)), line).source;
        EXPECT_TRUE(told.contains(source)) << told.toStdString();
        const std::vector<CheckLine> lines = CheckPhoto(PlacedPhoto(DeliveredRow(file)));
        const auto has = [&](const QString& unit) {
            return std::ranges::any_of(lines, [&](auto& one) { return one.unit == unit; });
        };
        EXPECT_NE(line == u"cutWidth"_s, has(u"mm"_s) || has(u"dpi"_s)) << "nobody prints files";
    }
    const CheckedPhoto german = PlacedPhoto(DeliveredRow(u"deutschland-reisepass.schablone"_s));
    EXPECT_TRUE(LineOf(german, u"paper"_s).note.contains(u"digital"));
}

TEST(PhotoCheck, SeesTheCornersThatARotationLeaves) {
    QImage photo(300, 400, QImage::Format_RGB32);
    photo.fill(QColor(200, 200, 200));
    const QRect whole(0, 0, 300, 400);
    const auto corner = [&](QPoint at) {
        QPainter(&photo).fillRect(QRect(at, QSize(20, 20)), Qt::white);
    };
    const auto found = [&](const QRect& cut, bool turned) {
        return HasWhiteCorners(imaging::Pixels(photo), cut, turned);
    };
    EXPECT_FALSE(found(whole, true));
    corner({280, 0});
    EXPECT_TRUE(found(whole, true));
    EXPECT_FALSE(found(whole, false)) << "no triangle";
    EXPECT_FALSE(found(whole.adjusted(30, 30, -30, -30), true));
    corner({0, 0});  // a white wall above a dark coat
    EXPECT_FALSE(found(whole, true));
    corner({0, 380});
    EXPECT_TRUE(found(whole, true));
    photo.fill(Qt::white);  // an unturned photo before a white wall
    QPainter(&photo).fillRect(100, 100, 100, 300, Qt::gray);
    EXPECT_FALSE(found(whole, false));
    for (const double degrees : {3.0, -8.0}) {  // by another program
        photo.fill(QColor(200, 200, 200));
        photo = photo.transformed(QTransform().rotate(degrees), Qt::SmoothTransformation)
                    .convertToFormat(QImage::Format_ARGB32_Premultiplied);
        QPainter painter(&photo);
        painter.setCompositionMode(QPainter::CompositionMode_DestinationOver);
        painter.fillRect(photo.rect(), Qt::white);
        painter.end();
        EXPECT_TRUE(found(photo.rect(), false)) << degrees;
        EXPECT_FALSE(found(photo.rect().adjusted(70, 70, -70, -70), false)) << degrees;
        const int left = photo.width() / 2 - (degrees > 0 ? 0 : 150);
        EXPECT_TRUE(found(QRect(left, 0, 150, 200), true)) << "a wedge";
        EXPECT_TRUE(found(QRect(left, 0, 150, 200), false)) << degrees;
        photo = QImage(whole.size(), QImage::Format_RGB32);
    }
}

TEST(TemplateFigures, ReadsTheFolderOfTheProgramSafely) {
    const QTemporaryDir folder;
    EXPECT_FALSE(TemplateFigures(folder.path(), u"a.schablone"_s));
    QFile table(folder.filePath(TemplateTableFile));
    ASSERT_TRUE(table.open(QFile::WriteOnly));
    table.write("Name\tDatei\nA\ta.schablone\n");
    table.close();
    EXPECT_THROW(TemplateFigures(folder.path(), u"a.schablone"_s), TemplateTableError);
    EXPECT_FALSE(TemplateFigures(QStringLiteral(KADRONA_TEMPLATE_FOLDER), u"own.schablone"_s));
}

}  // namespace
}  // namespace kadrona::core
