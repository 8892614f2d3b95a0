#include <gtest/gtest.h>

#include <QGestureEvent>
#include <QPinchGesture>
#include <QProcess>
#include <QSignalSpy>
#include <QTest>
#include <algorithm>
#include <cmath>

#include "imaging/view/ImageView.h"
#include "tests/support/Input.h"
#include "tests/support/PixelMatchers.h"

namespace kadrona::imaging::view {
namespace {

using namespace kadrona::testing;

class ImageViewTest : public ::testing::Test {
 protected:
    ImageViewTest() {
        view_.resize(400, 300);
        view_.show();
        view_.SetAutomaticFit(false);
    }

    void Open(QSize photo, double zoomPercent) {
        image_.Open(Pixels(TestPicture(photo.width(), photo.height())), DotsPerInch{300});
        view_.SetZoomPercent(zoomPercent);
    }

    int AddLayer(const QRect& rectangle) {
        const QImage clear = Filled({35, 45}, 0, QImage::Format_ARGB32_Premultiplied);
        return image_.AddLayer({Pixels(clear), rectangle, true, true, 60});
    }

    QRect Rectangle(int layer) { return image_.LayerAt(layer).rectangle; }
    QPointF OnLayer(int layer) { return view_.ToWidget(QRectF(Rectangle(layer)).center()); }

    void Press(QPointF at) { SendMouse(view_, QEvent::MouseButtonPress, at); }
    void Move(QPointF to, Qt::MouseButton button = Qt::LeftButton) {
        SendMouse(view_, QEvent::MouseMove, to, button);
    }
    void DragBy(QPointF from, QPointF by, Qt::MouseButton button = Qt::LeftButton) {
        Drag(view_, {from, from + by / 2, from + by}, button);
    }

    QImage Grab() { return Grabbed(view_); }

