#include <gtest/gtest.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <chrono>
#include <vector>

#include "core/sheet/SheetTray.h"
#include "platform/AtomicFile.h"
#include "platform/Error.h"
#include "tests/support/Errors.h"

namespace kadrona::core {
namespace {

using namespace Qt::StringLiterals;

TEST(SheetTray, ListsOnlyItsOwnPicturesThatMakeSense) {
    const auto taken = [](const char* file, int count) {
        return ParseTrayList(QByteArray(R"([{"width":9,"height":9,"file":")") + file +
                             R"(","count":)" + QByteArray::number(count) + "}]")
            .size();
    };
    EXPECT_EQ(taken("bild1.png", 1), 1U);
    EXPECT_EQ(taken("bild1.png", 0), 0U);
    EXPECT_EQ(taken("../bild1.png", 1), 0U);
    EXPECT_EQ(taken("bild1.png\\n", 1), 0U);
    const QByteArray twice = R"({"width":9,"height":9,"file":"bild1.png","count":1})";
    EXPECT_EQ(ParseTrayList('[' + twice + ',' + twice + ']').size(), 1U);
}

TEST(SheetTray, LeadsNowhereByAnothersLink) {
    const QTemporaryDir folder;
    if (geteuid() != 0) {
        GTEST_SKIP() << "no right to give a link away";
    }
    const QString list = folder.filePath(u"tray/Sammelblatt.json"_s);
    const QString victim = folder.filePath(u"victim"_s);
    ASSERT_TRUE(QDir(folder.path()).mkdir(u"tray"_s));
    platform::WriteFileAtomically(victim, "[]"_ba);
    ASSERT_EQ(symlink(QFile::encodeName(victim).constData(), QFile::encodeName(list).constData()),
              0);
    ASSERT_EQ(lchown(QFile::encodeName(list).constData(), 1001, 1001), 0);
    SheetTray tray(folder.filePath(u"tray"_s));
    const QImage picture(20, 30, QImage::Format_RGB32);
    EXPECT_THROW(tray.Add({imaging::Pixels(picture), {20'000, 30'000}, {}, {}}),
                 platform::FileError);
    EXPECT_EQ(platform::ReadWholeFile(victim, 9), "[]"_ba);
}

TEST(SheetTray, ADamagedListIsKeptAsideAndTold) {
    const QTemporaryDir folder;
    SheetTray tray(folder.path());
    const auto add = [&] {
        tray.Add({imaging::Pixels(QImage(20, 30, QImage::Format_RGB32)), {20'000, 30'000}, {}, {}});
    };
    const QString list = folder.filePath(u"Sammelblatt.json"_s);
    int number = 0;
    for (const auto& [damaged, reason] : {std::pair(R"([{"file")"_ba, u"Sie ist ab Zeichen"_s),
                                          std::pair("{}"_ba, u"Sie enthält keine Liste"_s)}) {
        platform::WriteFileAtomically(list, damaged);
        const QString aside = folder.filePath(u"Sammelblatt-beschädigt-%1.json"_s.arg(++number));
        const QString text = testing::TextOf<platform::Error>(add);
        for (const QString& part : {list, aside, reason}) {
            EXPECT_TRUE(text.contains(part)) << text.toStdString();
        }
        EXPECT_EQ(platform::ReadWholeFile(aside, 99), damaged);
        add();
        EXPECT_EQ(tray.Items().size(), 1U);
    }
}

TEST(SheetTray, TwoProgramsLoseNothingOfEachOther) {
    const QTemporaryDir folder;
    const auto item = [](const char* name, int count) {
        QImage picture(20, 30, QImage::Format_RGB32);
        picture.fill(Qt::gray);
        return CollectedItem{
            imaging::Pixels(picture), {20'000, 30'000}, u"Pass"_s, QString::fromUtf8(name), count};
    };
    SheetTray here(folder.path());
    SheetTray there(folder.path());
    const auto holds = [](const SheetTray& tray) {
        QString names;
        for (const CollectedItem& kept : tray.Items()) {
            names += QString::number(kept.count) + kept.name;
        }
        return names;
    };
    here.Add(item("a", 4));
    there.Add(item("b", 4));
    here.Add(item("c", 4));
    EXPECT_EQ(holds(here), u"4a4b4c"_s);
    there.SetCount(1, 9);  // what was second when it was last looked at
    here.Move(2, 0);
    EXPECT_EQ(holds(here), u"4c4a9b"_s);
    const std::vector<TrayCopies> sheet = here.CopiesOn({{}, {0, 0, 3}});  // six of b
    there.Remove(0);
    there.SetCount(0, 8);
    there.Add(item("d", 1));
    here.Remove(1);
    here.TakeOut(sheet);
    EXPECT_EQ(holds(here), u"4c3b1d"_s) << "printed is taken out, and nothing else";
    // What cannot be read for a while stays in the list.
    QFile picture(folder.filePath(QDir(folder.path()).entryList({u"*.png"_s}).first()));
    ASSERT_TRUE(picture.open(QFile::ReadWrite));
    const QByteArray bytes = picture.readAll();
    picture.resize(9);
    SheetTray meanwhile(folder.path());
    meanwhile.Add(item("e", 1));
    EXPECT_EQ(meanwhile.Items().size(), 3U);
    EXPECT_TRUE(picture.resize(0) && picture.seek(0) && picture.write(bytes) == bytes.size());
    picture.close();
    meanwhile.SetCount(0, 4);
    EXPECT_EQ(meanwhile.Items().size(), 3U) << "not tried each time";
    SheetTray hurried(folder.path(), std::chrono::milliseconds(0));
    hurried.Load();
    hurried.Add(item("f", 1));
    EXPECT_EQ(holds(hurried), u"1f"_s) << "what takes too long to read";
    EXPECT_FALSE(hurried.UnreadPicture().isEmpty());
    here.Load();
    EXPECT_EQ(here.Items().size(), 5U);
    here.Clear();
    EXPECT_EQ(holds(here), QString());
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files), QStringList(u"Sammelblatt.json"_s));
}

}  // namespace
}  // namespace kadrona::core
