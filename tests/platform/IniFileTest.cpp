#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <unistd.h>

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <thread>
#include <vector>

#include "platform/AtomicFile.h"
#include "platform/Error.h"
#include "platform/IniFile.h"
#include "tests/support/Errors.h"

namespace kadrona::platform {
namespace {

using namespace Qt::StringLiterals;
using kadrona::testing::TextOf;

class IniFileTest : public ::testing::Test {
 protected:
    QString Path() const { return folder_.filePath(u"kdr.ini"_s); }

    void Write(const QByteArray& bytes) const { WriteFileAtomically(Path(), bytes); }

    QByteArray Bytes() const { return ReadWholeFile(Path(), 1 << 20); }

    QTemporaryDir folder_;
};

TEST_F(IniFileTest, MissingFileIsEmptyAndIsMadeBySave) {
    IniFile ini(Path());
    EXPECT_TRUE(ini.Sections().isEmpty());
    EXPECT_EQ(ini.ReadString(u"A"_s, u"a"_s, u"x"_s), u"x"_s);
    ini.Save();
    EXPECT_FALSE(QFile::exists(Path())) << "nothing was changed";

    ini.WriteInteger(u"mainFm"_s, u"PosX"_s, -7);
    ini.WriteString(u"Paß 1200x1600"_s, u"Profilename"_s, u"pro1A.tmp"_s);
    ini.Save();
    EXPECT_EQ(Bytes(), "[mainFm]\nPosX=-7\n\n[Paß 1200x1600]\nProfilename=pro1A.tmp\n"_ba);
}

TEST_F(IniFileTest, FindsNamesWhateverTheirCaseAndEncodingAndKeepsTheirSpelling) {
    Write("\xEF\xBB\xBF[Standard Profile]\nProfileName = pro1.tmp \n[\xC4RZTE]\nGröße=1\n"_ba);
    IniFile ini(Path());
    EXPECT_EQ(ini.ReadString(u"STANDARD PROFILE"_s, u"profilename"_s), u"pro1.tmp"_s);
    EXPECT_EQ(ini.ReadInteger(u"ärzte"_s, u"GRÖSSE"_s, 5), 5) << "ß is not SS";
    EXPECT_EQ(ini.ReadInteger(u" ärzte "_s, u"GRÖßE "_s), 1);

    ini.WriteInteger(u"Ärzte"_s, u"grÖße"_s, 2);
    ini.Save();
    EXPECT_EQ(Bytes(), "[Standard Profile]\nProfileName = pro1.tmp \n[ÄRZTE]\nGröße=2\n"_ba);
}

TEST_F(IniFileTest, ReadsOnlyWholeDecimalIntegers) {
    Write(
        "[N]\na=12\nb=-2147483648\nc=2147483648\nd=0x10\ne=1,5\nf=\ng=abc\nh\n[n]\na=7\nz=8\n"_ba);
    const IniFile ini(Path());
    EXPECT_EQ(ini.ReadInteger(u"N"_s, u"a"_s, 9), 12);
    EXPECT_EQ(ini.ReadInteger(u"N"_s, u"z"_s, 9), 8) << "a repeated section continues the first";
    EXPECT_EQ(ini.ReadInteger(u"N"_s, u"b"_s, 9), std::numeric_limits<int>::min());
    for (const QChar key : u"cdefghi"_s) {
        EXPECT_EQ(ini.ReadInteger(u"N"_s, key, 9), 9) << key.toLatin1();
    }
    EXPECT_EQ(ini.ReadString(u"N"_s, u"f"_s, u"x"_s), QString()) << "an empty value is a value";
}

TEST_F(IniFileTest, ChangesOnlyTheLinesThatItMust) {
    const struct {
        const char* name;
        void (*change)(IniFile& ini);
        QByteArray before, after;
    } rows[] = {
        {"among lines of every kind",
         [](IniFile& ini) {
             ini.WriteInteger(u"sizes"_s, u"height"_s, 21);
             ini.WriteInteger(u"New"_s, u"x"_s, 1);
         },
         "before any section\nkey=outside\n\n; about the sizes\n[Sizes] ; in pixels\nWidth=10\n"
         "  garbage without a value\n=no key\n[broken\n[]\n\n\n# height\n Height = 20 \nWidth=99\n"
         "Unknown=\n; at the end"_ba,
         "before any section\nkey=outside\n\n; about the sizes\n[Sizes] ; in pixels\nWidth=10\n"
         "  garbage without a value\n=no key\n[broken\n[]\n\n\n# height\n Height = 21\nWidth=99\n"
         "Unknown=\n; at the end\n\n[New]\nx=1\n"_ba},
        {"line ends of another system",
         [](IniFile& ini) {
             ini.WriteInteger(u"A"_s, u"a"_s, 2);
             ini.WriteInteger(u"A"_s, u"b"_s, 3);
             ini.WriteInteger(u"C"_s, u"c"_s, 4);
         },
         "; c\r\n\r\n[A]\r\na=1\r\n\r\n[B]\r\n"_ba,
         "; c\r\n\r\n[A]\r\na=2\r\nb=3\r\n\r\n[B]\r\n\r\n[C]\r\nc=4\r\n"_ba},
        {"a section that is made anew stands at the end",
         [](IniFile& ini) {
             ini.EraseSection(u"A"_s);
             ini.EraseSection(u"not there"_s);
             EXPECT_TRUE(ini.EraseKey(u"b"_s, u"X"_s));
             EXPECT_FALSE(ini.EraseKey(u"b"_s, u"X"_s));
             ini.WriteInteger(u"a"_s, u"x"_s, 3);
             EXPECT_EQ(ini.Sections(), (QStringList{u"c"_s, u"b"_s, u"a"_s}));
         },
         "[c]\nx=1\n[a]\nx=1\n[b]\nx=1\ny=2\nX=5\n"_ba, "[c]\nx=1\n[b]\ny=2\n\n[a]\nx=3\n"_ba},
        {"comment of a section", [](IniFile& ini) { ini.EraseSection(u"b"_s); },
         "; c\n[B]\nb=1\n; d\n[C]\nc=1\n"_ba, "; d\n[C]\nc=1\n"_ba},
        {"comment of the file", [](IniFile& ini) { ini.EraseSection(u"b"_s); },
         "; c\n\n[B]\nb=1\n[C]\nc=1\n"_ba, "; c\n\n[C]\nc=1\n"_ba},
        {"a repeated section continues the first",
         [](IniFile& ini) {
             EXPECT_EQ(ini.ReadInteger(u"A"_s, u"a"_s), 1);
             EXPECT_EQ(ini.ReadInteger(u"A"_s, u"c"_s), 4);
             ini.EraseSection(u"a"_s);
         },
         "[A]\na=1\n[B]\nb=2\n; more of A\n[a]\na=3\nc=4\n"_ba, "[B]\nb=2\n"_ba},
    };
    for (const auto& [name, change, before, after] : rows) {
        Write(before);
        IniFile ini(Path());
        change(ini);
        ini.Save();
        EXPECT_EQ(Bytes(), after) << name;
    }
}

TEST_F(IniFileTest, RefusesWhatTheFormCannotHold) {
    IniFile ini(Path());
    for (const QString& section : {u""_s, u"a]b"_s, u"a\nb"_s}) {
        EXPECT_THROW(ini.WriteString(section, u"a"_s, u"x"_s), Error) << section.toStdString();
    }
    for (const QString& key : {u""_s, u"  "_s, u"a=b"_s, u"a\rb"_s, u";a"_s, u"#a"_s, u"[a"_s}) {
        EXPECT_THROW(ini.WriteString(u"A"_s, key, u"x"_s), Error) << key.toStdString();
    }
    for (const QString& value : {u"x\ny"_s, u"x\0y"_s}) {
        EXPECT_THROW(ini.WriteString(u"A"_s, u"a"_s, value), Error);
    }
    EXPECT_TRUE(ini.Sections().isEmpty());

    // What looks odd but can be held.
    ini.WriteString(u"[#1;"_s, u"a;b [c]"_s, u"  <<<END = \"x\" ;# "_s);
    ini.Save();
    EXPECT_EQ(IniFile(Path()).ReadString(u"[#1;"_s, u"a;b [c]"_s), u"<<<END = \"x\" ;#"_s);
}

/// Looking each of 200,000 keys up among all the lines would take minutes.
TEST_F(IniFileTest, TakesTimeInProportionToTheSize) {
    QByteArray before = "[A]\n"_ba;
    QByteArray after = before;
    for (int i = 1; i <= 200'000; ++i) {
        before += QByteArray::number(i) + "=1\n";
        after += i % 2 == 0 ? QByteArray::number(i) + "=1\n" : QByteArray();
    }
    Write(before);
    IniFile ini(Path());
    for (int i = 1; i <= 200'000; i += 2) {
        ini.EraseKey(u"A"_s, QString::number(i));
    }
    ini.Save();
    EXPECT_EQ(ReadWholeFile(Path(), 1 << 24), after);
}

TEST_F(IniFileTest, NeverTakesAnUnreadableFileForAnEmptyOne) {
    EXPECT_THROW(IniFile ini(folder_.path()), FileError);
    QFile big(Path());
    ASSERT_TRUE(big.open(QIODevice::WriteOnly));
    ASSERT_TRUE(big.resize(4 * 1024 * 1024 + 1));
    EXPECT_THROW(IniFile ini(Path()), FileError);
}

TEST_F(IniFileTest, ALockedFolderIsToldWithItsHolder) {
    const int holder = open(QFile::encodeName(QFileInfo(Path()).path()).constData(), O_RDONLY);
    ASSERT_EQ(flock(holder, LOCK_EX), 0);
    const QString text = TextOf([&] { IniFile::Change(Path(), [](IniFile&) {}); });
    EXPECT_TRUE(text.contains(u"von einem anderen Programm"_s)) << text.toStdString();
    QFile locks(u"/proc/locks"_s);
    const bool isKnown = locks.open(QIODevice::ReadOnly) && !locks.readAll().isEmpty();
    close(holder);
    EXPECT_EQ(text.contains(u"Prozess %1)"_s.arg(getpid())), isKnown) << text.toStdString();
}

TEST_F(IniFileTest, ChangesAtTheSameTimeLoseNothing) {
    constexpr int Writers = 8;
    std::vector<std::jthread> writers;
    writers.reserve(Writers);
    for (int writer = 0; writer < Writers; ++writer) {
        writers.emplace_back([this, writer] {
            IniFile::Change(Path(), [writer](IniFile& file) {
                file.WriteInteger(QString::number(writer), u"PosX"_s, writer);
            });
        });
    }
    writers.clear();
    EXPECT_EQ(IniFile(Path()).Sections().size(), Writers);
}

}  // namespace
}  // namespace kadrona::platform
