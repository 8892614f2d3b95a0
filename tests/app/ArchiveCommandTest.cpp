#include "app/commandline/ArchiveCommand.h"
#include "app/commandline/CommandSetup.h"
#include "imaging/document/LayeredImage.h"
#include "tests/app/CommandFixture.h"

using namespace Qt::StringLiterals;

namespace kadrona::testing {

TEST_F(Command, LooksAfterTheArchive) {
    const QString archive = installation.Path("archive");
    const QString out = installation.Path("out");
    QDir().mkpath(archive);
    QDir().mkpath(out);
    imaging::LayeredImage image;
    image.Open(imaging::Pixels(Filled({120, 160}, 0xff808080)), {300});
    data.SaveImageToArchiv(image, archive, u"Anna\r\n"_s, u"Anna"_s);
    const auto run = [&](const QByteArray& line) {
        return RunCommand(app::KeepArchive,
                          app::ParseArchiveRequest(Arguments(line.constData()) +
                                                   QStringList({u"--folder"_s, archive})));
    };
    const QByteArray to = " --out " + out.toUtf8();
    EXPECT_EQ(run("check"), app::Done);
    EXPECT_EQ(run("backup" + to), app::Done);
    EXPECT_TRUE(QFile::exists(out + u"/KDRImageBase.db"_s));
    EXPECT_EQ(run("export --search Anna" + to), app::Done);
    EXPECT_EQ(run("export --search Bea" + to), app::SomePhotoFailed);
    data.ArchiveDatabase().Execute(uR"(DELETE FROM "ImgDB")"_s);
    EXPECT_EQ(run("check"), app::SomethingFound);
    EXPECT_TRUE(output.contains(u"hat keinen Datensatz: "_s + archive)) << output.toStdString();
    EXPECT_EQ(run("rebuild"), app::Done);
    EXPECT_EQ(run("check"), app::Done);
    for (const char* wrong : {"", "back", "check check", "backup", "export --out x",
                              "check --out x", "rebuild --search x", "export --search  --out x"}) {
        EXPECT_THROW(app::ParseArchiveRequest(Arguments(wrong)), app::UsageError) << wrong;
    }
}

}  // namespace kadrona::testing
