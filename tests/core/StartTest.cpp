#include <gtest/gtest.h>

#include <QDir>

#include "tests/support/CoreFakes.h"
#include "tests/support/PixelMatchers.h"

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
    EXPECT_EQ(data.FrameSize(), 25);
    EXPECT_EQ(templatesAtInit, (QStringList{u"Pass"_s, u"USA"_s}));
    EXPECT_FALSE(databaseAtInit) << "the database comes after the init handler";
    EXPECT_TRUE(ui.messages.isEmpty());

    const qint64 record = data.Archive()->Insert();
    core::TData again(ui, installation.Folders());
    again.InitSystem();
    EXPECT_TRUE(again.Archive()->Read(record)) << "the next start keeps the database";
    installation.Write("common/Kadrona/Database/KDRImageBase.db", QByteArray(4096, 'x'));
    core::TData damaged(ui, installation.Folders());
    EXPECT_THROW(damaged.InitSystem(), platform::Error);
}

TEST(Start, ReportsWhatCannotBeMadeAndGoesOn) {
    for (const auto& [folder, message] :
         {std::pair("Database",
                    u"Fehler, das Datenbankverzeichnis konnte nicht erstellt werden."_s),
          std::pair("Curves", u"Fehler, das Kurvenverzeichnis konnte nicht erstellt werden."_s)}) {
        const Installation installation;
        installation.Write("common/Kadrona/" + QByteArray(folder), "a file");
        QFile::remove(installation.Path("program/Schablonen/MaskList.kdr"));
        FakeInterface ui;
        core::TData data(ui, installation.Folders());
        data.InitSystem();
        EXPECT_EQ(ui.messages, QStringList(message));
        EXPECT_FALSE(QDir(installation.DataFile("Curves")).exists());
        EXPECT_EQ(data.GetSchablonenList(), QStringList()) << "there is no catalogue";
        EXPECT_EQ(data.GetMaskFileName(0), QString());
    }
    const Installation closed;
    closed.Write("common", "a file");
    FakeInterface ui;
    EXPECT_EQ(core::TData(ui, closed.Folders()).DataFolder(), QString());
}

}  // namespace kadrona::testing
