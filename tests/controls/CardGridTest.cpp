#include <QBuffer>
#include <QHelpEvent>
#include <QImage>
#include <QScrollBar>
#include <QToolTip>
#include <numeric>
#include <set>

#include "controls/cards/CardGrid.h"
#include "platform/Error.h"
#include "tests/support/Windows.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace kadrona::controls {
namespace {

using testing::SendWheel;

using ::testing::SizeIs;

QByteArray Jpeg(QSize size, QColor color) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(color);
    QBuffer buffer;
    image.save(&buffer, "jpeg", 100);
    return buffer.data();
}

/// Remembers what it was asked for, and how often.
class Source : public CardSource {
 public:
    Card ReadCard(qint64 key) override {
        ++asked[key];
        if (key == broken) {
            throw platform::Error(u"Datenbankfehler"_s);
        }
        return {u"heute"_s, u"Bild %1"_s.arg(key), {}, texts.value(key)};
    }
    QByteArray ReadPicture(qint64 key) override { return pictures.value(key, picture); }

    std::map<qint64, int> asked;
    qint64 broken = 0;
    QHash<qint64, QString> texts;
    QHash<qint64, QByteArray> pictures;
    QByteArray picture = Jpeg({140, 180}, Qt::red);
};

std::vector<qint64> Keys(int count) {
    std::vector<qint64> keys(static_cast<size_t>(count));
    std::iota(keys.rbegin(), keys.rend(), 1);
    return keys;
}

class CardGridTest : public ::testing::Test {
 protected:
    CardGridTest() {
        grid.SetSource(&source);
        grid.SetLoadingBudget(10s);
        grid.resize(620, 700);
        grid.show();
        grid.setFocus();
    }

    void Fill(int count) {
        grid.SetCards(Keys(count), CardGrid::Position::Start);
        Paint();
    }

    QImage Paint() {
        QCoreApplication::processEvents();
        return grid.viewport()->grab().toImage();
    }

    qint64 Press(Qt::Key key) {
        QTest::keyClick(&grid, key);
        return *grid.Current();
    }

    /// The red picture, which coding leaves red enough.
    bool ShowsPicture(int index) {
        const QRect card = grid.CardRectangle(index);
        const QColor color = Paint().pixelColor(card.center().x(), card.top() + 120);
        return color.red() > 250 && color.green() < 5;
    }

    Source source;
    CardGrid grid;
};

TEST_F(CardGridTest, AsksOnlyForWhatIsVisibleAndOnlyOnce) {
    Fill(100'000);
    const auto visible =
        static_cast<size_t>(std::ranges::count_if(grid.Cards(), [this, index = 0](qint64) mutable {
            return grid.CardRectangle(index++).intersects(grid.viewport()->rect());
        }));
    EXPECT_LT(visible, 20U);
    EXPECT_THAT(source.asked, SizeIs(visible));
    QScrollBar* bar = grid.verticalScrollBar();
    for (const int place : {3, 0, bar->maximum() / 2, bar->maximum(), 0}) {
        bar->setValue(place);
        Paint();
    }
    EXPECT_LE(source.asked.size(), 4 * visible);
    EXPECT_TRUE(source.asked.contains(1));
    for (const auto& [key, times] : source.asked) {
        EXPECT_EQ(times, 1) << key;
    }
}

TEST_F(CardGridTest, AFrameOverItsBudgetGoesOnInTheNext) {
    grid.SetLoadingBudget(0us);
    Fill(50);
    const size_t first = source.asked.size();
    EXPECT_LT(first, 5U);
    EXPECT_TRUE(QTest::qWaitFor([&] { return source.asked.size() >= 6; }));
}

TEST_F(CardGridTest, KeysMoveTheCurrentCardAndKeepItVisible) {
    Fill(20);  // keys 20 ... 1 in rows of three
    ASSERT_EQ(grid.CardRectangle(3).left(), grid.CardRectangle(0).left());
    const int pageRows = 2;
    struct Row {
        Qt::Key key;
        qint64 current;
    };
    for (const auto& [key, current] :
         {Row{Qt::Key_Left, 20}, Row{Qt::Key_Up, 20}, Row{Qt::Key_Right, 19}, Row{Qt::Key_Down, 16},
          Row{Qt::Key_Up, 19}, Row{Qt::Key_PageDown, 19 - 3 * pageRows}, Row{Qt::Key_End, 1},
          Row{Qt::Key_Right, 1}, Row{Qt::Key_Down, 1}, Row{Qt::Key_Up, 4}, Row{Qt::Key_Right, 3},
          Row{Qt::Key_Down, 1}, Row{Qt::Key_PageUp, 1 + 3 * pageRows}, Row{Qt::Key_Home, 20},
          Row{Qt::Key_PageUp, 20}}) {
        EXPECT_EQ(Press(key), current) << key;
        const QRect card = grid.CardRectangle(static_cast<int>(20 - current));
        EXPECT_TRUE(grid.viewport()->rect().contains(card)) << key;
    }
    QSignalSpy opened(&grid, &CardGrid::CardOpened);
    Press(Qt::Key_Return);
    EXPECT_EQ(opened.value(0).value(0).toLongLong(), 20);
}

TEST_F(CardGridTest, ANotchOfTheWheelIsHalfARow) {
    Fill(300);
    const int row = grid.CardRectangle(3).top() - grid.CardRectangle(0).top();
    for (const int notches : {-1, -3, 1}) {
        const int before = grid.verticalScrollBar()->value();
        SendWheel(*grid.viewport(), {9, 9}, 120 * notches);
        EXPECT_NEAR(grid.verticalScrollBar()->value() - before, -notches * row / 2.0, 9) << notches;
    }
}

TEST_F(CardGridTest, ForeignTextsAreShownAsTheyAreAndHarmless) {
    source.texts[1] = u"<img src='/etc/hostname'>\u202egpj.\n"_s + QString(200, u'x');
    Fill(1);
    QHelpEvent help(QEvent::ToolTip, grid.CardRectangle(0).center(), {});
    QCoreApplication::sendEvent(grid.viewport(), &help);
    EXPECT_TRUE(QToolTip::text().contains(u"&lt;img src='/etc/hostname'&gt;\ufffdgpj.\ufffdx"_s))
        << QToolTip::text().toStdString();
    const QString spoken = grid.model()->index(0, 0).data(Qt::AccessibleTextRole).toString();
    EXPECT_TRUE(spoken.startsWith(u"Bild 1, heute, <img src='/etc/hostname'>\ufffdgpj"_s))
        << spoken.toStdString();
}

TEST_F(CardGridTest, ADoubleClickOpensTheCardUnderItAlone) {
    Fill(2);
    QSignalSpy opened(&grid, &CardGrid::CardOpened);
    const QPoint second = grid.CardRectangle(1).center();
    QTest::mouseDClick(grid.viewport(), Qt::RightButton, {}, second);
    QTest::mouseDClick(grid.viewport(), Qt::LeftButton, {}, second + QPoint(0, 350));
    EXPECT_EQ(opened.count(), 0);
    QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, second);
    QTest::mouseDClick(grid.viewport(), Qt::LeftButton, {}, second);
    EXPECT_EQ(opened.value(0).value(0).toLongLong(), 1);
    EXPECT_EQ(grid.Current(), 1);
}

