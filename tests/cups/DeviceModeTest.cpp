#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <optional>

#include "platform/AtomicFile.h"
#include "printing/cups/QueueChoice.h"
#include "printing/cups/service/DeviceMode.h"
#include "printing/cups/service/Driver.h"

using namespace kadrona::printing;
using namespace kadrona::printing::cups;
using namespace Qt::StringLiterals;

namespace {

TEST(DeviceModeTest, AnyKeyAndValueSurvive) {
    DeviceMode mode;
    for (const QByteArray& text :
         {QByteArray("a=b"), QByteArray("\\"), QByteArray("\\n"), QByteArray("\n"),
          QByteArray("x\r\ny"), QByteArray("\0z", 2), QByteArray("ends\\"), QByteArray("Größe")}) {
        mode.Set(text, text);
    }
    EXPECT_EQ(DeviceMode(mode.ToBlock()), mode);
    EXPECT_EQ(mode.ToBlock().count('\n'), 8);
}

TEST(DeviceModeTest, AForeignBlockIsReadAsFarAsItMakesSense) {
    for (const auto& [block, read] : {std::pair("b=A6\na=x\n", "b=A6\na=x\n"),
                                      {"", ""},
                                      {"=x\n\nkey\n", ""},
                                      {"no=1\nend=2", "no=1\nend=2\n"},
                                      {"twice=1\nb=2\ntwice=3\n", "twice=3\nb=2\n"},
                                      {"end=1\\", "end=1\\\\\n"},
                                      {"escaped=\\q\n", "escaped=q\n"},
                                      {"\xff\xfe=\x80\n", "\xff\xfe=\x80\n"}}) {
        EXPECT_EQ(DeviceMode(block).ToBlock(), read) << block;
    }
}

TEST(DeviceModeTest, CopiesStayWithinReason) {
    for (const auto& [stored, count] : {std::pair{"copies=3", 3},
                                        {"copies=-1", 1},
                                        {"copies=99999999999999999999", 1},
                                        {"copies=5000", 999},
                                        {"copies=x", 1},
                                        {"", 1}}) {
        EXPECT_EQ(DeviceMode(stored).CopyCount(), count) << stored;
    }
}

TEST(QueueChoiceTest, AnotherQueuesWholeNameIsNotTaken) {
    EXPECT_EQ(QueueNameOf({u"Photo"_s, {}, {}, "printer-name=Laser\n"}), "Photo");
}

/// A description that is cut off, or of which one line is broken.
TEST(DriverTest, ABrokenDescriptionIsRefusedOrReadAsFarAsItMakesSense) {
    const QByteArray whole =
        kadrona::platform::ReadWholeFile(QStringLiteral(KADRONA_CUPS_TESTS "/photo-printer.ppd"),
                                         1 << 20, kadrona::platform::Links::All);
    QTemporaryDir folder;
    const QString path = folder.filePath(u"x.ppd"_s);
    const auto read = [&](const QByteArray& description) -> std::optional<Driver> {
        kadrona::platform::WriteFileAtomically(path, description, kadrona::platform::Links::Own);
        try {
            return Driver(path);
        } catch (const ServiceFailure&) {
            return std::nullopt;
        }
    };
    DeviceMode mode;
    mode.Set("PageSize", "Custom.100x150mm");
    for (qsizetype length = 0; length < whole.size(); length += 97) {
        if (const auto driver = read(whole.left(length))) {
            EXPECT_GE(driver->PrinterPaperOf(mode).copies, 1);
            driver->Conflicts(mode);
        }
    }
    mode.Set("InputSlot", "GoneTray");
    EXPECT_TRUE(read(whole)->PlacingChoices(mode).empty()) << "the queue decides";
    const QByteArray shrinking = QByteArray(whole).replace(
        "*OpenUI *InputSlot",
        "*OpenUI *StpiShrinkOutput/Shrink: PickOne\n*DefaultStpiShrinkOutput: Shrink\n"
        "*StpiShrinkOutput Shrink/Shrink: \"\"\n*CloseUI: *StpiShrinkOutput\n*OpenUI *InputSlot");
    const std::vector<std::pair<QByteArray, QByteArray>> decided{{"InputSlot", "Main"},
                                                                 {"Duplex", "None"}};
    EXPECT_EQ(read(shrinking)->PlacingChoices(mode), decided) << "as the page is drawn";
    mode.Set("InputSlot", "Main");
    const auto without = [&](const char* keyword) {
        QByteArrayList lines = whole.split('\n');
        lines.removeIf([&](const QByteArray& line) { return line.contains(keyword); });
        return lines.join('\n');
    };
    const auto noPapers = read(without("Page"));
    ASSERT_TRUE(noPapers);
    EXPECT_FALSE(noPapers->PrinterPaperOf({}).geometry.IsKnown());
    EXPECT_EQ(noPapers->PrinterPaperOf({}).remarks.size(), 1) << "no size to compare with";
    EXPECT_EQ(noPapers->PrinterPaperOf(mode).remarks.size(), 2) << "the paper that was chosen";
    for (const char* limits : {"142 612", "142 1008"}) {
        const auto broken = read(QByteArray(whole).replace(limits, "900 -5"));
        EXPECT_FALSE(broken && broken->OwnSizes()) << limits;
    }
}

}  // namespace
