#include <gtest/gtest.h>

#include <QRandomGenerator>
#include <QRegularExpression>
#include <array>

#include "core/base/FileNaming.h"
#include "tests/support/CoreFakes.h"

using namespace Qt::StringLiterals;

namespace kadrona::testing {

/// 7 March 2026; "random" numbers from 0 on in steps of 13; a GUID that is always the same.
core::NameSources FixedSources() {
    core::NameSources sources;
    sources.now = [] { return QDateTime({2026, 3, 7}, {23, 59, 59}); };
    sources.randomBelow = [next = -13](int bound) mutable { return (next += 13) % bound; };
    sources.guid = [] { return u"{0A-1b}"_s; };
    return sources;
}

struct NameCase {
    const char* prefix;
    int variable;
    int type;
    const char* name;
};

class FileNames : public ::testing::Test {
 protected:
    Installation installation;
    FakeInterface ui;
    core::TData data{ui, installation.Folders()};
};

TEST_F(FileNames, AreThePrefixTheVariableAndTheExtension) {
    for (const NameCase& expected :
         {NameCase{"Bildname", 0, 0, "Bildname.jpg"},
          NameCase{"Bildname", 1, 0, "Bildname2026_03_07.jpg"},
          NameCase{"Bildname", 2, 1, "Bildname{0A-1b}.jp2"}, NameCase{"", 3, 0, "anan0dqd.jpg"},
          NameCase{"x_", 4, 1, "x_anan0d.jp2"}, NameCase{"x", 5, 2, "xanan"},
          NameCase{"A B", 6, -1, "A B"}, NameCase{"", -1, 0, ".jpg"}}) {
        data.SetNameSources(FixedSources());
        EXPECT_EQ(
            data.GetFileName(QString::fromUtf8(expected.prefix), expected.variable, expected.type),
            QString::fromUtf8(expected.name));
    }
}

TEST_F(FileNames, DrawLettersTwiceAsOftenAsDigits) {
    core::NameSources sources;
    QRandomGenerator generator(20260307);
    sources.randomBelow = [&generator](int bound) { return generator.bounded(bound); };
    data.SetNameSources(sources);
    std::array<int, 128> count{};
    constexpr int Names = 40'000;
    for (int i = 0; i < Names; ++i) {
        for (const QChar character : data.GetFileName({}, 3, 2)) {
            ++count.at(character.unicode());
        }
    }
    constexpr double Share = Names * 8.0 / 62;
    for (char character = 'a'; character <= 'z'; ++character) {
        EXPECT_NEAR(count.at(static_cast<size_t>(character)), 2 * Share, Share / 10) << character;
    }
    for (char character = '0'; character <= '9'; ++character) {
        EXPECT_NEAR(count.at(static_cast<size_t>(character)), Share, Share / 10) << character;
    }
    EXPECT_EQ(count['A'], 0);
}

TEST_F(FileNames, ComeFromTheRealClockAndChanceByDefault) {
    EXPECT_TRUE(QDate::fromString(data.GetFileName({}, 1, 2), u"yyyy_MM_dd"_s).isValid());
    static const QRegularExpression guid(
        u"^\\{[0-9a-fA-F]{8}(-[0-9a-fA-F]{4}){3}-[0-9a-fA-F]{12}\\}$"_s);
    const QString made = data.GetFileName({}, 2, 2);
    EXPECT_TRUE(guid.match(made).hasMatch()) << made.toStdString();
    EXPECT_NE(data.GetFileName({}, 2, 2), made);
    static const QRegularExpression lower(u"^[a-z0-9]{8}$"_s);
    EXPECT_TRUE(lower.match(data.GetFileName({}, 3, 2)).hasMatch());
    EXPECT_NE(core::GetRandomStr(30), core::GetRandomStr(30));
}

TEST(NameParts, HaveTheirFixedForms) {
    const core::NameSources sources = FixedSources();
    EXPECT_EQ(core::GetRandomStr(8, sources), u"anAN0dqD"_s);
    EXPECT_EQ(core::GetRandomStr(0, sources), QString());
    EXPECT_EQ(core::GetMonthDir(sources), u"2026\\03"_s) << "stored with a backslash everywhere";
    EXPECT_EQ(core::GetDatePrefix(sources), u"2026-03-07"_s);
    EXPECT_EQ(core::GetArchivFileName(7, sources), u"2026_03_00007"_s);
    EXPECT_EQ(core::GetArchivFileName(1234567, sources), u"2026_03_1234567"_s);
    core::NameSources early;
    early.now = [] { return QDateTime({812, 12, 31}, {}); };
    EXPECT_EQ(core::GetDatePrefix(early), u"812-12-31"_s) << "the year is not padded";
}

TEST(NameParts, OfPaths) {
    EXPECT_EQ(core::DelLastBackslash(u"/a/b//"_s), u"/a/b/"_s);
    EXPECT_EQ(core::DelLastBackslash(u"/a/b"_s), u"/a/b"_s);
    EXPECT_EQ(core::DelLastBackslash({}), QString());
    EXPECT_EQ(core::GetNameWithSuffix(u"/photos.d/max.png"_s, u"_kdr"_s), u"max_kdr"_s);
    EXPECT_EQ(core::GetNameWithSuffix(u"max.2024.png"_s, u"_kdr"_s), u"max.2024_kdr"_s);
    EXPECT_EQ(core::GetNameWithSuffix({}, u"_kdr"_s), u"_kdr"_s);
}

}  // namespace kadrona::testing