TEST_F(CardGridTest, OtherCardsKeepTheCurrentOneWhereAskedTo) {
    Fill(300);
    Press(Qt::Key_End);
    Press(Qt::Key_Left);
    grid.SetCards(Keys(200), CardGrid::Position::Keep);
    EXPECT_EQ(grid.Current(), 2);
    EXPECT_TRUE(grid.viewport()->rect().contains(grid.CardRectangle(198)));
    grid.SetCards({9, 8, 2}, CardGrid::Position::Start);
    EXPECT_EQ(grid.Current(), 9);
    grid.SetCards({7, 6}, CardGrid::Position::Keep);
    EXPECT_EQ(grid.Current(), 7);
    QTest::keyClick(&grid, Qt::Key_Right, Qt::ShiftModifier);
    grid.SetCards({8, 7, 5, 6}, CardGrid::Position::Keep);
    EXPECT_EQ(grid.Selected(), std::vector<qint64>({7, 6})) << "several stay selected";
    grid.SetCards({}, CardGrid::Position::Keep);
    EXPECT_FALSE(grid.Current());
    QSignalSpy opened(&grid, &CardGrid::CardOpened);
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Down, Qt::Key_End, Qt::Key_PageUp}) {
        QTest::keyClick(&grid, key);
    }
    EXPECT_EQ(opened.count(), 0);
    Paint();
}

TEST_F(CardGridTest, ResizingKeepsWhatTheUserLooksAt) {
    Fill(1000);
    grid.verticalScrollBar()->setValue(40'000);
    const int looked = 3 * (40'000 / (grid.CardRectangle(3).top() - grid.CardRectangle(0).top()));
    const int top = grid.CardRectangle(looked).top();
    for (const int width : {420, 1300, 240}) {
        grid.resize(width, 700);
        Paint();
        EXPECT_EQ(grid.CardRectangle(looked).top(), top) << width;
    }
}

TEST_F(CardGridTest, WhatCannotBeReadOrDecodedHarmsNoOtherCard) {
    source.broken = 5;
    source.pictures[4] = "not a picture";
    source.pictures[3] = source.picture.left(source.picture.size() / 2);
    source.pictures[2] = {};
    source.texts[1] = QString(1'000'000, u'x') + QChar(0) + u"\n%1 <b>"_s;
    Fill(6);
    for (int index = 0; index < 6; ++index) {
        EXPECT_EQ(ShowsPicture(index), index == 0 || index == 5) << index;
    }
    EXPECT_EQ(source.asked.size(), 6U);

    source.broken = 0;
    grid.Reload(5);
    EXPECT_TRUE(ShowsPicture(1));
    EXPECT_EQ(source.asked[5], 2);
    EXPECT_EQ(source.asked[6], 1);
}

}  // namespace
}  // namespace kadrona::controls
