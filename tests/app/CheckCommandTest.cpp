#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPainter>

#include "app/commandline/CheckCommand.h"
#include "app/commandline/CommandSetup.h"
#include "app/commandline/SheetCommand.h"
#include "imaging/face/Cascades.h"
#include "imaging/face/FaceFinder.h"
#include "tests/app/CommandFixture.h"
#include "tests/support/DrawnPortrait.h"

using namespace Qt::StringLiterals;

namespace kadrona::testing {

using app::ParseCheckRequest;

TEST(CheckRequest, TakesOnePlaceAlone) {
    const QStringList valid = Arguments("a.jpg --template Pass --auto --json");
    const app::CheckRequest request = ParseCheckRequest(valid);
    EXPECT_TRUE(request.automatic && request.json && !request.strict);
    EXPECT_THROW(ParseCheckRequest(valid + Arguments("--at 1,2,3")), app::UsageError);
    EXPECT_THROW(ParseCheckRequest(valid + Arguments("--out b.jpg")), app::UsageError);
}

class CheckCommand : public Command {
 protected:
    CheckCommand() {
        SavePhoto("in/wall.png", 600, 800);
        DrawnPortrait().save(installation.Path("in/face.png"));
        request.templateName = u"Pass"_s;
        request.photos = {installation.Path("in/face.png")};
        request.automatic = true;
        request.json = true;
    }

    int Run(const app::FaceFinder& find = InstalledFinder) {
        const auto check = [&find](auto&&... given) { return app::CheckPhotos(given..., find); };
        return RunCommand(check, request);
    }
    static imaging::FaceSearch InstalledFinder(const imaging::Pixels& photo) {
        return imaging::FindFace(photo);
    }
    QJsonDocument Json() const { return QJsonDocument::fromJson(output.toUtf8()); }

