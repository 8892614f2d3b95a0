#include "dialogs/curves/CurveEditor.h"
#include "imaging/tone/CurveFile.h"
#include "tests/support/Windows.h"

namespace kadrona::imaging {

void PrintTo(const CurvePoint& point, std::ostream* out) {
    *out << "(" << point.input << ", " << point.output << ")";
}

}  // namespace kadrona::imaging

namespace kadrona::dialogs {
namespace {

using Points = std::vector<imaging::CurvePoint>;

class CurveEditorTest : public ::testing::Test {
 protected:
    CurveEditorTest() {
        editor_.resize(editor_.sizeHint());
        editor_.show();
    }

    const Points& Shown() { return editor_.Curves()[editor_.Channel()].Points(); }

    void Click(imaging::CurvePoint at, Qt::MouseButton button = Qt::LeftButton) {
        testing::Drag(editor_, {editor_.ToWidget(at)}, button);
    }
    void Drag(imaging::CurvePoint from, std::initializer_list<QPointF> way) {
        testing::SendMouse(editor_, QEvent::MouseButtonPress, editor_.ToWidget(from));
        for (const QPointF& to : way) {
            testing::SendMouse(editor_, QEvent::MouseMove, to);
        }
        testing::SendMouse(editor_, QEvent::MouseButtonRelease, *(way.end() - 1));
    }
    void Key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::keyClick(&editor_, key, modifiers);
    }

    CurveEditor editor_;
};

TEST_F(CurveEditorTest, TheMouseAddsMovesAndRemovesPoints) {
    QSignalSpy changed(&editor_, &CurveEditor::CurvesChanged);
    Drag({100, 60}, {editor_.ToWidget({100, 90}), editor_.ToWidget({120, 140})});
    EXPECT_EQ(Shown(), (Points{{0, 0}, {120, 140}, {255, 255}}));
    EXPECT_EQ(changed.count(), 3);
    Drag({120, 140}, {editor_.ToWidget({255, 265})});
    EXPECT_EQ(Shown(), (Points{{0, 0}, {254, 255}, {255, 255}})) << "kept before its neighbour";
    Drag({0, 0}, {editor_.ToWidget({40, 10})});
    EXPECT_EQ(Shown().front(), (imaging::CurvePoint{40, 10}));

    const QPointF outside = editor_.ToWidget({254, 255}) + QPointF(-100, -60);
    Drag({254, 255}, {outside, editor_.ToWidget({200, 180})});
    EXPECT_EQ(Shown(), (Points{{40, 10}, {200, 180}, {255, 255}})) << "dragged back again";
    Drag({200, 180}, {outside});
    EXPECT_EQ(Shown(), (Points{{40, 10}, {255, 255}}));
    Drag({40, 10}, {outside});
    Click({255, 255}, Qt::RightButton);
    EXPECT_EQ(Shown().size(), 2U) << "two points stay";
    Click({90, 90});
    Click({90, 90}, Qt::RightButton);
    EXPECT_EQ(Shown().size(), 2U);
    Click({20, -30});
    EXPECT_EQ(Shown().size(), 2U) << "beside the field";
}

TEST_F(CurveEditorTest, TheKeyboardWalksAddsMovesAndRemovesPoints) {
    editor_.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&editor_));
    editor_.clearFocus();
    editor_.setFocus(Qt::TabFocusReason);
    EXPECT_EQ(editor_.SelectedPoint(), 0);
    Key(Qt::Key_Insert);
    EXPECT_EQ(Shown(), (Points{{0, 0}, {127, 127}, {255, 255}}));
    EXPECT_EQ(editor_.SelectedPoint(), 1);
    Key(Qt::Key_Up, Qt::ShiftModifier);
    Key(Qt::Key_Left);
    EXPECT_EQ(Shown()[1], (imaging::CurvePoint{126, 137}));
    EXPECT_TRUE(editor_.accessibleDescription().contains(QStringLiteral("Ausgabe 137")));
    Key(Qt::Key_Tab);
    EXPECT_EQ(editor_.SelectedPoint(), 2);
    Key(Qt::Key_Backtab);
    Key(Qt::Key_Delete);
    EXPECT_EQ(Shown().size(), 2U);
    for (int i = 0; i < 30; ++i) {
        Key(Qt::Key_Left, Qt::ShiftModifier);
    }
    EXPECT_EQ(Shown().back(), (imaging::CurvePoint{1, 255})) << "kept behind the other";
}

TEST_F(CurveEditorTest, NoMorePointsThanAPresetCanHold) {
    QSignalSpy refused(&editor_, &CurveEditor::PointRefused);
    for (int i = 0; i < imaging::MaximumCurvePoints; ++i) {
        editor_.SetChannel(i % 2 == 0 ? imaging::CurveChannel::Red : imaging::CurveChannel::Blue);
        Click({12 + i * 4, 240});
    }
    EXPECT_EQ(editor_.Curves().PointCount(), imaging::MaximumCurvePoints);
    EXPECT_EQ(refused.count(), 8) << "eight end points stand from the beginning";
    Drag({255, 255}, {editor_.ToWidget({255, 128})});
    EXPECT_EQ(Shown().back(), (imaging::CurvePoint{255, 128})) << "a full set can still be moved";
}

}  // namespace
}  // namespace kadrona::dialogs
