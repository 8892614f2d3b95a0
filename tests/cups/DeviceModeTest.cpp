#include <gtest/gtest.h>

#include "printing/cups/QueueChoice.h"
#include "printing/cups/service/DeviceMode.h"

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
    struct Row {
        const char* name;
        QByteArray block;
        QByteArray read;
    };
    const Row rows[] = {
        {"in order", "PageSize=A6\nInputSlot=Photo\n", "PageSize=A6\nInputSlot=Photo\n"},
        {"nothing", "", ""},
        {"no key", "=x\n\nkey\n", ""},
        {"no last line end", "a=1\nb=2", "a=1\nb=2\n"},
        {"twice", "a=1\nb=2\na=3\n", "a=3\nb=2\n"},
        {"escape at the end", "a=1\\", "a=1\\\\\n"},
        {"unknown escape", "a=\\q\n", "a=q\n"},
        {"no text", QByteArray("\xff\xfe=\x80\n"), QByteArray("\xff\xfe=\x80\n")},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(DeviceMode(row.block).ToBlock(), row.read) << row.name;
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

}  // namespace
