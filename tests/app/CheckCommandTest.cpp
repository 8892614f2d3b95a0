#include <gtest/gtest.h>

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "app/commandline/CheckCommand.h"
#include "app/commandline/SheetCommand.h"
#include "tests/support/CoreFakes.h"
#include "tests/support/DrawnPortrait.h"

using namespace Qt::StringLiterals;

namespace kadrona::testing {

using app::ParseCheckRequest;

TEST(CheckRequest, TakesOnePlaceAlone) {
    const QStringList valid{u"a.jpg"_s, u"--template"_s, u"Pass"_s, u"--auto"_s, u"--json"_s};
    EXPECT_TRUE(ParseCheckRequest(valid).automatic);
    EXPECT_TRUE(ParseCheckRequest(valid).json);
    EXPECT_FALSE(ParseCheckRequest(valid).strict);
    EXPECT_THROW(ParseCheckRequest(valid + QStringList{u"--at"_s, u"1,2,3"_s}), app::UsageError);
    EXPECT_THROW(ParseCheckRequest(valid + QStringList{u"--out"_s, u"b.jpg"_s}), app::UsageError);
}

class CheckCommand : public ::testing::Test {
 protected:
    CheckCommand() {
        data.InitSystem();
        installation.Write("in/face.png", {});
        DrawnPortrait().save(installation.Path("in/face.png"));
        QImage wall(600, 800, QImage::Format_RGB32);
        wall.fill(Qt::gray);
        wall.save(installation.Path("in/wall.png"));
        request.templateName = u"Pass"_s;
        request.photos = {installation.Path("in/face.png")};
        request.automatic = true;
        request.json = true;
    }

    int Run() {
        QTextStream outputStream(&output);
        QTextStream errorStream(&errors);
        return app::CheckPhotos(request, data, outputStream, errorStream);
    }
    QJsonDocument Json() const { return QJsonDocument::fromJson(output.toUtf8()); }

    Installation installation;
    FakeInterface ui;
    core::TData data{ui, installation.Folders()};
    app::CheckRequest request;
    QString output;
    QString errors;
};

TEST_F(CheckCommand, ReportsTheFaceItsPlaceAndEachCheck) {
    EXPECT_EQ(Run(), app::Done) << errors.toStdString();
    const QJsonObject report = Json().object();
    EXPECT_EQ(report.keys(), (QStringList{u"checks"_s, u"face"_s, u"file"_s, u"placement"_s}));
    const QJsonObject face = report[u"face"_s].toObject();
    EXPECT_EQ(face.keys(), (QStringList{u"chin"_s, u"confidence"_s, u"crown"_s, u"leftEye"_s,
                                        u"rightEye"_s, u"tiltDegrees"_s}));
    EXPECT_NEAR(face[u"leftEye"_s][0].toDouble(), DrawnLeftEye.x(), 7);
    const QJsonObject placement = report[u"placement"_s].toObject();
    EXPECT_NEAR(placement[u"left"_s].toDouble() + placement[u"width"_s].toDouble() / 2, 300, 5);
    for (const auto& check : report[u"checks"_s].toArray()) {
        EXPECT_EQ(check.toObject().keys(), (QStringList{u"max"_s, u"min"_s, u"name"_s, u"source"_s,
                                                        u"state"_s, u"unit"_s, u"value"_s}));
    }
}

TEST_F(CheckCommand, NamesThePhotosWithoutAFaceAndChecksTheOthers) {
    request.photos = {installation.Path("in")};
    EXPECT_EQ(Run(), app::SomePhotoFailed);
    EXPECT_TRUE(errors.contains(u"wall.png: Kein Gesicht"_s)) << errors.toStdString();
    ASSERT_EQ(Json().array().size(), 2);
    EXPECT_TRUE(Json().array()[1][u"face"_s].isNull());
}

TEST_F(CheckCommand, StrictlyCountsWhatIsMissed) {
    request.photos = {installation.Path("in/wall.png")};
    request.automatic = false;
    request.place = app::TemplatePlace{0, 0, 350};
    EXPECT_EQ(Run(), app::Done);
    request.strict = true;
    EXPECT_EQ(Run(), app::SomethingMissed) << "no face";
}

TEST_F(CheckCommand, PlacesTheSheetsOfAFolderByTheFace) {
    app::SheetRequest sheets;
    sheets.templateName = u"Pass"_s;
    sheets.automatic = true;
    sheets.photos = {installation.Path("in")};
    sheets.output = installation.Path("out");
    QTextStream progress(&output);
    QTextStream errorStream(&errors);
    EXPECT_EQ(app::MakeSheets(sheets, data, progress, errorStream), app::SomePhotoFailed);
    EXPECT_EQ(QDir(sheets.output).entryList(QDir::Files), QStringList{u"face_kdr.jpg"_s});
    EXPECT_TRUE(errors.contains(u"wall.png: Kein Gesicht"_s)) << errors.toStdString();
}

}  // namespace kadrona::testing
