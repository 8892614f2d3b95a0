// Stories of the tools that correct the photo.

#include <QPainter>
#include <QSpinBox>
#include <QStatusBar>
#include <QStatusTipEvent>

#include "dialogs/adjustments/RotationPreview.h"
#include "dialogs/curves/CurveEditor.h"
#include "imaging/view/ViewTool.h"
#include "tests/app/StoryFixture.h"

using namespace Qt::StringLiterals;

namespace kadrona::testing {

class ToolsStory : public Story {
 protected:
    ToolsStory() {
        // A reddish grey with a darker half and a spot.
        QImage photo = Filled({600, 800}, qRgb(200, 160, 120));
        QPainter painter(&photo);
        painter.fillRect(0, 400, 600, 400, qRgb(60, 50, 40));
        painter.fillRect(300, 200, 20, 20, Qt::black);
        painter.end();
        EXPECT_TRUE(photo.save(installation.Path("tools.png")));
        Open("tools.png");
        opened = Image().Photo().Tile().copy();
    }

    imaging::view::ImageView& View() { return window->View(); }
    QRgb PhotoPixel(int x, int y) { return Image().Photo().Tile().pixel(x, y); }
    bool IsInMode(const QString& mode) { return View().Tool() && IsChecked(mode); }
    bool IsInNoMode() { return !View().Tool() && TemplateShows(); }
    bool TemplateShows() { return Image().LayerAt(1).visible && Image().CurrentLayer() == 1; }
    QString Hint() { return window->statusBar()->currentMessage(); }
    bool TellsToCopy() { return Hint().contains(u"Mausrad"_s); }
    ::testing::AssertionResult IsAsOpened() { return SamePixels(Image().Photo(), opened); }

    void Click(QPointF photo, Qt::KeyboardModifiers modifiers = {},
               Qt::MouseButton button = Qt::LeftButton) {
        Drag(View(), {View().ToWidget(photo)}, button, modifiers);
    }
    void Stroke(QPointF from, QPointF to) {
        Drag(View(),
             {View().ToWidget(from), View().ToWidget((from + to) / 2), View().ToWidget(to)});
    }
    void Wheel(int notches, Qt::KeyboardModifiers modifiers = {}) {
        SendWheel(View(), {100, 100}, 120 * notches, modifiers);
    }

    /// Triggers an action, changes something in the dialog that it opens and presses a button.
    void Answer(const QString& action, const QString& dialog, const char* button,
                const std::function<void(QWidget&)>& change) {
        driver.Expect(dialog, [=](QWidget& shown) {
            change(shown);
            ClickButton(shown, button);
        });
        Trigger(action);
    }

