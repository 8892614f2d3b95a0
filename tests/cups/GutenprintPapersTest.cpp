// The borders that Gutenprint leaves without naming them, and where it puts a page.

#include <gtest/gtest.h>

#include "printing/cups/service/GutenprintPapers.h"

using namespace kadrona::printing::cups;

namespace {

constexpr auto Off = GutenprintSetting::Borderless::Off;
constexpr auto On = GutenprintSetting::Borderless::On;
constexpr auto Unknown = GutenprintSetting::Borderless::Unknown;

struct Row {
    const char* name;
    const char* paper;
    QMarginsF named;
    GutenprintSetting setting;
    QMarginsF border;
    QRectF spread;
};

// Borders are what the library answers (stp_get_imageable_area), places what the streams show.
const Row Rows[] = {
    {"Canon", "A4", {}, {"3004500_canon", "Auto", Off}, {10, 9, 10, 15}, {0, 9, 600, 800}},
    {"CanonBorderless", "A4", {}, {"3004500_canon", "", On}, {0, 0, 8, 6}, {-8, -6, 600, 800}},
    {"CanonOnPaperWithEdges",
     "A4",
     {18, 45, 18, 45},
     {"3004500_canon", "", On},
     {18, 45, 18, 45},
     {0, 0, 600, 800}},
    {"Epson", "A4", {}, {"63_escp2", "", Off}, {9, 0, 9, 9}, {0, 0, 600, 800}},
    {"EpsonBorderless", "A4", {}, {"63_escp2", "", On}, {}, {0, 0, 600, 800}},
    {"EpsonBothSides", "A4", {}, {"63_escp2", "", Off, true}, {9, 27, 9, 27}, {0, 27, 600, 800}},
    {"LargeEpson", "A4", {}, {"48_escp2", "", Off}, {9, 9, 9, 40}, {0, 9, 600, 800}},
    {"RollStretched",
     "A4",
     {9, 60, 9, 140},
     {"48_escp2", "Roll", Unknown},
     {9, 0, 9, 0},
     {0, -80, 600, 800 * 800.0 / 600}},
    {"OldDye", "c8x10", {}, {"1_dyesub", "", Unknown}, {58, 84, 59, 85}, {0, 84, 600, 800}},
    {"NobodyKnows", "A4", {}, {"1_new", "", Off}, {10, 9, 10, 40}, {0, 9, 600, 800}},
};

class GutenprintPapersTest : public ::testing::TestWithParam<Row> {};

TEST_P(GutenprintPapersTest, LeavesItsBorderAndPutsThePage) {
    const Row& row = GetParam();
    const Paper paper{row.paper, {}, {600, 800}, row.named};
    EXPECT_EQ(BorderOf(paper, row.setting), row.border);
    EXPECT_EQ(SpreadOf(paper, row.setting), row.spread);
}

INSTANTIATE_TEST_SUITE_P(Models, GutenprintPapersTest, ::testing::ValuesIn(Rows),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(GutenprintPapers, ACanonDoesNotPrintItsLastBlockWhereThatIsFull) {
    const Paper a4{"A4", {}, {595, 842}, {}};
    EXPECT_DOUBLE_EQ(BorderOf(a4, {"3004500_canon", "", Off}).bottom(), 15 + 16 * 72 / 600.0);
}

}  // namespace