    app::CheckRequest request;
};

TEST_F(CheckCommand, ReportsTheFaceItsPlaceAndEachCheck) {
    EXPECT_EQ(Run(), app::Done) << errors.toStdString();
    const QJsonObject report = Json().object();
    EXPECT_EQ(report.keys(), Arguments("checks face file placement"));
    const QJsonObject face = report[u"face"_s].toObject();
    EXPECT_EQ(face.keys(), Arguments("chin confidence crown leftEye rightEye tiltDegrees"));
    EXPECT_NEAR(face[u"leftEye"_s][0].toDouble(), DrawnLeftEye.x(), 7);
    const QJsonObject placement = report[u"placement"_s].toObject();
    EXPECT_NEAR(placement[u"left"_s].toDouble() + placement[u"width"_s].toDouble() / 2, 300, 5);
    for (const auto& check : report[u"checks"_s].toArray()) {
        QStringList keys = check.toObject().keys();
        keys.removeOne(u"note"_s);  // only where there is one
        EXPECT_EQ(keys, Arguments("max min name source state unit value"));
    }
}

TEST_F(CheckCommand, NamesThePhotosWithoutAFaceAndChecksTheOthers) {
    installation.Write("in/broken\x9b\x7f.png", "no picture");
    request.photos = {installation.Path("in")};
    EXPECT_EQ(Run(), app::SomePhotoFailed);
    EXPECT_TRUE(errors.contains(u"wall.png: Kein Gesicht"_s)) << errors.toStdString();
    ASSERT_EQ(Json().array().size(), 3);
    EXPECT_EQ(Json().array()[0].toObject().keys(), Arguments("checks error face file placement"));
    EXPECT_EQ(Json().array()[0][u"file"_s].toString(), installation.Path("in/broken\x9b\x7f.png"));
    EXPECT_TRUE(output.contains(u"broken\\u009b\\u007f.png"_s)) << output.toStdString();
    EXPECT_TRUE(Json().array()[2][u"face"_s].isNull());
    request.strict = true;
    EXPECT_EQ(Run(), app::SomePhotoFailed) << "before what is missed";
}

TEST_F(CheckCommand, StrictlyCountsWhatIsMissed) {
    request.photos = {installation.Path("in/wall.png")};
    request.automatic = false;
    request.place = core::TemplatePlace{0, 0, 350};
    EXPECT_EQ(Run(), app::Done);
    request.strict = true;
    EXPECT_EQ(Run(), app::Done) << "nobody wants a face";
    installation.WriteFigures();
    output.clear();
    EXPECT_EQ(Run(), app::SomethingFound) << "no face";
    EXPECT_TRUE(output.contains(u"\"missed\""_s));
    EXPECT_TRUE(output.contains(u"mit Haar; nicht gemessen"_s));
}

TEST_F(CheckCommand, ChecksTheRestWhereTheFindersDataIsMissing) {
    request.automatic = false;
    request.place = core::TemplatePlace{0, 0, 350};
    const auto missing = [](const imaging::Pixels&) -> imaging::FaceSearch {
        throw imaging::CascadesMissing(u"Installieren Sie das Paket."_s);
    };
    EXPECT_EQ(Run(missing), app::Done);
    EXPECT_TRUE(errors.contains(u"Installieren Sie das Paket."_s)) << errors.toStdString();
    EXPECT_TRUE(Json().object()[u"face"_s].isNull());
    EXPECT_TRUE(output.contains(u"\"resolution\""_s));
    request.strict = true;
    EXPECT_EQ(Run(missing), app::SomePhotoFailed) << "no check that could be strict";
}

TEST_F(CheckCommand, TellsProgramsWhetherCornersAreWhite) {
    request.automatic = false;
    request.place = core::TemplatePlace{0, 0, 350};
    for (const bool turned : {false, true}) {
        QImage photo(600, 800, QImage::Format_RGB32);
        photo.fill(QColor(120, 120, 120));
        if (turned) {
            QPainter painter(&photo);
            painter.setPen(Qt::NoPen);
            painter.setBrush(Qt::white);
            painter.drawPolygon(QPolygon({{0, 0}, {120, 0}, {0, 60}}));
        }
        photo.save(installation.Path("in/wall.png"));
        request.photos = {installation.Path("in/wall.png")};
        output.clear();
        Run();
        for (const QJsonValue check : Json().object()[u"checks"_s].toArray()) {
            if (check[u"name"_s] == u"whiteCorners"_s) {
                EXPECT_EQ(check[u"value"_s].toInt(-1), int{turned});
            }
        }
    }
}

TEST_F(CheckCommand, PlacesTheSheetsOfAFolderByTheFace) {
    const QImage portrait = DrawnPortrait();
    portrait.copy(80, 110, 440, 450).save(installation.Path("in/tight.png"));
    QImage pair(1200, 800, QImage::Format_RGB32);
    QPainter painter(&pair);
    painter.drawImage(0, 0, portrait);
    painter.drawImage(600, 0, portrait);
    painter.end();
    pair.save(installation.Path("in/pair.png"));
    app::SheetRequest sheets;
    sheets.templateName = u"Pass"_s;
    sheets.automatic = true;
    sheets.photos = {installation.Path("in")};
    sheets.output = installation.Path("out");
    EXPECT_EQ(RunCommand(app::MakeSheets, sheets), app::SomePhotoFailed);
    EXPECT_EQ(QDir(sheets.output).entryList(QDir::Files),
              (QStringList{u"face_kdr.jpg"_s, u"pair_kdr.jpg"_s, u"tight_kdr.jpg"_s}));
    EXPECT_EQ(errors.count(u"zu nah am Kopf"_s), 1);
    EXPECT_TRUE(errors.contains(u"pair.png: 2 Gesichter"_s)) << errors.toStdString();
    EXPECT_TRUE(errors.contains(u"tight.png: Das Foto endet zu nah am Kopf"_s));
    EXPECT_TRUE(errors.contains(u"wall.png: Kein Gesicht"_s)) << errors.toStdString();
    request.photos = {installation.Path("in/pair.png")};
    for (const bool json : {false, true}) {
        request.json = json;
        output.clear();
        errors.clear();
        EXPECT_EQ(Run(), app::Done);
        EXPECT_EQ((output + errors).count(u"2 Gesichter"_s), 1) << "json: " << json;
        EXPECT_EQ(output.contains(u"Quellen: "_s), !json);
        EXPECT_EQ(output.contains(u"\n· Kopf "_s) && output.contains(u"\n    Kinn bis"_s), !json);
    }
}

}  // namespace kadrona::testing