    QImage opened;
};

TEST_F(ToolsStory, TheWhitePointIsOneClickAndOneUndoStep) {
    View().SetZoomPercent(55);
    Trigger(u"acSetWhitePoint"_s);
    EXPECT_TRUE(IsInMode(u"acSetWhitePoint"_s));
    EXPECT_EQ(View().cursor().shape(), Qt::BitmapCursor);
    EXPECT_FALSE(Image().LayerAt(1).visible);
    EXPECT_NE(View().ZoomPercent(), 55) << "fits on entry";

    Click({100, 100}, {}, Qt::RightButton);
    Click({-5, 100});
    Click({100, 800.5});
    EXPECT_EQ(Image().UndoCount(), 0);
    EXPECT_TRUE(IsChecked(u"acSetWhitePoint"_s));
    for (int click = 0; click < 2; ++click) {  // one for each activation
        Click({100.9, 100.2});
        EXPECT_FALSE(IsChecked(u"acSetWhitePoint"_s));
        EXPECT_TRUE(IsInNoMode());
        EXPECT_EQ(PhotoPixel(100, 100), 0xffffffff);
        EXPECT_EQ(PhotoPixel(305, 205), 0xff000000);
        EXPECT_EQ(Image().UndoCount(), 1);
    }
    Trigger(u"acUndo"_s);
    EXPECT_TRUE(IsAsOpened());

    Trigger(u"acSetWhitePoint"_s);
    Trigger(u"acSetWhitePoint"_s);
    EXPECT_EQ(View().ZoomPercent(), 100) << "full size on leaving";
    EXPECT_TRUE(IsInNoMode());
}

TEST_F(ToolsStory, ModesEndWithEscapeThePhotoTheSheetAndEachOther) {
    for (const QString& mode : {u"acSetWhitePoint"_s, u"acBeauty"_s}) {
        const auto expectNoMode = [&] {
            EXPECT_FALSE(IsChecked(mode)) << mode.toStdString();
            EXPECT_TRUE(IsInNoMode());
            EXPECT_EQ(View().cursor().shape(), Qt::ArrowCursor);
        };
        Trigger(mode);
        View().SetZoomPercent(55);
        QTest::keyClick(&View(), Qt::Key_Escape);
        expectNoMode();
        EXPECT_NEAR(View().ZoomPercent(), 55, 1e-9);
        EXPECT_TRUE(IsAsOpened());
        Trigger(mode);
        ASSERT_NE(View().Tool(), nullptr);
        Open("tools.png");
        expectNoMode();
    }
    Trigger(u"acSetWhitePoint"_s);
    Trigger(u"acShowLayer"_s);
    EXPECT_EQ(View().Tool(), nullptr) << "one check action of the group at a time";
    Trigger(u"acSetWhitePoint"_s);
    EXPECT_FALSE(IsChecked(u"acShowLayer"_s));
    Trigger(u"acBeauty"_s);
    EXPECT_FALSE(IsChecked(u"acSetWhitePoint"_s));
    EXPECT_TRUE(IsInMode(u"acBeauty"_s));
    Trigger(u"acBeauty"_s);
    Trigger(u"acSetWhitePoint"_s);
    auto& switchedOff = Setting<QAbstractButton>("WhiteBalancePipette");
    switchedOff.setChecked(true);
    EXPECT_TRUE(IsInNoMode()) << "the settings took its action away";
    switchedOff.setChecked(false);
    Trigger(u"acSetWhitePoint"_s);
    Trigger(u"acCrop"_s);
    EXPECT_FALSE(IsChecked(u"acSetWhitePoint"_s));
    EXPECT_EQ(View().Tool(), nullptr);
    EXPECT_EQ(Image().Photo().Columns(), 4);
}

TEST_F(ToolsStory, BlackAndWhiteIsAStepAndGradationAnotherThatCancellingUndoes) {
    const auto invert = [this](const char* button) {
        Answer(u"acGradation"_s, u"fmRGBKurve"_s, button, [this](QWidget& shown) {
            EXPECT_FALSE(Image().LayerAt(1).visible);
            EXPECT_EQ(Image().CurrentLayer(), 0);
            imaging::CurveSet curves;
            curves[imaging::CurveChannel::Rgb] = imaging::Curve({{0, 255}, {255, 0}});
            Child<dialogs::CurveEditor>(shown).SetCurves(curves);
        });
    };
    Trigger(u"acSchwarzweiss"_s);
    const QImage grey = Image().Photo().Tile().copy();
    // 0.299 * 200 + 0.587 * 160 + 0.114 * 120, rounded
    EXPECT_EQ(PhotoPixel(10, 10), qRgb(167, 167, 167));
    EXPECT_EQ(Image().CurrentLayer(), 1);
    invert("btnCancel");
    EXPECT_TRUE(SamePixels(Image().Photo(), grey));
    EXPECT_EQ(Image().UndoCount(), 1);
    EXPECT_TRUE(TemplateShows());

    Trigger(u"acShowLayer"_s);
    invert("btnOk");
    EXPECT_EQ(PhotoPixel(305, 205), 0xffffffff);
    EXPECT_EQ(Image().UndoCount(), 2);
    EXPECT_TRUE(IsChecked(u"acShowLayer"_s));
    EXPECT_FALSE(Image().LayerAt(1).visible) << "hidden before, hidden after";
    Trigger(u"acUndo"_s);
    EXPECT_TRUE(SamePixels(Image().Photo(), grey));
    Trigger(u"acUndo"_s);
    EXPECT_TRUE(IsAsOpened());
}

TEST_F(ToolsStory, TheColourDialogRecordsTheAdjustedPhotoToo) {
    for (const char* button : {"btnCancel", "btnOk"}) {
        EXPECT_EQ(Image().UndoCount(), 0);
        EXPECT_TRUE(IsAsOpened());
        Answer(u"acColorConfig"_s, u"ColourAdjustment"_s, button, [this](QWidget& shown) {
            EXPECT_FALSE(Image().LayerAt(1).visible);
            Child<QSpinBox>(shown, "Brightness").setValue(30);
        });
        EXPECT_TRUE(TemplateShows());
    }
    EXPECT_EQ(Image().UndoCount(), 2);
    const QRgb adjusted = PhotoPixel(10, 10);
    EXPECT_GT(qRed(adjusted), 200);
    Trigger(u"acUndo"_s);
    EXPECT_EQ(PhotoPixel(10, 10), adjusted);
    Trigger(u"acUndo"_s);
    EXPECT_TRUE(IsAsOpened());
}

TEST_F(ToolsStory, TheFreeRotationLeavesAStepEvenWhenCancelled) {
    const auto rotate = [this](double degrees, const char* button) {
        Answer(u"acRotateDlg"_s, u"fmRotateDlg"_s, button, [degrees](QWidget& shown) {
            Child<dialogs::RotationPreview>(shown).SetDegrees(degrees);
        });
        EXPECT_EQ(Image().CurrentLayer(), 1);
        EXPECT_EQ(QApplication::overrideCursor(), nullptr);
    };
    View().SetZoomPercent(55);
    rotate(10, "btnCancel");
    EXPECT_EQ(Image().UndoCount(), 1);
    rotate(0, "btnOk");
    EXPECT_TRUE(IsAsOpened());
    rotate(30, "btnOk");
    EXPECT_EQ(Image().UndoCount(), 1) << "the same pixels are not recorded twice";
    EXPECT_NEAR(Image().Photo().Width(), 600 * 0.866 + 800 * 0.5, 2);
    EXPECT_EQ(PhotoPixel(0, 0), 0xffffffff);
    Trigger(u"acUndo"_s);
    EXPECT_TRUE(IsAsOpened());
    EXPECT_NEAR(View().ZoomPercent(), 55, 1e-9);
}

TEST_F(ToolsStory, TheStampTakesWithShiftAndCopiesWithoutEachStrokeAStep) {
    Trigger(u"acBeauty"_s);
    EXPECT_EQ(View().cursor().shape(), Qt::BitmapCursor);
    EXPECT_EQ(Image().UndoCount(), 1);
    EXPECT_FALSE(Image().LayerAt(1).visible);
    Stroke({310, 210}, {312, 210});  // there is no source yet
    Click({-20, 300}, Qt::ShiftModifier);
    Stroke({310, 210}, {312, 210});  // nor is one outside
    Click({200, 210}, Qt::ShiftModifier);
    EXPECT_TRUE(IsAsOpened());

    Wheel(8);
    Image().SetCurrentLayer(1);
    Stroke({310, 210}, {310, 212});
    EXPECT_EQ(Image().CurrentLayer(), 0);
    EXPECT_EQ(PhotoPixel(310, 210), qRgb(200, 160, 120));
    EXPECT_EQ(Image().UndoCount(), 1) << "the step of the mode's start is the first stroke's";
    Stroke({-50, 300}, {310, 410});
    EXPECT_EQ(PhotoPixel(310, 410), qRgb(60, 50, 40)) << "a press outside does nothing";
    EXPECT_EQ(Image().UndoCount(), 1);
    Click({310, 420}, Qt::ShiftModifier);
    Stroke({310, 380}, {310, 380});
    EXPECT_EQ(PhotoPixel(310, 380), qRgb(60, 50, 40));
    EXPECT_EQ(Image().UndoCount(), 2);
    Trigger(u"acUndo"_s);
    EXPECT_EQ(PhotoPixel(310, 380), qRgb(200, 160, 120));
    Trigger(u"acUndo"_s);
    EXPECT_TRUE(IsAsOpened());

    for (const QString& other : {u"acGradation"_s, u"acSchwarzweiss"_s, u"acColorConfig"_s,
                                 u"acSetWhitePoint"_s, u"acShowLayer"_s}) {
        Trigger(other);
        EXPECT_FALSE(IsChecked(other)) << other.toStdString();
        EXPECT_TRUE(IsChecked(u"acBeauty"_s)) << other.toStdString();
    }
    EXPECT_TRUE(IsAsOpened());
    Trigger(u"acBeauty"_s);
    EXPECT_TRUE(TemplateShows());
}

TEST_F(ToolsStory, WheelAndKeysChangeTheBrushAndTheStatusBarTells) {
    const double zoom = View().ZoomPercent();
    const QStatusBar& bar = *window->statusBar();
    const auto hint = [this] { return Hint().section(u"  –"_s, 0, 0); };
    Trigger(u"acBeauty"_s);
    EXPECT_EQ(hint(), u"Stempel 13 px, Weichheit 50 %"_s);
    Wheel(1);
    EXPECT_EQ(hint(), u"Stempel 15 px, Weichheit 50 %"_s);
    Wheel(-2, Qt::ShiftModifier);
    QTest::keyClicks(&View(), u"-[."_s);
    EXPECT_EQ(hint(), u"Stempel 11 px, Weichheit 45 %"_s);
    Wheel(-100);
    Wheel(-100, Qt::ShiftModifier);
    EXPECT_EQ(hint(), u"Stempel 1 px, Weichheit 0 %"_s);
    QTest::keyClicks(&View(), u"+"_s);
    EXPECT_EQ(hint(), u"Stempel 2 px, Weichheit 0 %"_s);
    EXPECT_EQ(View().ZoomPercent(), zoom);
    EXPECT_FALSE(TellsToCopy());
    Click({200, 210}, Qt::ShiftModifier);
    EXPECT_TRUE(TellsToCopy());
    QStatusTipEvent menu{QString()};
    QCoreApplication::sendEvent(window.get(), &menu);
    EXPECT_TRUE(TellsToCopy()) << "a menu clears nothing";
    EXPECT_LT(bar.fontMetrics().horizontalAdvance(Hint()), Child<QWidget>(bar, "StatusPanel2").x())
        << "the whole hint is to be read";
    Trigger(u"acRotateLeft"_s);
    EXPECT_EQ(hint(), u"Stempel 2 px, Weichheit 0 %"_s) << "the brush stays";
    Trigger(u"acUndo"_s);
    Trigger(u"acBeauty"_s);
    EXPECT_EQ(Hint(), u""_s);
    Wheel(1);
    EXPECT_GT(View().ZoomPercent(), zoom);
}

TEST_F(ToolsStory, TheBrushFitsThePhotoUntilItIsChosenAndATurnTakesTheSource) {
    const auto take = [&] {
        Trigger(u"acBeauty"_s);
        Click({200, 210}, Qt::ShiftModifier);
        EXPECT_TRUE(TellsToCopy());
    };
    SavePhoto("square.png", QSize(1200, 1200));
    SavePhoto("small.png", QSize(600, 700));
    Open("square.png");
    take();
    EXPECT_TRUE(Hint().startsWith(u"Stempel 20 px"_s));
    Trigger(u"acRotateLeft"_s);
    EXPECT_TRUE(Hint().contains(u"Umschalt+Klick"_s)) << "also where the size stays";
    Open("small.png");
    take();
    EXPECT_TRUE(Hint().startsWith(u"Stempel 11 px"_s));
    Wheel(1);
    Open("square.png");
    take();
    EXPECT_TRUE(Hint().startsWith(u"Stempel 13 px"_s)) << Hint().toStdString();
}

TEST_F(ToolsStory, TheBrushStaysAtThePointerWhileThePhotoMovesBelowIt) {
    Trigger(u"acBeauty"_s);
    const QPointF pointer = View().rect().center();
    SendMouse(View(), QEvent::MouseMove, pointer);
    double width = 0;
    for (const double zoom : {400, 800}) {
        View().SetZoomPercent(zoom);
        QTest::keyClick(&View(), Qt::Key_Right);
        const QRectF area = View().Tool()->OverlayArea();
        EXPECT_LE((area.center() - pointer).manhattanLength(), 1);
        EXPECT_GT(area.width(), width);
        width = area.width();
    }
}

}  // namespace kadrona::testing
