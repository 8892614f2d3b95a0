#include <QRandomGenerator>

#include "WriterFixture.h"
#include "imaging/tone/CurveFile.h"
#include "imaging/tone/Curves.h"
#include "platform/AtomicFile.h"
#include "tests/support/Errors.h"

using namespace Qt::StringLiterals;

namespace kadrona::imaging {

namespace {

using Points = std::vector<CurvePoint>;

/// 16-bit big-endian words.
QByteArray Words(std::initializer_list<int> words) {
    QByteArray bytes;
    for (const int word : words) {
        bytes.append(static_cast<char>(word >> 8)).append(static_cast<char>(word));
    }
    return bytes;
}

/// A curve of `count` points.
Curve Detailed(int count) {
    std::vector<CurvePoint> points;
    points.reserve(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i) {
        points.push_back({i * 3, 255 - i});
    }
    return Curve(points);
}

CurveSet SomeCurves() {
    CurveSet set;
    set[CurveChannel::Rgb] = Curve({{0, 0}, {128, 160}, {255, 255}});
    set[CurveChannel::Green] = Curve({{10, 20}, {200, 250}});
    return set;
}

}  // namespace

TEST(Curve, BringsPointsInOrder) {
    const struct {
        const char* name;
        Points given;
        Points expected;
    } cases[] = {
        {"none", {}, {{0, 0}, {255, 255}}},
        {"one", {{100, 50}}, {{0, 0}, {255, 255}}},
        {"one, twice", {{100, 50}, {100, 60}}, {{0, 0}, {255, 255}}},
        {"unsorted", {{200, 3}, {10, 1}, {100, 2}}, {{10, 1}, {100, 2}, {200, 3}}},
        {"the last of one input", {{0, 9}, {0, 1}, {9, 2}, {0, 3}}, {{0, 3}, {9, 2}}},
        {"beyond the levels", {{-5, 300}, {999, -1}}, {{0, 255}, {255, 0}}},
    };
    for (const auto& example : cases) {
        EXPECT_EQ(Curve(example.given).Points(), example.expected) << example.name;
    }
}

TEST(Curve, IsIdentityOnlyWhereNoLevelChanges) {
    EXPECT_TRUE(Curve().IsIdentity());
    EXPECT_TRUE(Curve({{0, 0}, {7, 7}, {100, 100}, {255, 255}}).IsIdentity());
    EXPECT_FALSE(Curve({{1, 1}, {255, 255}}).IsIdentity()) << "0 becomes 1";
    EXPECT_FALSE(Curve({{0, 0}, {254, 254}}).IsIdentity());
    EXPECT_FALSE(Curve({{0, 0}, {7, 8}, {255, 255}}).IsIdentity());
    const LevelTable table = Curve({{0, 0}, {7, 7}, {100, 100}, {255, 255}}).Table();
    const LevelTable stretched = Curve({{51, 0}, {204, 255}}).Table();
    for (size_t level = 0; level < table.size(); ++level) {
        EXPECT_EQ(table[level], level);
        const double fifths = std::clamp((static_cast<double>(level) - 51) * 5 / 3, 0.0, 255.0);
        EXPECT_NEAR(stretched[level], fifths, 0.51) << "a straight line between two points";
    }
}

TEST(Curve, GoesThroughItsPointsAndNeverBeyondThem) {
    QRandomGenerator random(7);
    for (int round = 0; round < 500; ++round) {
        Points points;
        for (int i = random.bounded(2, 20); i > 0; --i) {
            points.push_back({random.bounded(256), random.bounded(256)});
        }
        const Curve curve(points);
        // The ends go on level.
        Points sorted = curve.Points();
        sorted.insert(sorted.begin(), {0, sorted.front().output});
        sorted.push_back({255, sorted.back().output});
        const LevelTable table = curve.Table();
        for (size_t i = 1; i < sorted.size(); ++i) {
            const auto [low, high] = std::minmax(sorted[i - 1].output, sorted[i].output);
            const int direction = sorted[i].output < sorted[i - 1].output ? -1 : 1;
            ASSERT_EQ(table.at(size_t(sorted[i].input)), sorted[i].output);
            for (auto level = size_t(sorted[i - 1].input); level < size_t(sorted[i].input);
                 ++level) {
                ASSERT_TRUE(table.at(level) >= low && table.at(level) <= high) << level;
                ASSERT_GE((table.at(level + 1) - table.at(level)) * direction, 0) << level;
            }
        }
    }
}

TEST(Curve, IsSmoothAtItsPoints) {
    // A corner would show as a jump of the steps' height.
    const LevelTable table = Curve({{0, 0}, {64, 32}, {128, 140}, {255, 255}}).Table();
    for (size_t level = 2; level < table.size(); ++level) {
        const int before = table[level - 1] - table[level - 2];
        const int after = table[level] - table[level - 1];
        EXPECT_LE(std::abs(after - before), 2) << "at level " << level;
    }
}

TEST(CurveFilter, TakesEachChannelThroughItsOwnCurveFirst) {
    CurveSet set;
    set[CurveChannel::Rgb] = Curve({{0, 100}, {255, 200}});
    set[CurveChannel::Red] = Curve({{0, 255}, {255, 0}});
    set[CurveChannel::Green] = Curve({{0, 51}, {255, 51}});
    EXPECT_EQ(set.PointCount(), 8);
    std::vector<QRgb> pixels{0xff000000, 0x80ffffff};
    CurveFilter(set)->Apply(pixels);
    EXPECT_EQ(pixels, (std::vector{qRgba(200, 120, 100, 255), qRgba(100, 120, 200, 128)}));

    // Rounded between the two, the levels of one tenth would all be lost.
    set = {};
    set[CurveChannel::Blue] = Curve({{0, 0}, {255, 25}});
    set[CurveChannel::Rgb] = Curve({{0, 0}, {25, 255}});
    for (int level = 0; level < 256; ++level) {
        std::vector<QRgb> pixel{qRgb(0, 0, level)};
        CurveFilter(set)->Apply(pixel);
        EXPECT_EQ(qBlue(pixel[0]), level);
    }
}

class CurveFileTest : public WriterTest {
 protected:
    CurveSet Read(const QByteArray& bytes) const {
        platform::WriteFileAtomically(path_, bytes);
        return ReadCurveFile(path_);
    }

