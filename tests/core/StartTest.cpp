#include <gtest/gtest.h>

#include <QDir>

#include "tests/support/CoreFakes.h"

using namespace Qt::StringLiterals;

namespace kadrona::testing {

TEST(Start, MakesTheFoldersAndTheDatabaseOnAFreshMachine) {
    const Installation installation;
    FakeInterface ui;
    core::TData data(ui, installation.Folders());
    QStringList templatesAtInit;
    bool databaseAtInit = true;
    data.SetInitHandler([&](core::TData& sender) {
        templatesAtInit = sender.GetSchablonenList();
        databaseAtInit = QDir(installation.DataFile("Database")).exists();
    });
    data.InitSystem();

    EXPECT_EQ(data.DataFolder(), installation.Path("common/Kadrona"));
    EXPECT_EQ(data.CurvesFolder(), installation.DataFile("Curves"));
    EXPECT_TRUE(QDir(installation.DataFile("Curves")).exists());
    EXPECT_FALSE(QDir(installation.DataFile("Database")).isEmpty());
    EXPECT_EQ(data.FrameSize(), 25);
    EXPECT_EQ(templatesAtInit, (QStringList{u"Pass"_s, u"USA"_s}))
        << "the catalogue is there before the init handler runs";
    EXPECT_FALSE(databaseAtInit) << "the database comes after the init handler";
    EXPECT_TRUE(ui.messages.isEmpty());
}

struct Obstacle {
    const char* file;  ///< a file where a folder should be
    const char* message;
    bool curvesFolder;
};

class StartWithObstacle : public ::testing::TestWithParam<Obstacle> {};

TEST_P(StartWithObstacle, ReportsTheFolderThatCannotBeMadeAndGoesOn) {
    const Obstacle obstacle = GetParam();
    const Installation installation;
    installation.Write(obstacle.file, "in the way");
    FakeInterface ui;
    core::TData data(ui, installation.Folders());
    data.InitSystem();
    EXPECT_EQ(ui.messages, QStringList(QString::fromUtf8(obstacle.message)));
    EXPECT_EQ(QDir(installation.DataFile("Curves")).exists(), obstacle.curvesFolder);
}

INSTANTIATE_TEST_SUITE_P(
    Start, StartWithObstacle,
    ::testing::Values(Obstacle{"common/Kadrona/Database",
                               "Fehler, das Datenbankverzeichnis konnte nicht erstellt werden.",
                               false},
                      Obstacle{"common/Kadrona/Curves",
                               "Fehler, das Kurvenverzeichnis konnte nicht erstellt werden.",
                               false}));

TEST(Start, ADataFolderThatCannotBeMadeIsEmpty) {
    const Installation installation;
    installation.Write("common", "in the way");
    FakeInterface ui;
    const core::TData data(ui, installation.Folders());
    EXPECT_EQ(data.DataFolder(), QString());
    EXPECT_TRUE(ui.messages.isEmpty());
}

TEST(Start, AMissingCatalogueIsAnEmptyList) {
    const Installation installation;
    QFile::remove(installation.Path("program/Schablonen/MaskList.kdr"));
    FakeInterface ui;
    core::TData data(ui, installation.Folders());
    data.InitSystem();
    EXPECT_TRUE(data.GetSchablonenList().isEmpty());
    EXPECT_EQ(data.GetMaskFileName(0), QString());
}

TEST(Start, RunningTwiceKeepsTheDatabase) {
    const Installation installation;
    FakeInterface ui;
    for (int run = 0; run < 2; ++run) {
        core::TData data(ui, installation.Folders());
        EXPECT_NO_THROW(data.InitSystem());
    }
}

TEST(Start, ADatabaseFileThatIsNoneIsReported) {
    const Installation installation;
    FakeInterface ui;
    {
        core::TData data(ui, installation.Folders());
        data.InitSystem();
    }
    const QDir folder(installation.DataFile("Database"));
    for (const QString& file : folder.entryList(QDir::Files)) {
        installation.Write("common/Kadrona/Database/" + file.toUtf8(), QByteArray(4096, 'x'));
    }
    core::TData data(ui, installation.Folders());
    EXPECT_THROW(data.InitSystem(), platform::Error);
}

}  // namespace kadrona::testing
