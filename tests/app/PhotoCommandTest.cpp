#include "app/commandline/PhotoCommand.h"
#include "tests/app/CommandFixture.h"

using namespace Qt::StringLiterals;

namespace kadrona::testing {

TEST(PhotoRequest, ReadsItsOptionsAndRefusesWhatMakesNoSense) {
    const QStringList valid = Arguments("a.jpg --template Pass --out b.jpg");
    const app::PhotoRequest request =
        app::ParsePhotoRequest(valid + Arguments("--pixels 600x750 --kilobytes 50-240"));
    EXPECT_EQ(request.pixels, QSize(600, 750));
    EXPECT_EQ(request.bytes, (imaging::ByteRange{50'000, 240'000}));
    EXPECT_FALSE(app::ParsePhotoRequest(valid).bytes);
    EXPECT_NO_THROW(app::ParsePhotoRequest(valid + Arguments("--kilobytes 50-50")));
    for (const char* wrong : {"--pixels 600", "--pixels 0x750", "--pixels 600x750x2",
                              "--pixels 60000x60000", "--kilobytes 240", "--kilobytes 240-50",
                              "--kilobytes -5-50", "--kilobytes 0-0", "--layout 2x4"}) {
        EXPECT_THROW(app::ParsePhotoRequest(valid + Arguments(wrong)), app::UsageError) << wrong;
    }
}

TEST_F(Command, MakesTheTemplatesFileAndNamesPhotosThatGiveNone) {
    QFile::copy(QStringLiteral(TEMPLATE_TABLE),
                installation.Path("program/Schablonen/Vorgaben.tsv"));
    installation.AddTemplate("Finnland", "finnland-reisepass.schablone", 360, 470);
    data.InitSystem();
    SavePhoto("a.png", 900, 1200);
    installation.Write("b.png", "no photo");
    const auto run = [&](const QStringList& options) {
        const QStringList common = Arguments("--template Finnland --at 20,30,720");
        return RunCommand(
            app::MakeUploadFiles,
            app::ParsePhotoRequest(common + QStringList(installation.Path("a.png")) + options));
    };
    const QString folder = installation.Path("out");
    EXPECT_EQ(run({installation.Path("b.png"), u"--out"_s, folder}), app::SomePhotoFailed);
    EXPECT_EQ(QDir(folder).entryList(QDir::Files), QStringList(u"a_kdr.jpg"_s));
    EXPECT_FALSE(QFile::permissions(folder) & (QFile::ReadGroup | QFile::ReadOther));
    const QImage made(folder + u"/a_kdr.jpg"_s);
    EXPECT_EQ(made.size(), QSize(500, 653)) << output.toStdString();
    EXPECT_EQ(qRound(made.dotsPerMeterX() * 0.0254), 353) << "500 pixels on 36 mm";
    EXPECT_EQ(data.ReadLayerPosFromIni(u"finnland-reisepass.schablone 900x1200"_s),
              QRect(20, 30, 720, 940));
    EXPECT_TRUE(errors.contains(u"b.png"_s)) << errors.toStdString();

    const QString file = installation.Path("c.jpg");
    EXPECT_EQ(run({u"--out"_s, file, u"--pixels"_s, u"600x600"_s}), app::SomePhotoFailed);
    EXPECT_TRUE(errors.contains(u"Am nächsten"_s)) << errors.toStdString();
    EXPECT_FALSE(QFileInfo::exists(file));
    EXPECT_EQ(run(QStringList{u"--out"_s, file} + Arguments("--pixels 720x940 --kilobytes 5-60")),
              app::Done);
    EXPECT_EQ(QImage(file).size(), QSize(720, 940));
    EXPECT_THROW(run({u"--out"_s, installation.Path("c.png")}), app::UsageError);
}

}  // namespace kadrona::testing