    LayeredImage image_;
    ImageView view_{image_};
};

TEST_F(ImageViewTest, AtFullSizeShowsThePhotosPixels) {
    Open({120, 90}, 100);
    EXPECT_TRUE(SamePixels(Grab().copy(140, 105, 120, 90), TestPicture(120, 90)));
    EXPECT_EQ(Grab().pixel(5, 5), qRgb(255, 255, 255));
    EXPECT_NE(Grab().pixel(200, 105 + 90), qRgb(255, 255, 255)) << "shadow";
    const uchar* pixels = image_.Photo().Tile().constBits();
    image_.EditPhoto({10, 10, 1, 1}, [](QImage& photo) { photo.setPixel(10, 10, 0xffff0000); });
    EXPECT_EQ(image_.Photo().Tile().constBits(), pixels) << "the photo was copied";
    EXPECT_EQ(Grab().pixel(150, 115), 0xffff0000);
}

TEST_F(ImageViewTest, AnEmptyViewIsWhiteAndTakesEveryInput) {
    SendWheel(view_, {200, 150}, 120);
    DragBy({200, 150}, {30, 30});
    QTest::keyClick(&view_, Qt::Key_Left);
    QTest::keyClick(&view_, Qt::Key_Plus);
    EXPECT_TRUE(SamePixels(Grab(), Filled({400, 300}, ColourOf('w'))));
}

TEST_F(ImageViewTest, LayersAreBlendedInOrderByTransparencyAndAlpha) {
    Open({100, 100}, 100);
    image_.EditPhoto({0, 0, 100, 100}, [](QImage& photo) { photo.fill(qRgb(200, 100, 0)); });
    const QImage half = Picture({"b."}, QImage::Format_ARGB32_Premultiplied);
    const int layer = image_.AddLayer({Pixels(half), QRect(20, 20, 40, 40), true, false, 51});
    const auto shown = [&](int x) {
        return Grab().pixelColor(view_.ToWidget({0, 0}).toPoint() + QPoint(x, 40));
    };
    // A fifth of blue over the photo on the left half, nothing on the right one.
    const QImage mixed = Filled({1, 1}, qRgb(160, 80, 51));
    EXPECT_LE(LargestDifference(Filled({1, 1}, shown(25).rgb()), mixed), 1);
    EXPECT_EQ(shown(55), QColor(200, 100, 0));
    EXPECT_EQ(shown(19), QColor(200, 100, 0));
    image_.SetLayerVisible(layer, false, false);
    EXPECT_EQ(shown(25), QColor(200, 100, 0));
}

TEST_F(ImageViewTest, TheWheelAndTwoFingersZoomAtThePointer) {
    Open({3000, 3000}, 50);
    QSignalSpy zoomed(&view_, &ImageView::ZoomChanged);
    const QPointF pointer(111, 222);
    for (const auto modifier : {Qt::NoModifier, Qt::ControlModifier}) {
        for (const int angle : {120, -120, 15, 8, 360, -240}) {
            const QPointF before = view_.ToImage(pointer);
            const double zoom = view_.ZoomPercent();
            SendWheel(view_, pointer, angle, modifier);
            EXPECT_EQ(view_.ZoomPercent() > zoom, angle > 0) << angle;
            const QPointF drift = view_.ToImage(pointer) - before;
            EXPECT_LE(std::hypot(drift.x(), drift.y()) * zoom / 100, 1.5) << angle;
        }
    }
    EXPECT_EQ(zoomed.count(), 12);

    const double before = view_.ZoomPercent();
    QPinchGesture pinch;
    pinch.setScaleFactor(1.5);
    pinch.setCenterPoint(view_.mapToGlobal(pointer));
    QGestureEvent event({&pinch});
    QCoreApplication::sendEvent(&view_, &event);
    EXPECT_NEAR(view_.ZoomPercent(), 1.5 * before, 1e-6) << "two fingers apart";
}

TEST_F(ImageViewTest, AClickPicksTheTopmostLayerAndBesideKeepsTheCurrentOne) {
    Open({390, 290}, 100);
    const int lower = AddLayer({50, 50, 100, 100});
    const int upper = AddLayer({100, 100, 100, 100});
    const auto clicked = [&](QPointF photo) {
        DragBy(view_.ToWidget(photo), {1, 0});
        return image_.CurrentLayer();
    };
    image_.SetLayerVisible(upper, true, false);
    EXPECT_EQ(clicked({75, 125}), lower);
    EXPECT_EQ(clicked({125, 125}), upper);
    EXPECT_EQ(clicked({300, 250}), upper);
    image_.SetLayerVisible(upper, false, false);
    EXPECT_EQ(clicked({125, 125}), lower);
    EXPECT_EQ(Rectangle(lower), QRect(50, 50, 100, 100)) << "a trembling click moves nothing";
}

TEST_F(ImageViewTest, AHandleScalesWithTheAspectRatioAndEscapeTakesItBack) {
    Open({800, 600}, 50);
    const QRect start(200, 150, 350, 270);
    const int layer = AddLayer(start);
    const QPointF corner = view_.ToWidget(start.bottomRight());
    QSignalSpy changed(&view_, &ImageView::LayerChangedByUser);
    Press(corner);
    EXPECT_TRUE(view_.IsInteracting());
    Move(corner + QPointF(-31, -17));
    Move(corner + QPointF(-47, -23));
    EXPECT_EQ(Rectangle(layer), QRect(200, 150, 269, 208));
    EXPECT_EQ(changed.count(), 2);
    EXPECT_EQ(changed.last().first().toInt(), layer);
    QTest::keyClick(&view_, Qt::Key_Escape);
    EXPECT_EQ(Rectangle(layer), start);
    EXPECT_EQ(changed.count(), 3);
    EXPECT_FALSE(view_.IsInteracting());
    Move(corner + QPointF(50, 50));
    EXPECT_EQ(Rectangle(layer), start);

    // The owner removes it, which ends its drag too.
    QObject::connect(&view_, &ImageView::LayerChangedByUser, &view_,
                     [&] { image_.RemoveLayersAbovePhoto(); });
    Press(OnLayer(layer));
    Move({20, 20});
    EXPECT_FALSE(view_.IsInteracting());
    Move({30, 30});
    QTest::keyClick(&view_, Qt::Key_Escape);
    EXPECT_EQ(image_.LayerCount(), 1);
}

// The owner keeps the layer inside of the photo, as the program does.
TEST_F(ImageViewTest, AnOwnersCorrectionIsRespectedWithoutDrift) {
    Open({400, 300}, 100);
    const int layer = AddLayer({300, 100, 70, 90});
    QObject::connect(&view_, &ImageView::LayerChangedByUser, &view_, [&](int changed) {
        QRect rectangle = Rectangle(changed);
        rectangle.moveLeft(std::clamp(rectangle.left(), 0, 400 - rectangle.width()));
        rectangle.moveTop(std::clamp(rectangle.top(), 0, 300 - rectangle.height()));
        image_.SetLayerRectangle(changed, rectangle);
    });
    const QPointF start = OnLayer(layer);
    Press(start);
    for (int x = 10; x <= 200; x += 10) {
        Move(start + QPointF(x, 0));
    }
    EXPECT_EQ(Rectangle(layer), QRect(330, 100, 70, 90));
    Move(start + QPointF(-20, 5));
    EXPECT_EQ(Rectangle(layer), QRect(280, 105, 70, 90));
}

TEST_F(ImageViewTest, ArrowKeysMoveTheCurrentLayerElsePan) {
    Open({2000, 2000}, 100);
    const int layer = AddLayer({100, 100, 70, 90});
    const QPointF before = view_.ToImage({0, 0});
    QTest::keyClick(&view_, Qt::Key_Right);
    QTest::keyClick(&view_, Qt::Key_Up, Qt::ShiftModifier);
    EXPECT_EQ(view_.ToImage({0, 0}), before);
    EXPECT_EQ(Rectangle(layer), QRect(101, 90, 70, 90));
    const QRect start = Rectangle(layer);
    const auto scale = [&](Qt::Key key, int times) {
        while (times-- > 0) {
            QTest::keyClick(&view_, key, Qt::ControlModifier);
        }
    };
    scale(Qt::Key_Up, 3);
    scale(Qt::Key_Right, 2);
    EXPECT_EQ(Rectangle(layer).width(), 80);
    EXPECT_LE((Rectangle(layer).center() - start.center()).manhattanLength(), 2);
    scale(Qt::Key_Left, 100);
    EXPECT_GE(Rectangle(layer).width(), 16);
    scale(Qt::Key_Up, 400);
    EXPECT_EQ(Rectangle(layer).height(), qRound(Rectangle(layer).width() * 45.0 / 35))
        << "many steps keep its shape";
    image_.SetCurrentLayer(0);
    QTest::keyClick(&view_, Qt::Key_Right);
    EXPECT_GT(view_.ToImage({0, 0}).x(), before.x());
    EXPECT_EQ(view_.ToImage({0, 0}).y(), before.y());
}

TEST_F(ImageViewTest, PansBesideTheLayerWithTheMiddleButtonAndInPanOnlyMode) {
    Open({2000, 2000}, 100);
    const int layer = AddLayer({950, 950, 70, 90});
    const QPointF by(30, -20);
    const auto pannedBy = [&](QPointF from, Qt::MouseButton button) {
        const QPointF before = view_.ToImage({0, 0});
        DragBy(from, by, button);
        return before - view_.ToImage({0, 0});
    };
    EXPECT_EQ(pannedBy({20, 20}, Qt::LeftButton), by);
    EXPECT_EQ(pannedBy(OnLayer(layer), Qt::MiddleButton), by);
    view_.SetInteraction(ImageView::Interaction::Pan);
    EXPECT_EQ(view_.cursor().shape(), Qt::OpenHandCursor);
    EXPECT_EQ(pannedBy(OnLayer(layer), Qt::LeftButton), by);
    EXPECT_EQ(Rectangle(layer), QRect(950, 950, 70, 90));
    view_.SetInteraction(ImageView::Interaction::Zoom);
    EXPECT_EQ(pannedBy({20, 20}, Qt::LeftButton), QPointF(0, 0));
    EXPECT_NE(view_.cursor().shape(), Qt::OpenHandCursor);
}

TEST_F(ImageViewTest, CursorsFollowThePointerAndTheOwnersComesBack) {
    Open({400, 300}, 100);
    const int layer = AddLayer({100, 80, 140, 100});
    view_.setCursor(Qt::CrossCursor);
    const auto cursorAt = [this](QPointF photo) {
        Move(view_.ToWidget(photo), Qt::NoButton);
        return view_.cursor().shape();
    };
    EXPECT_EQ(cursorAt({100, 80}), Qt::SizeFDiagCursor);
    EXPECT_EQ(cursorAt({240, 80}), Qt::SizeBDiagCursor);
    EXPECT_EQ(cursorAt({170, 80}), Qt::SizeVerCursor);
    EXPECT_EQ(cursorAt({100, 130}), Qt::SizeHorCursor);
    EXPECT_EQ(cursorAt({150, 120}), Qt::SizeAllCursor);
    EXPECT_EQ(cursorAt({300, 250}), Qt::CrossCursor);
    image_.SetLayerVisible(layer, true, false);
    EXPECT_EQ(cursorAt({100, 80}), Qt::SizeAllCursor) << "no frame, no handles";
}

TEST_F(ImageViewTest, SuspendedItShowsTheLastFrameUntilTheLastResume) {
    Open({120, 90}, 100);
    const QImage before = Grab();
    view_.SuspendPainting();
    view_.SuspendPainting();
    image_.ChangePhoto(Pixels(Filled({120, 90}, ColourOf('r'))));
    EXPECT_TRUE(SamePixels(Grab(), before));
    view_.ResumePainting();
    EXPECT_TRUE(SamePixels(Grab(), before));
    view_.ResumePainting();
    EXPECT_EQ(Grab().pixel(200, 150), qRgb(255, 0, 0));
}

TEST_F(ImageViewTest, AutomaticFitFollowsSizesUntilTheUserZooms) {
    view_.SetAutomaticFit(true);
    Open({752, 100}, 100);
    view_.Fit();
    EXPECT_DOUBLE_EQ(view_.ZoomPercent(), 50.0);
    view_.resize(776, 300);
    EXPECT_DOUBLE_EQ(view_.ZoomPercent(), 100.0);
    image_.ChangePhoto(Pixels(TestPicture(1504, 10)));
    EXPECT_DOUBLE_EQ(view_.ZoomPercent(), 50.0);
    SendWheel(view_, {100, 100}, -360);
    view_.resize(400, 300);
    EXPECT_DOUBLE_EQ(view_.ZoomPercent(), 25.0);
    EXPECT_FALSE(view_.AutomaticFit());
}

TEST_F(ImageViewTest, AFitFollowsTheViewsSizeUntilThePhotoIsMoved) {
    Open({752, 100}, 100);
    view_.FitUntilMoved();
    Grab();
    DragBy({200, 150}, {30, 30});  // all of it shows: nothing moves
    view_.resize(776, 300);
    EXPECT_DOUBLE_EQ(view_.ZoomPercent(), 100.0);
    view_.SetZoomPercent(80);
    view_.resize(400, 300);
    EXPECT_DOUBLE_EQ(view_.ZoomPercent(), 80.0);

    view_.FitUntilMoved();
    image_.ChangePhoto(Pixels(TestPicture(752, 400)));
    view_.resize(776, 300);
    EXPECT_DOUBLE_EQ(view_.ZoomPercent(), 50.0) << "another size keeps the zoom";
}

TEST_F(ImageViewTest, DrawsSmoothlyOnceTheZoomRests) {
    Open({800, 600}, 100);
    view_.SetSettleDelay(std::chrono::milliseconds(1));
    SendWheel(view_, {200, 150}, -180);
    const QImage moving = Grab();
    QTest::qWait(30);
    const QImage resting = Grab();
    EXPECT_NE(moving, resting);
    view_.SetZoomPercent(view_.ZoomPercent());
    EXPECT_TRUE(SamePixels(Grab(), resting));
}

TEST_F(ImageViewTest, FocusShowsWhenItCameByTheKeyboard) {
    view_.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&view_));
    for (const auto reason : {Qt::TabFocusReason, Qt::MouseFocusReason}) {
        view_.clearFocus();
        view_.setFocus(reason);
        EXPECT_EQ(Grab().pixel(0, 0) != ColourOf('w'), reason == Qt::TabFocusReason) << reason;
    }
}

