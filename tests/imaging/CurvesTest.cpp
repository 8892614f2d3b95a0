#include <gmock/gmock.h>

#include <QRandomGenerator>

#include "ImageMagick.h"
#include "imaging/tone/Curves.h"

using namespace Qt::StringLiterals;

namespace kadrona::imaging {

namespace {

using Points = std::vector<CurvePoint>;

QImage GreyRamp() {
    QImage ramp(256, 1, QImage::Format_RGB32);
    for (int level = 0; level < 256; ++level) {
        ramp.setPixel(level, 0, qRgb(level, level, level));
    }
    return ramp;
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
    for (size_t level = 0; level < table.size(); ++level) {
        EXPECT_EQ(table[level], level);
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
        const LevelTable table = curve.Table();
        const Points& sorted = curve.Points();
        for (int level = 0; level < sorted.front().input; ++level) {
            ASSERT_EQ(table.at(size_t(level)), sorted.front().output);
        }
        for (int level = sorted.back().input; level < 256; ++level) {
            ASSERT_EQ(table.at(size_t(level)), sorted.back().output);
        }
        for (size_t i = 1; i < sorted.size(); ++i) {
            const int direction = sorted[i].output < sorted[i - 1].output ? -1 : 1;
            ASSERT_EQ(table.at(size_t(sorted[i].input)), sorted[i].output);
            for (int level = sorted[i - 1].input; level < sorted[i].input; ++level) {
                const int step = table.at(size_t(level) + 1) - table.at(size_t(level));
                ASSERT_GE(step * direction, 0) << "at level " << level;
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
    EXPECT_EQ(pixels[0], qRgba(200, 120, 100, 255));
    EXPECT_EQ(pixels[1], qRgba(100, 120, 200, 128));

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

TEST(CurveFilter, StretchesLikeImageMagick) {
    if (!IsInstalled(u"convert"_s)) {
        GTEST_SKIP() << "ImageMagick is not installed";
    }
    CurveSet set;
    set[CurveChannel::Rgb] = Curve({{51, 0}, {204, 255}});
    const QImage expected = ByImageMagick(GreyRamp(), {u"-level"_s, u"20%,80%"_s});
    const QImage actual = Filtered(Pixels(GreyRamp()), *CurveFilter(set)).ToImage();
    EXPECT_LE(LargestDifference(actual, expected), 1);
}

}  // namespace kadrona::imaging
