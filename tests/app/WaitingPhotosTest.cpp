#include <gtest/gtest.h>

#include <QWidget>

#include "app/archive/WaitingPhotos.h"
#include "core/Data.h"
#include "imaging/writing/ImageWriter.h"
#include "tests/support/CoreFakes.h"
#include "tests/support/ModalDriver.h"
#include "tests/support/PixelMatchers.h"

using namespace Qt::StringLiterals;

namespace kadrona::testing {

TEST(WaitingPhotos, AreFiledWhereTheUserAgrees) {
    const Installation installation;
    QDir().mkpath(installation.Path("archive"));
    FakeInterface ui;
    core::TData data(ui, installation.Folders());
    data.InitSystem();
    const QByteArray jpeg = imaging::EncodeJpeg(imaging::Pixels(Filled({35, 45}, Qt::gray)));
    int minute = 0;  // one photo of one moment is filed once
    const auto wait = [&](const QString& folder) {
        data.Archiving().Queue().Add({.archiveFolder = folder,
                                      .templateName = u"Pass.msk"_s,
                                      .tags = u"Anna\r\n"_s,
                                      .created = QDateTime(QDate(2025, 2, 3), QTime(4, minute++)),
                                      .photo = jpeg,
                                      .thumbnail = jpeg});
    };
    wait(installation.Path("archive"));
    ModalDriver driver;
    QWidget window;
    app::WaitingPhotos waiting(data, window);
    driver.Answer(u"Ein Foto wartet darauf"_s, u"NoButton"_s);
    waiting.Look();
    waiting.Look();
    EXPECT_TRUE(data.Archive()->Ids().empty()) << "not asked again";

    wait(installation.Path("missing"));
    wait(installation.Path("archive"));
    driver.Answer(u"3 Fotos warten darauf"_s, u"YesButton"_s);
    EXPECT_THROW(waiting.Look(), platform::Error);
    EXPECT_EQ(data.Archiving().Queue().Waiting().size(), 1) << "it has nowhere to go";
    EXPECT_EQ(data.Archive()->Find(u"anna"_s).size(), 2U);
    EXPECT_EQ(QDir(installation.Path("archive/2025/02")).entryList(QDir::Files).size(), 2);
    waiting.Look();
}

}  // namespace kadrona::testing
