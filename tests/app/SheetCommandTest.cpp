#include <QProcess>
#include <filesystem>
#include <fstream>

#include "app/Application.h"
#include "app/commandline/OrderCommand.h"
#include "app/commandline/PackedRequest.h"
#include "app/commandline/SheetCommand.h"
#include "app/commandline/WindowRequest.h"
#include "core/sheet/PhotoLoading.h"
#include "core/sheet/SheetLayout.h"
#include "tests/app/CommandFixture.h"

using namespace Qt::StringLiterals;

namespace kadrona::testing {

using app::ParseSheetRequest;
using app::UsageError;

TEST(SheetRequest, ReadsEveryOption) {
    const app::SheetRequest request = ParseSheetRequest(
        Arguments("a.jpg b.png --template Pass --out=bogen --at -5,20,300 --profile Laden") +
        QStringList{u"--layout"_s, u"3 x 3"_s});
    EXPECT_EQ(request.photos.join(u' '), u"a.jpg b.png"_s);
    EXPECT_EQ(request.templateName, u"Pass"_s);
    EXPECT_EQ(request.output, u"bogen"_s);
    EXPECT_EQ(request.layoutIndex, 7);
    ASSERT_TRUE(request.place);
    EXPECT_EQ(request.place->left, -5);
    EXPECT_EQ(request.place->width, 300);
    EXPECT_EQ(request.profile, u"Laden"_s);
    const auto paper = ParseSheetRequest(Arguments("a.jpg --template Pass --out b.jpg --paper a5 "
                                                   "--gap 1 --edge 4,5 --count 3 --marks outline"))
                           .paper.value();
    EXPECT_EQ(paper.paper, QSize(148'000, 210'000));
    EXPECT_EQ(paper.gap, 1'000);
    EXPECT_EQ(paper.edge, 4'500);
    EXPECT_EQ(paper.count, 3);
    EXPECT_EQ(paper.marks, core::CuttingMarks::Outline);
}

TEST(SheetRequest, RefusesWhatMakesNoSense) {
    const QStringList valid = Arguments("a.jpg --template Pass --out b.jpg");
    EXPECT_NO_THROW(ParseSheetRequest(valid));
    EXPECT_EQ(ParseSheetRequest(valid + Arguments("--layout 3x3")).layoutIndex, 7);
    EXPECT_THROW(ParseSheetRequest({}), UsageError);
    EXPECT_THROW(ParseSheetRequest(valid.mid(1)), UsageError);
    EXPECT_THROW(ParseSheetRequest(valid.first(3)), UsageError);
    for (const char* wrong :
         {"--at 1,2", "--at 1,2,0", "--at 1,2,x", "--layout 4x2", "--paper A7", "--paper 0x150",
          "--paper A4 --count 0", "--paper A4 --gap -1", "--paper A4 --gap 20.1",
          "--paper A4 --marks x", "--gap 2", "--unknown", "--profile"}) {
        EXPECT_THROW(ParseSheetRequest(valid + Arguments(wrong)), UsageError) << wrong;
    }
}

TEST(WindowRequest, SurvivesTheWayToAnotherStartAndNothingElseDoes) {
    using app::ParseWindowRequest;
    using app::Unpacked;
    for (const char* arguments : {"", "--open", "/f/ü.jpg", "-- -a.jpg"}) {
        const app::WindowRequest request = ParseWindowRequest(Arguments(arguments));
        EXPECT_EQ(Unpacked(Packed(request)), request) << arguments;
    }
    EXPECT_TRUE(ParseWindowRequest(Arguments("--new-window a.jpg")).newWindow);
    EXPECT_TRUE(ParseWindowRequest(Arguments("a.jpg")).photo.startsWith(u'/'));
    for (const char* wrong : {"--unknown", "a.jpg b.jpg", "--open a.jpg", "a.jpg --open"}) {
        EXPECT_THROW(ParseWindowRequest(Arguments(wrong)), UsageError) << wrong;
    }
    const QByteArray packed = Packed(ParseWindowRequest(Arguments("/a.jpg")));
    EXPECT_EQ(packed.toPercentEncoding(" /"), "kadrona 1%00%00%00/a.jpg");
    for (const char* damaged :
         {"", "kadrona 2%00%00%00/a.jpg", "kadrona 1%00%0A%00%00/a.jpg",
          "kadrona 1%00%00x%00/a.jpg", "kadrona 1%00%00%00a.jpg", "kadrona 1%00%00%00/a.jpg%00",
          "kadrona 1%00%00/a.jpg", "kadrona 1%00%00%00/a%FF.jpg"}) {
        EXPECT_FALSE(Unpacked(QByteArray::fromPercentEncoding(damaged))) << damaged;
    }
    EXPECT_FALSE(Unpacked(packed + QByteArray(4096, 'a')));
}

TEST(SheetRequest, TakesNamesAsFileManagersGiveThemAndThoseThatBeginLikeAnOption) {
    EXPECT_EQ(app::LocalPath(u"file:///photos/a%20b.jpg"_s), u"/photos/a b.jpg"_s);
    EXPECT_EQ(app::LocalPath(u"file:a.jpg"_s), u"file:a.jpg"_s);
    const auto request =
        ParseSheetRequest(Arguments("--template Pass --out -b.jpg -- -a.jpg file:///c.jpg"));
    EXPECT_EQ(request.photos.join(u' '), u"-a.jpg /c.jpg"_s);
}

TEST(CommandLine, EndsWithTheCodeOfWhatItWasAskedFor) {
    const auto run = [](std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "kadrona");
        std::vector<char*> pointers;
        pointers.reserve(arguments.size());
        for (std::string& argument : arguments) {
            pointers.push_back(argument.data());
        }
        return app::Run(static_cast<int>(pointers.size()), pointers.data());
    };
    EXPECT_EQ(run({"--help"}), app::Done);
    EXPECT_EQ(run({"archive", "check", "--help"}), app::Done);
    EXPECT_EQ(run({"--version"}), app::Done);
    EXPECT_EQ(run({"--unknown"}), app::WrongUsage);
    EXPECT_EQ(run({"a.jpg", "b.jpg"}), app::WrongUsage);
    EXPECT_EQ(run({"--", "-a.jpg", "b.jpg"}), app::WrongUsage);
}

class SheetCommand : public Command {
 protected:
    SheetCommand() {
        SavePhoto("in/a.png", 400, 500);
        SavePhoto("in/b.png", 400, 500);
        request.templateName = u"Pass"_s;
        request.place = core::TemplatePlace{10, 20, 300};
        request.photos = {installation.Path("in/a.png")};
        request.output = installation.Path("sheet.png");
    }

    int Run() { return RunCommand(app::MakeSheets, request); }

    app::SheetRequest request;
};

TEST_F(SheetCommand, MakesTheSheetOfTheProfilesLayout) {
    installation.Write("common/Kadrona/Profiles.ini", "[Standard Profile]\nProfilename=pro1.tmp\n");
    installation.Write("common/Kadrona/pro1.tmp",
                       "[ImageCount]\nItemIndex=4\n[FrameSize]\nText=\"10\"\n");
    EXPECT_EQ(Run(), app::Done) << errors.toStdString();
    const QImage sheet(request.output);
    EXPECT_EQ(sheet.size(), QSize(3 * 310, 386 + 10)) << "1 x 3, height 300 * 450 / 350";
    EXPECT_EQ(sheet.dotsPerMeterX(), 8583) << "300 / 3.5 * 2.54 = 218 dpi";
    EXPECT_TRUE(output.startsWith(u"[1/1] "_s)) << output.toStdString();
    installation.Write("common/Kadrona/pro1.additions",
                       "[GridGapInMillimetres]\nChecked=true\n[GridGap]\nValue=35\n");
    EXPECT_EQ(Run(), app::Done) << errors.toStdString();
    EXPECT_EQ(QImage(request.output).width(), 3 * 330) << "a tenth of the photo's 35 mm";
}

/// Lengths of the runs of photo and of white along a line, white first.
std::vector<int> RunsAlong(const QImage& sheet, QPoint from, QPoint step) {
    std::vector<int> runs{0};
    bool photo = false;
    for (QPoint at = from; sheet.rect().contains(at); at += step) {
        if ((qRed(sheet.pixel(at)) == 120) != photo) {
            photo = !photo;
            runs.push_back(0);
        }
        ++runs.back();
    }
    return runs;
}

TEST_F(SheetCommand, OnPaperEveryCopyAndGapHasItsMillimetres) {
    const struct {
        QString paper;
        QSize pixels;    // at 300 dpi
        int photo, gap;  // across, within a pixel
        size_t across, down;
    } table[] = {{u"10x15"_s, {1200, 1800}, 531, 24, 2, 4}, {u"A6"_s, {1240, 1748}, 413, 24, 2, 3}};
    for (const auto& row : table) {
        for (const QString& name : {u"sheet.png"_s, u"sheet.pdf"_s}) {
            SCOPED_TRACE((row.paper + u' ' + name).toStdString());
            request = ParseSheetRequest(
                Arguments("--template Pass --at 10,20,300 --count fill --dpi 300 --marks lines") +
                QStringList{u"--paper"_s, row.paper, u"--out"_s,
                            installation.Path(name.toUtf8().constData()),
                            installation.Path("in/a.png")});
            ASSERT_EQ(Run(), app::Done) << errors.toStdString();
            QImage sheet(request.output);
            if (name.endsWith(u"pdf"_s)) {
                const QString page = installation.Path("page");
                QProcess::execute(u"pdftoppm"_s, {u"-r"_s, u"300"_s, u"-png"_s, u"-singlefile"_s,
                                                  request.output, page});
                sheet.load(page + u".png"_s);
            }
            ASSERT_EQ(sheet.size(), row.pixels);
            const bool turned = row.photo == 531;
            const auto across = RunsAlong(sheet, {0, row.pixels.height() / 4}, {1, 0});
            const auto down = RunsAlong(sheet, {row.pixels.width() / 4, 0}, {0, 1});
            ASSERT_EQ(across.size(), 2 * row.across + 1);
            ASSERT_EQ(down.size(), 2 * row.down + 1);
            for (size_t i = 1; i + 1 < across.size(); ++i) {
                EXPECT_NEAR(across[i], i % 2 == 1 ? row.photo : row.gap, 1);
            }
            for (size_t i = 1; i + 1 < down.size(); ++i) {
                EXPECT_NEAR(down[i], i % 2 == 1 ? (turned ? 413 : 531) : row.gap, 1);
            }
            EXPECT_NEAR(across.front(), across.back(), 1) << "in the middle";
        }
    }
}

TEST_F(SheetCommand, DoesEveryPhotoOfAFolderAndNamesTheOnesThatFail) {
    installation.Write("in/broken\x1b\xad.jpg", "no photo");
    SavePhoto("in/small.png", 100, 100);
    // The toolkit lists no name that is no UTF-8.
    const std::ofstream oddlyNamed(
        (QFile::encodeName(installation.Path("in")) + "/l\xe4ngs.jpg").constData());
    SavePhoto("other/a.png", 400, 500);
    request.photos = {installation.Path("in"), installation.Path("other/a.png"),
                      installation.Path("missing.jpg")};
    request.output = installation.Path("out");
    EXPECT_EQ(Run(), app::SomePhotoFailed);
    EXPECT_EQ(QDir(request.output).entryList(QDir::Files).join(u' '),
              u"a_2_kdr.jpg a_kdr.jpg b_kdr.jpg"_s);
    EXPECT_EQ(output.count(u'\n'), 3);
    EXPECT_EQ(errors.count(u'\n'), 4) << errors.toStdString();
    for (const QString& name : {u"broken\\u001b\\u00ad.jpg"_s, u"small.png"_s, u"missing.jpg"_s,
                                u"kein gültiges UTF-8"_s}) {
        EXPECT_TRUE(errors.contains(name)) << errors.toStdString();
    }
}

TEST_F(SheetCommand, UsesTheSavedPlaceAndRefusesWhereThereIsNone) {
    request.place.reset();
    EXPECT_EQ(Run(), app::SomePhotoFailed);
    EXPECT_TRUE(errors.contains(u"400 x 500"_s)) << errors.toStdString();
    data.SaveLayerPosToIni(u"Pass.msk 400x500"_s, QRect(5, 6, 350, 1));
    request.layoutIndex = core::SinglePhotoLayout;
    EXPECT_EQ(Run(), app::Done);
    EXPECT_EQ(QImage(request.output).size(), QSize(350, 450));
}

TEST_F(SheetCommand, RefusesWrongRequestsAsAWhole) {
    const app::SheetRequest valid = request;
    const auto refused = [&](const auto& change) {
        request = valid;
        change();
        EXPECT_THROW(Run(), UsageError);
    };
    refused([&] { request.templateName = u"Keine"_s; });
    refused([&] { request.profile = u"Keines"_s; });
    refused([&] { request.output = installation.Path("sheet.xyz"); });
    refused([&] { request.photos.append(installation.Path("in/b.png")); });
    refused([&] { request.photos = {installation.Path("program")}; });
    EXPECT_FALSE(QFile::exists(valid.output));
}

TEST_F(SheetCommand, NeverOverwritesThePhotoAndRefusesARectangleOutsideIt) {
    request.output = request.photos.first();
    EXPECT_EQ(Run(), app::SomePhotoFailed);
    EXPECT_EQ(QImage(request.output).size(), QSize(400, 500));
    const QString other = installation.Path("in/a_kdr.jpg");
    ASSERT_TRUE(QFile::link(installation.Path("in/b.png"), other));
    request.photos.append(other);
    request.output = installation.Path("in");
    EXPECT_EQ(Run(), app::SomePhotoFailed);
    EXPECT_EQ(QImage(other).size(), QSize(400, 500)) << "nor that of another customer";
    request.photos.removeLast();
    request.output = installation.Path("sheet.png");
    std::filesystem::create_hard_link(request.photos.first().toStdString(),
                                      request.output.toStdString());
    EXPECT_EQ(Run(), app::SomePhotoFailed) << "by another name, as where a disk is mounted twice";
    QFile::remove(request.output);
    request.place = core::TemplatePlace{101, 0, 300};
    EXPECT_EQ(Run(), app::SomePhotoFailed);
    EXPECT_FALSE(QFile::exists(request.output));
}

TEST_F(SheetCommand, WarnsOfABrightPhotoAndMakesTheSheet) {
    SavePhoto("in/a.png", 400, 500, 191);
    EXPECT_EQ(Run(), app::Done);
    EXPECT_TRUE(errors.contains(core::TooBrightWarning));
    EXPECT_TRUE(QFile::exists(request.output));
}

TEST_F(SheetCommand, AnOrderIsMadeAsAWholeOrNotAtAll) {
    const auto order = [&](const char* lines) {
        installation.Write("in/order.txt", lines);
        errors.clear();
        request = ParseSheetRequest({u"--order"_s, installation.Path("in/order.txt"), u"--out"_s,
                                     installation.Path("order.png")});
        return RunCommand(app::MakeOrder, request);
    };
    ASSERT_EQ(order("# two customers\n\n a.png ; Pass; 10,20,300; 2\r\nb.png;Pass;0,0,350;1"),
              app::Done)
        << errors.toStdString();
    const QImage sheet(installation.Path("order.png"));
    EXPECT_EQ(sheet.size(), QSize(1016, 1524)) << "10 x 15 where no paper is named";
    EXPECT_TRUE(output.contains(u"(3 Bilder, 1016 x 1524 Pixel, 254 dpi)"_s))
        << output.toStdString();

    ASSERT_TRUE(QFile::remove(installation.Path("order.png")));
    const struct {
        const char* lines;
        const char* named;  // numbers of lines
    } table[] = {
        {"", ""},
        {"a.png;Pass;0,0,300;1\na.png;Pass;0,0,300", "2"},
        {"#\n\nmissing.png;Pass;0,0,300;1\na.png;Keine;0,0,300;1\na.png;Pass;0,0;1", "3 4 5"},
        {"a.png;Pass;0,0,300;0\na.png;Pass;0,0,300;x\n;Pass;0,0,300;1", "1 2 3"},
        {"a.png;Pass;300,0,300;1\na.png;Pass;auto;1", "1 2"},
        {"a.png;Pass;0,0,300;4\na.png;Pass;0,0,300;9", "2"},
        {"a.png;Pass;0,0,300;7", "1"},
    };
    for (const auto& row : table) {
        EXPECT_EQ(order(row.lines), app::SomePhotoFailed) << row.lines;
        QStringList named;
        for (const QString& line : errors.split(u'\n')) {
            if (line.startsWith(u"Zeile "_s)) {
                named.append(line.section(u' ', 1, 1).chopped(1));
            }
        }
        EXPECT_EQ(named.join(u' '), QString::fromUtf8(row.named)) << errors.toStdString();
        EXPECT_TRUE(errors.endsWith(u"Es wurde nichts geschrieben.\n"_s));
        EXPECT_FALSE(QFile::exists(installation.Path("order.png"))) << row.lines;
    }
    SavePhoto("order.png", 400, 500);
    EXPECT_EQ(order("../order.png;Pass;0,0,300;1"), app::SomePhotoFailed);
    EXPECT_EQ(QImage(installation.Path("order.png")).size(), QSize(400, 500)) << "the photo itself";
}

}  // namespace kadrona::testing
