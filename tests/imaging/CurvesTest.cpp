#include <gtest/gtest.h>

#include <QRandomGenerator>

#include "imaging/tone/Curves.h"

namespace kadrona::imaging {

namespace {

using Points = std::vector<CurvePoint>;

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

}  // namespace kadrona::imaging
