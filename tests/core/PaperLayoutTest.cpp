#include <gtest/gtest.h>

#include <QRegion>
#include <vector>

#include "core/sheet/CollectedSheet.h"
#include "core/sheet/CuttingMarks.h"
#include "core/sheet/PaperCanvas.h"
#include "core/sheet/PaperLayout.h"
#include "core/sheet/PaperSheet.h"
#include "core/sheet/PaperSize.h"
#include "core/sheet/SheetOrder.h"
#include "core/sheet/ShelfPacking.h"
#include "platform/Error.h"
#include "tests/support/Errors.h"
#include "tests/support/PixelMatchers.h"

namespace kadrona::core {
namespace {

using namespace Qt::StringLiterals;

constexpr QSize Passport(35'000, 45'000);

QRect Grown(const QRect& rectangle, int by) {
    return rectangle.marginsAdded({by, by, by, by});
}

/// Nothing overlaps, all keep their distance from each other and from the paper's edges.
void ExpectApart(const std::vector<QRect>& photos, QSize paper, int edge, int gap) {
    const QRect inside = Grown(QRect(QPoint(), paper), -edge);
    for (size_t i = 0; i < photos.size(); ++i) {
        EXPECT_TRUE(inside.contains(photos[i])) << "photo " << i;
        for (size_t k = 0; k < i; ++k) {
            EXPECT_FALSE(Grown(photos[i], gap).intersects(photos[k])) << i << " and " << k;
        }
    }
}

void ExpectMarksOutside(const std::vector<QRect>& photos, QSize paper) {
    QRegion covered;
    for (const QRect& photo : photos) {
        covered += photo;
    }
    for (const auto kind : {CuttingMarks::Corners, CuttingMarks::Lines, CuttingMarks::Outline}) {
        for (const QRect& mark : MarksAround(photos, {}, paper, kind, MarksOnPaper)) {
            EXPECT_FALSE(covered.intersects(mark)) << "kind " << static_cast<int>(kind);
            EXPECT_TRUE(QRect(QPoint(), paper).contains(mark));
        }
    }
}

/// Counts by laying one beside the other.
int CountedRoom(QSize paper, int edge, int gap, QSize photo) {
    const auto along = [&](int length, int part) {
        int count = 0;
        for (int end = edge + part; end <= length - edge; end += gap + part) {
            ++count;
        }
        return count;
    };
    return along(paper.width(), photo.width()) * along(paper.height(), photo.height());
}

TEST(PaperLayout, WhatProfilesKeepOfAPaperMeansTheSamePaperForEver) {
    QStringList stored;
    for (size_t place = 0; place < NamedPapers.size(); ++place) {
        stored.append(u"%1 %2"_s.arg(StoredPaper(place)).arg(NamedPapers.at(place).key));
    }
    EXPECT_EQ(stored.first(6).join(u", "_s), u"1 10x15, 2 13x18, 3 100x148, 4 A6, 5 A5, 6 A4"_s);
    EXPECT_EQ(StoredPaper(6), OwnPaper + 1);
}

TEST(PaperLayout, EveryPaperTakesWhatFitsInStraightRows) {
    const QSize photos[] = {Passport,         {50'800, 50'800}, {33'000, 48'000},
                            {40'000, 60'000}, {26'000, 32'000}, {50'000, 70'000}};
    const struct { int edge, gap; } spacings[] = {{0, 0}, {3'000, 2'000}, {5'000, 2'000}};
    for (const NamedPaper& paper : NamedPapers) {
        for (const QSize photo : photos) {
            for (const auto& [edge, gap] : spacings) {
                SCOPED_TRACE(::testing::PrintToString(paper.size) + " edge " +
                             std::to_string(edge) + " " + ::testing::PrintToString(photo));
                const PaperLayout layout = LayOutOnPaper({paper.size, edge, gap, photo, {}});
                const int upright = CountedRoom(paper.size, edge, gap, photo);
                const int lying = CountedRoom(paper.size, edge, gap, photo.transposed());
                EXPECT_EQ(layout.photos.size(), std::max(upright, lying));
                EXPECT_EQ(layout.turned, lying > upright);
                EXPECT_EQ(layout.photos.front().size(), layout.turned ? photo.transposed() : photo);
                ExpectApart(layout.photos, paper.size, edge, gap);
                ExpectMarksOutside(layout.photos, paper.size);
                if (const auto text = RoomForText(layout.photos, paper.size)) {
                    std::vector<QRect> all = layout.photos;
                    all.push_back(text->place);
                    ExpectApart(all, paper.size, 0, 0);
                }
            }
        }
    }
}

TEST(PaperLayout, KnownYieldsHold) {
    const struct {
        const char* paper;
        QSize photo;
        std::vector<size_t> yields;  // edge/gap 0/0, 3/2, 5/2 mm
    } table[] = {{"10x15", Passport, {8, 8, 6}},
                 {"A6", Passport, {9, 6, 6}},
                 {"13x18", Passport, {10, 9, 9}},
                 {"A4", Passport, {36, 30, 30}},
                 {"10x15", {50'800, 50'800}, {6}}};
    const int edges[] = {0, 3'000, 5'000};
    for (const auto& row : table) {
        for (size_t i = 0; i < row.yields.size(); ++i) {
            const QSize paper = *PaperSizeOf(QString::fromLatin1(row.paper));
            const PaperLayout layout =
                LayOutOnPaper({paper, edges[i], i == 0 ? 0 : 2'000, row.photo, {}});
            EXPECT_EQ(layout.photos.size(), row.yields[i]) << row.paper << " edge " << edges[i];
        }
    }
}

TEST(PaperLayout, TurnsOnlyWhereMoreOfThoseAskedForFit) {
    const auto laid = [](int count) {
        return LayOutOnPaper({{101'600, 152'400}, 0, 0, Passport, count});
    };
    EXPECT_FALSE(laid(6).turned) << "six fit upright";
    EXPECT_TRUE(laid(7).turned) << "seven fit lying alone";
    EXPECT_EQ(laid(7).photos.size(), 7U);
    EXPECT_EQ(laid(9).photos.size(), 8U);
    EXPECT_EQ(laid(9).room, 8);
    // In the middle, half of what is free at each side.
    EXPECT_EQ(laid(1).photos.front(), QRect(33'300, 53'700, 35'000, 45'000));
    EXPECT_EQ(LayOutOnPaper({Passport, 0, 0, Passport, {}}).room, 1);
}

TEST(PaperSheet, TurnsPhotosToTheLeftAndTakesExactlyAsManyAsFit) {
    QImage photo(2, 1, QImage::Format_RGB32);
    photo.fill(Qt::white);
    photo.setPixel(0, 0, qRgb(0, 0, 0));
    PaperChoice choice;
    choice.paper = QSize(45'000, 70'000);
    choice.edge = choice.gap = 0;
    choice.count = 2;
    const imaging::Pixels sheet =
        CopiesOnPaper(imaging::Pixels(photo), Passport, {25}, choice, SinglePhotoLayout);
    EXPECT_LT(qRed(sheet.ToImage().pixel(5, 33)), 100);
    choice.count = 3;
    EXPECT_THROW(RequiredLayout(choice, Passport, SinglePhotoLayout), platform::Error);
}

TEST(PaperSheet, CopiesThatTouchAreWholeAndLeaveNoLineBetweenThem) {
    PaperChoice choice;
    choice.paper = QSize(210'000, 297'000);
    choice.edge = choice.gap = 0;
    choice.fill = true;
    const imaging::Pixels photo(QImage(33, 48, QImage::Format_RGB32));
    for (const QSize size : {Passport, QSize(33'000, 48'000), QSize(26'000, 32'000)}) {
        SCOPED_TRACE(::testing::PrintToString(size));
        const auto sheet = CopiesOnPaper(photo, size, {300}, choice, SinglePhotoLayout);
        const imaging::Arrangement& arranged = *sheet.Arranged();
        QRect block;
        qint64 area = 0;
        for (const auto& placed : arranged.placed) {
            const QRect copy = arranged.RectangleOf(placed);
            block |= copy;
            area += qint64{copy.width()} * copy.height();
        }
        EXPECT_EQ(area, qint64{block.width()} * block.height());
        EXPECT_NEAR(block.left(), arranged.size.width() - 1 - block.right(), 1);
        EXPECT_NEAR(block.top(), arranged.size.height() - 1 - block.bottom(), 1);
    }
}

TEST(CollectedSheet, KeepsEachPictureAndItsTextOnceAndCoversNone) {
    const imaging::Pixels photo(QImage(33, 48, QImage::Format_RGB32));
    const std::vector<CollectedItem> items{{photo, {33'000, 48'000}, u"Visum"_s, u"a"_s, 4},
                                           {photo, {33'000, 47'000}, u"Visum"_s, u"b"_s, 2}};
    PaperChoice choice;
    choice.paper = QSize(210'000, 100'000);
    choice.gap = 0;
    choice.resolution = {300};
    const auto sheet = MakeCollectedSheet(items, LayOutCollected(items, choice), choice);
    const imaging::Arrangement& arranged = *sheet.Arranged();
    EXPECT_EQ(arranged.pictures.size(), 4U);
    EXPECT_EQ(arranged.placed.size(), 12U);
    QRegion covered;
    for (const auto& placed : arranged.placed) {
        EXPECT_FALSE(covered.intersects(arranged.RectangleOf(placed)));
        covered += arranged.RectangleOf(placed);
    }
}

TEST(CollectedSheet, TakesAsManyAsFitAtTheFinestPicturesResolution) {
    const auto items = [](int count) {
        const auto picture = [](int width) {
            return imaging::Pixels(QImage(width, 45, QImage::Format_RGB32));
        };
        return std::vector<CollectedItem>{{picture(350), Passport, {}, {}, count},
                                          {picture(35), Passport, {}, {}, 1}};
    };
    EXPECT_EQ(CollectedResolution(items(1), {}).value, 254);
    int fit = 0;
    while (LayOutCollected(items(fit + 1), {}).MissingCount() == 0) {
        ++fit;
    }
    EXPECT_GE(fit, 3);
    for (const int more : {1, 2, 3, 4}) {
        EXPECT_EQ(LayOutCollected(items(fit + more), {}).copies.size(), fit + 1U);
    }
}

TEST(PaperLayout, RefusesWhatMakesNoSense) {
    const struct {
        PaperRequest request;
        const char* named;
    } table[] = {{{{30'000, 30'000}, 0, 0, Passport, {}}, "30 x 30 mm"},
                 {{{101'600, 152'400}, 50'000, 0, Passport, {}}, "50 mm"},
                 {{{0, 0}, 0, 0, Passport, {}}, "0 x 0 mm"},
                 {{{101'600, 152'400}, -1, 0, Passport, {}}, "negativ"},
                 {{{101'600, 152'400}, 0, 0, Passport, 0}, "mindestens"},
                 {{{10'000'000, 10'000'000}, 0, 0, {1, 1}, {}}, "2000"}};
    for (const auto& row : table) {
        try {
            LayOutOnPaper(row.request);
            ADD_FAILURE() << row.named;
        } catch (const platform::Error& error) {
            EXPECT_TRUE(error.Text().contains(QString::fromUtf8(row.named))) << error.what();
        }
    }
}

TEST(CuttingMarks, TouchThePhotosEdgesAndStopBeforeTheNext) {
    const std::vector<QRect> photos{{10, 10, 20, 20}, {34, 10, 20, 20}};
    const auto covers = [&](CuttingMarks kind, QPoint point) {
        int count = 0;
        for (const QRect& mark : MarksAround(photos, {{10, 33, 20, 5}}, {70, 50}, kind, {1, 6})) {
            count += mark.contains(point) ? 1 : 0;
        }
        return count;
    };
    EXPECT_EQ(covers(CuttingMarks::Corners, {9, 4}), 1);
    EXPECT_EQ(covers(CuttingMarks::Corners, {30, 4}), 1);
    EXPECT_EQ(covers(CuttingMarks::Corners, {9, 3}), 0) << "longer than a tick";
    EXPECT_EQ(covers(CuttingMarks::Corners, {9, 15}), 0) << "beside the photo";
    EXPECT_EQ(covers(CuttingMarks::Corners, {31, 9}), 1) << "between the photos";
    EXPECT_EQ(covers(CuttingMarks::Lines, {9, 15}), 1);
    EXPECT_EQ(covers(CuttingMarks::Lines, {9, 0}), 1) << "to the paper's edge";
    EXPECT_EQ(covers(CuttingMarks::Outline, {9, 15}), 1);
    EXPECT_EQ(covers(CuttingMarks::Outline, {9, 8}), 0);
    for (int x = 10; x < 30; ++x) {
        EXPECT_EQ(covers(CuttingMarks::Lines, {x, 35}), 0) << "over the text";
    }
}

TEST(ShelfPacking, ThirtyMixedPicturesLieApartWithinAFrame) {
    std::vector<PackItem> items;
    for (const QSize size : {Passport, QSize(26'000, 32'000), QSize(33'000, 48'000)}) {
        items.insert(items.end(), 10, {size, 3'000});
    }
    const QSize paper(210'000, 297'000);
    const auto start = std::chrono::steady_clock::now();
    const auto packed = PackOnShelves(items, paper, 5'000, 2'000);
    const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;
    EXPECT_LT(time.count(), 16) << "a frame of the live preview";
    std::vector<QRect> places;
    for (size_t i = 0; i < items.size(); ++i) {
        if (packed[i]) {
            const QRect& place = packed[i]->place;
            EXPECT_EQ(place.size(), packed[i]->turned ? items[i].size.transposed() : items[i].size);
            places.push_back(place.adjusted(0, 0, 0, items[i].below));
        }
    }
    ExpectApart(places, paper, 5'000, 2'000);
    EXPECT_EQ(places.size(), 30U);
    // Eight passport photos fill a paper of 10 x 15 only where they lie.
    int placed = 0;
    for (const auto& item :
         PackOnShelves(std::vector<PackItem>(9, {Passport}), {101'600, 152'400}, 0, 0)) {
        placed += item ? 1 : 0;
    }
    EXPECT_EQ(placed, 8);
    EXPECT_TRUE(PackOnShelves({{Passport}}, {101'600, 152'400}, 0, 0)[0]->turned) << "lower";
    EXPECT_TRUE(PackOnShelves({{Passport}, {Passport}}, {70'000, 45'000}, 0, 0)[1]);
}

TEST(PaperSize, LengthsAreReadAndRoundedToPixels) {
    EXPECT_EQ(MicrometresOf(u" 2,5"_s), 2'500);
    EXPECT_EQ(PixelsOf(33'000, 300), 390);
    EXPECT_EQ(PixelsOf(-33'000, 300), -390);
}

TEST(SheetOrder, TakesAThousandLinesAndNoMore) {
    const QString line = u"a;b;auto;1\n"_s;
    EXPECT_TRUE(ParseOrder(line.repeated(MostOrderLines)).errors.empty());
    EXPECT_EQ(ParseOrder(line.repeated(MostOrderLines + 1)).errors.size(), 1U);
}

}  // namespace
}  // namespace kadrona::core
