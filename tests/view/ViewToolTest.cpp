#include <gtest/gtest.h>

#include <QPainter>
#include <QTest>

#include "imaging/view/ImageView.h"
#include "imaging/view/ViewTool.h"
#include "tests/support/Input.h"
#include "tests/support/PixelMatchers.h"

namespace kadrona::imaging::view {
namespace {

using namespace kadrona::testing;

class Inverting : public PixelFilter {
 public:
    void Apply(std::span<QRgb> pixels) const override {
        for (QRgb& pixel : pixels) {
            pixel ^= 0x00ffffff;
        }
    }
};

class Recorder : public ViewTool {
 public:
    void Press(const ToolPointer& pointer) override { presses.append(pointer.photo); }
    void Move(const ToolPointer& pointer) override { moves.append(pointer.photo); }
    void Release() override { ++releases; }
    bool Wheel(double notches, Qt::KeyboardModifiers) override {
        wheel += notches;
        return true;
    }
    bool Key(const QKeyEvent& event) override { return event.key() == Qt::Key_Plus; }
    QRectF OverlayArea() const override { return {10, 10, 20, 20}; }
    void Paint(QPainter& painter) const override { painter.fillRect(OverlayArea(), Qt::red); }

    QList<QPointF> presses;
    QList<QPointF> moves;
    int releases = 0;
    double wheel = 0;
};

class ViewToolTest : public ::testing::Test {
 protected:
    ViewToolTest() {
        view_.SetAutomaticFit(false);
        view_.resize(300, 200);
        view_.show();
    }

    void Open(QSize size, double percent) {
        image_.Open(Pixels(TestPicture(size.width(), size.height())), DotsPerInch{300});
        view_.SetZoomPercent(percent);
    }

    void Press(QPointF at, Qt::MouseButton button = Qt::LeftButton) {
        SendMouse(view_, QEvent::MouseButtonPress, at, button);
    }
    QImage Grab() { return Grabbed(view_); }

    LayeredImage image_;
    ImageView view_{image_};
    Recorder tool_;
};

TEST_F(ViewToolTest, ThePreviewFilterChangesWhatIsSeenOfThePhotoAlone) {
    for (const double percent : {100.0, 37.0, 250.0}) {
        Open({120, 90}, percent);
        image_.AddLayer(
            {Pixels(Filled({2, 2}, qRgb(10, 20, 30))), QRect(20, 20, 30, 30), true, false});
        const QImage plain = Grab();
        view_.SetPreviewFilter(std::make_shared<Inverting>());
        const QImage filtered = Grab();
        const QPoint onLayer = view_.ToWidget({35, 35}).toPoint();
        const QPoint onPhoto = view_.ToWidget({80, 60}).toPoint();
        EXPECT_EQ(filtered.pixel(onLayer), qRgb(10, 20, 30));
        EXPECT_EQ(filtered.pixel(onPhoto), plain.pixel(onPhoto) ^ 0x00ffffff);
        EXPECT_EQ(image_.Photo().Tile().pixel(5, 5), TestPicture(120, 90).pixel(5, 5));
        view_.SetPreviewFilter(nullptr);
        EXPECT_TRUE(SamePixels(Grab(), plain));
        view_.SetTool(&tool_);
        EXPECT_EQ(Grab().pixel(15, 15), 0xffff0000) << "the tool's overlay";
        view_.SetTool(nullptr);
        EXPECT_TRUE(SamePixels(Grab(), plain));
    }
}

TEST_F(ViewToolTest, TheToolGetsTheLeftButtonInPhotoPixelsAndNothingIsDragged) {
    Open({100, 80}, 200);
    image_.AddLayer({Pixels(TestPicture(10, 10)), QRect(10, 10, 50, 50)});
    view_.SetTool(&tool_);
    const QPointF at = view_.ToWidget({30.5, 20.5});
    Drag(view_, {at, at + QPointF(8, 4)});
    EXPECT_EQ(tool_.presses, QList<QPointF>{QPointF(30.5, 20.5)});
    EXPECT_EQ(tool_.moves, QList<QPointF>{QPointF(34.5, 22.5)});
    EXPECT_EQ(tool_.releases, 1);
    EXPECT_EQ(image_.LayerAt(1).rectangle, QRect(10, 10, 50, 50));
    Press(at, Qt::RightButton);
    EXPECT_EQ(tool_.presses.size(), 1);

    Press(at);
    SendMouse(view_, QEvent::MouseMove, at, Qt::NoButton);
    EXPECT_EQ(tool_.releases, 2) << "a release that went elsewhere";
    Press(at);
    view_.SetTool(nullptr);
    EXPECT_EQ(tool_.releases, 3);
    Press(at);
    EXPECT_EQ(tool_.presses.size(), 3);
}

TEST_F(ViewToolTest, PanningStaysWithTheViewAndTheWheelGoesToTheTool) {
    Open({1000, 1000}, 100);
    view_.SetTool(&tool_);
    SendWheel(view_, {50, 50}, 240);
    QTest::keyClick(&view_, Qt::Key_Plus);
    EXPECT_EQ(tool_.wheel, 2);
    EXPECT_EQ(view_.ZoomPercent(), 100);
    view_.SetInteraction(ImageView::Interaction::Pan);
    const QPointF before = view_.Middle();
    Drag(view_, {{50, 50}, {60, 55}});
    EXPECT_TRUE(tool_.presses.isEmpty());
    EXPECT_EQ(before - view_.Middle(), QPointF(10, 5));
    SendWheel(view_, {50, 50}, 240);
    EXPECT_GT(view_.ZoomPercent(), 100);
}

// What is repainted after an edit is what a view that never saw the photo before paints.
TEST_F(ViewToolTest, AnEditShowsAsIfAllWereDrawnAnew) {
    for (const double percent : {7.0, 23.0, 50.0, 100.0, 170.0, 400.0}) {
        Open({2300, 1500}, percent);
        Grab();
        for (const QRect& area :
             {QRect(1100, 740, 60, 30), QRect(1023, 700, 3, 90), QRect(0, 0, 5, 5)}) {
            image_.EditPhoto(area,
                             [&](QImage& photo) { QPainter(&photo).fillRect(area, Qt::magenta); });
        }
        const QImage edited = Grab();
        image_.ChangePhoto(Pixels(image_.Photo().Tile().copy()));
        EXPECT_TRUE(SamePixels(edited, Grab())) << percent;
    }
}

}  // namespace
}  // namespace kadrona::imaging::view