// Runs in a process of its own, for the screen's scale is set before the application starts. The
// view begins in the midst of a device pixel where the scale is broken.
TEST(ImageViewScreenScale, APhotoPixelIsADevicePixelAt100Percent) {
    if (!qEnvironmentVariableIsSet("QT_SCALE_FACTOR")) {
        for (const char* scale : {"1.5", "2"}) {
            qputenv("QT_SCALE_FACTOR", scale);
            QProcess child;
            child.start(QCoreApplication::applicationFilePath(),
                        {QStringLiteral("--gtest_filter=ImageViewScreenScale.*")});
            qunsetenv("QT_SCALE_FACTOR");
            ASSERT_TRUE(child.waitForFinished()) << scale;
            EXPECT_EQ(child.exitCode(), 0) << scale << child.readAllStandardOutput().toStdString();
        }
        return;
    }
    LayeredImage image;
    QWidget window;
    window.resize(207, 157);
    auto* view = new ImageView(image, &window);
    view->setGeometry(7, 7, 200, 150);
    window.show();
    ASSERT_GT(window.devicePixelRatioF(), 1.0);
    image.Open(Pixels(TestPicture(121, 91)), DotsPerInch{300});
    view->SetZoomPercent(100);
    const double scale = window.devicePixelRatioF();
    const QPointF place = (view->ToWidget({0, 0}) + QPointF(7, 7)) * scale;
    EXPECT_TRUE(SamePixels(Grabbed(window).copy(QRect(place.toPoint(), QSize(121, 91))),
                           TestPicture(121, 91)));
}

}  // namespace
}  // namespace kadrona::imaging::view
