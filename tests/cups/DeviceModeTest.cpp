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

}  // namespace
