#include <gtest/gtest.h>

#include <QRegularExpression>
#include <tuple>

#include "core/base/FileNaming.h"
#include "tests/support/PixelMatchers.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {
namespace {

/// 7 March 2026; "random" numbers from 0 on in steps of 13; a GUID that is always the same.
NameSources FixedSources() {
    NameSources sources;
    sources.now = [] { return QDateTime({2026, 3, 7}, {23, 59, 59}); };
    sources.randomBelow = [next = -13](int bound) mutable { return (next += 13) % bound; };
    sources.guid = [] { return u"{0A-1b}"_s; };
    return sources;
}

TEST(FileNames, AreThePrefixTheVariableAndTheExtension) {
    using Row = std::tuple<const char*, int, int, const char*>;
    for (const auto& [prefix, variable, type, name] :
         {Row{"Bildname", 0, 0, "Bildname.jpg"}, Row{"Bildname", 1, 0, "Bildname2026_03_07.jpg"},
          Row{"Bildname", 2, 1, "Bildname{0A-1b}.jp2"}, Row{"", 3, 0, "anan0dqd.jpg"},
          Row{"x_", 4, 1, "x_anan0d.jp2"}, Row{"x", 5, 2, "xanan"}, Row{"A B", 6, -1, "A B"},
          Row{"", -1, 0, ".jpg"}}) {
        EXPECT_EQ(GetFileName(QString::fromUtf8(prefix), variable, type, FixedSources()),
                  QString::fromUtf8(name));
    }
    static const QRegularExpression made(
        u"^\\{[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}\\}[a-z0-9]{8}$"_s);
    const NameSources real;
    const auto name = [&] { return GetFileName(GetFileName({}, 2, 2, real), 3, 2, real); };
    EXPECT_TRUE(made.match(name()).hasMatch()) << name().toStdString();
    EXPECT_NE(name(), name());
    EXPECT_LE(real.now().msecsTo(QDateTime::currentDateTime()), 60'000);
}

TEST(NameParts, HaveTheirFixedForms) {
    const NameSources sources = FixedSources();
    EXPECT_EQ(GetRandomStr(8, sources), u"anAN0dqD"_s);
    EXPECT_EQ(GetMonthDir(sources), u"2026\\03"_s) << "stored with a backslash everywhere";
    EXPECT_EQ(GetDatePrefix(sources), u"2026-03-07"_s);
    EXPECT_EQ(GetArchivFileName(7, sources), u"2026_03_00007"_s);
    EXPECT_EQ(GetArchivFileName(1234567, sources), u"2026_03_1234567"_s);
    NameSources early;
    early.now = [] { return QDateTime({812, 12, 31}, {}); };
    EXPECT_EQ(GetDatePrefix(early), u"812-12-31"_s) << "the year is not padded";
    EXPECT_EQ(DelLastBackslash(u"/a/b//"_s), u"/a/b/"_s);
    EXPECT_EQ(DelLastBackslash(u"/a/b"_s) + DelLastBackslash({}), u"/a/b"_s);
    EXPECT_EQ(GetNameWithSuffix(u"/photos.d/max.2024.png"_s, u"_kdr"_s), u"max.2024_kdr"_s);
    EXPECT_EQ(GetNameWithSuffix({}, u"_kdr"_s), u"_kdr"_s);
}

}  // namespace
}  // namespace kadrona::core