    QByteArray Written(const CurveSet& set) const {
        WriteCurveFile(path_, set);
        return platform::ReadWholeFile(path_, 1000);
    }

    /// Expects that reading fails with an error that names the file and this reason.
    void ExpectRefused(const QByteArray& bytes, const QString& reason) const {
        const QString text = testing::TextOf<CurveFileError>([&] { Read(bytes); });
        EXPECT_TRUE(text.contains(path_) && text.contains(reason)) << qPrintable(text);
    }

    const QString path_ = PathOf(u"Weiße Wand 100 %1.acv"_s);
};

TEST_F(CurveFileTest, WritesTheWordsOfTheFormat) {
    const QByteArray identity = Words({2, 0, 0, 255, 255});
    EXPECT_EQ(Written({}), Words({4, 5}) + identity.repeated(5));
    EXPECT_EQ(Written(SomeCurves()), Words({4, 5, 3, 0, 0, 160, 128, 255, 255}) + identity +
                                         Words({2, 20, 10, 250, 200}) + identity + identity);
    EXPECT_EQ(ReadCurveFile(path_), SomeCurves());
}

TEST_F(CurveFileTest, TakesFiftyEightPointsAndNoMore) {
    CurveSet set;
    set[CurveChannel::Rgb] = Detailed(52);
    ASSERT_EQ(set.PointCount(), MaximumCurvePoints);
    EXPECT_EQ(Written(set).size(), 22 + 4 * 58);
    EXPECT_EQ(ReadCurveFile(path_), set);

    const auto failure = [this](const CurveSet& tooMany) {
        return testing::TextOf<CurveFileError>([&] { WriteCurveFile(path_, tooMany); });
    };
    CurveSet more = set;
    more[CurveChannel::Blue] = Detailed(3);
    EXPECT_EQ(failure(more),
              u"Die Kurvenvorlage „%1“ konnte nicht gespeichert werden: Die Kurven haben zusammen "
              "59 Punkte, in eine Vorlage passen höchstens 58. Bitte entfernen Sie mindestens "
              "einen Punkt und speichern Sie noch einmal."_s.arg(path_));
    more[CurveChannel::Red] = Detailed(80);
    EXPECT_TRUE(failure(more).contains(u"137 Punkte"_s));
    EXPECT_TRUE(failure(more).contains(u"mindestens 79 Punkte"_s));
    EXPECT_EQ(ReadCurveFile(path_), set) << "the older file stays";
}

TEST_F(CurveFileTest, ReadsWhatOtherProgramsWrite) {
    const QByteArray rgb = Words({3, 0, 0, 160, 128, 255, 255});
    const QByteArray green = Words({2, 20, 10, 250, 200});
    const QByteArray identity = Words({2, 0, 0, 255, 255});
    const QByteArray four = rgb + identity + green + identity;
    const QByteArray full = Words({4, 5}) + four + identity;
    CurveSet onlyRgb;
    onlyRgb[CurveChannel::Rgb] = SomeCurves()[CurveChannel::Rgb];

    const struct {
        const char* name;
        QByteArray bytes;
        CurveSet expected;
    } cases[] = {
        {"version 1", Words({1, 5}) + four + identity, SomeCurves()},
        {"four curves", Words({4, 4}) + four, SomeCurves()},
        {"one curve", Words({1, 1}) + rgb, onlyRgb},
        {"seven curves", Words({4, 7}) + four + green.repeated(3), SomeCurves()},
        {"bytes after the last curve", full + "more", SomeCurves()},
        {"unsorted, repeated points", Words({4, 1, 5, 255, 255, 9, 0, 0, 0, 1, 128, 160, 128}),
         onlyRgb},
        {"a single point", Words({4, 2, 1, 100, 50}) + identity, {}},
        {"a curve without points", Words({4, 2, 0}) + identity, {}},
    };
    for (const auto& example : cases) {
        EXPECT_EQ(Read(example.bytes), example.expected) << example.name;
    }
    for (qsizetype length = 0; length < full.size(); ++length) {
        ExpectRefused(full.first(length), u"unvollständig"_s);
    }
}

TEST_F(CurveFileTest, RefusesWhatNoCurveCanBe) {
    ExpectRefused(Words({2, 1, 2, 0, 0, 255, 255}), u"Version"_s);
    ExpectRefused("\x89PNG\r\n\x1a\n", u"Version"_s);
    ExpectRefused(Words({4, 0}), u"keine Kurve"_s);
    ExpectRefused(Words({4, 0xffff, 2, 0, 0, 255, 255}), u"unvollständig"_s);
    ExpectRefused(Words({4, 1, 0xffff, 0, 0, 255, 255}), u"65535 Punkte"_s);
    ExpectRefused(Words({4, 1, 2, 0, 0, 255, 256}), u"außerhalb"_s);
    ExpectRefused(Words({4, 1, 2, 0x8000, 0, 255, 255}), u"außerhalb"_s);
    ExpectRefused(QByteArray(1 << 20, '\0'), u"größer"_s);
    QFile::remove(path_);
    EXPECT_THROW(ReadCurveFile(path_), CurveFileError) << "no such file";
    EXPECT_THROW(ReadCurveFile(folder_.path()), CurveFileError) << "a folder";
    EXPECT_THROW(WriteCurveFile(PathOf(u"fehlt/a.acv"_s), {}), CurveFileError);
}

}  // namespace kadrona::imaging
