#include <gtest/gtest.h>

#include "app/commandline/PhotoCommand.h"
#include "tests/support/CoreFakes.h"

using namespace Qt::StringLiterals;

namespace kadrona::testing {

TEST(PhotoRequest, ReadsItsOptionsAndRefusesWhatMakesNoSense) {
    const QStringList valid{u"a.jpg"_s, u"--template"_s, u"Pass"_s, u"--out"_s, u"b.jpg"_s};
    const app::PhotoRequest request = app::ParsePhotoRequest(
        valid + QStringList{u"--pixels"_s, u"600x750"_s, u"--kilobytes"_s, u"50-240"_s});
    EXPECT_EQ(request.pixels, QSize(600, 750));
    EXPECT_EQ(request.bytes, (imaging::ByteRange{50'000, 240'000}));
    EXPECT_FALSE(app::ParsePhotoRequest(valid).bytes);
    for (const auto& [option, value] : {std::pair{u"--pixels"_s, u"600"_s},
                                        {u"--pixels"_s, u"0x750"_s},
                                        {u"--pixels"_s, u"600x750x2"_s},
                                        {u"--pixels"_s, u"60000x60000"_s},
                                        {u"--kilobytes"_s, u"240"_s},
                                        {u"--kilobytes"_s, u"240-50"_s},
                                        {u"--kilobytes"_s, u"-5-50"_s},
                                        {u"--kilobytes"_s, u"0-0"_s},
                                        {u"--layout"_s, u"2 x 4"_s}}) {
        EXPECT_THROW(app::ParsePhotoRequest(valid + QStringList{option, value}), app::UsageError)
            << value.toStdString();
    }
}

TEST(PhotoCommand, MakesTheTemplatesFileAndNamesPhotosThatGiveNone) {
    Installation installation;
    QFile::copy(QStringLiteral(TEMPLATE_TABLE),
                installation.Path("program/Schablonen/Vorgaben.tsv"));
    installation.AddTemplate("Finnland", "finnland-reisepass.schablone", 360, 470);
    FakeInterface ui;
    core::TData data(ui, installation.Folders());
    data.InitSystem();
    QImage photo(900, 1200, QImage::Format_RGB32);
    photo.fill(qRgb(120, 130, 140));
    for (const char* name : {"a.png", "b.png"}) {
        ASSERT_TRUE(photo.save(installation.Path(name)));
    }
    installation.Write("b.png", "no photo");
    QString progress;
    QString errors;
    const auto run = [&](const QStringList& options) {
        QTextStream progressStream(&progress);
        QTextStream errorStream(&errors);
        const QStringList common{installation.Path("a.png"), u"--template"_s, u"Finnland"_s,
                                 u"--at"_s, u"20,30,720"_s};
        return app::MakeUploadFiles(app::ParsePhotoRequest(common + options), data, progressStream,
                                    errorStream);
    };
    const QString folder = installation.Path("out");
    EXPECT_EQ(run({installation.Path("b.png"), u"--out"_s, folder}), app::SomePhotoFailed);
    EXPECT_EQ(QDir(folder).entryList(QDir::Files), QStringList(u"a_kdr.jpg"_s));
    const QImage made(folder + u"/a_kdr.jpg"_s);
    EXPECT_EQ(made.size(), QSize(500, 653)) << progress.toStdString();
    EXPECT_EQ(qRound(made.dotsPerMeterX() * 0.0254), 353) << "500 pixels on 36 mm";
    EXPECT_TRUE(errors.contains(u"b.png"_s)) << errors.toStdString();

    const QString file = installation.Path("c.jpg");
    EXPECT_EQ(run({u"--out"_s, file, u"--pixels"_s, u"600x600"_s}), app::SomePhotoFailed);
    EXPECT_TRUE(errors.contains(u"Am nächsten"_s)) << errors.toStdString();
    EXPECT_FALSE(QFileInfo::exists(file));
    EXPECT_EQ(run({u"--out"_s, file, u"--pixels"_s, u"720x940"_s, u"--kilobytes"_s, u"5-60"_s}),
              app::Done);
    EXPECT_EQ(QImage(file).size(), QSize(720, 940));
    EXPECT_THROW(run({u"--out"_s, installation.Path("c.png")}), app::UsageError);
}

}  // namespace kadrona::testing
