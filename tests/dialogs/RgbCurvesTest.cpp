#include <QTemporaryDir>

#include "dialogs/curves/CurveEditor.h"
#include "dialogs/curves/RgbCurves.h"
#include "imaging/tone/CurveFile.h"
#include "imaging/view/ImageView.h"
#include "tests/support/Windows.h"

using namespace Qt::StringLiterals;

namespace kadrona::imaging {

void PrintTo(const CurvePoint& point, std::ostream* out) {
    *out << "(" << point.input << ", " << point.output << ")";
}

}  // namespace kadrona::imaging

namespace kadrona::testing {

using dialogs::CurveEditor;
using imaging::CurveChannel;
using imaging::CurveSet;
using Points = std::vector<imaging::CurvePoint>;

class RgbCurves : public ::testing::Test {
 protected:
    RgbCurves() { image.Open(imaging::Pixels(Picture({"r-k", "w-b"})), {}); }

    QString File(const QString& name) const { return folder.filePath(name + u".acv"_s); }

    static CurveSet Inverse() {
        CurveSet curves;
        curves[CurveChannel::Rgb] = imaging::Curve({{0, 255}, {255, 0}});
        return curves;
    }

    CurveEditor& Editor() { return Child<CurveEditor>(*dialog); }
    QListWidget& List() { return Child<QListWidget>(*dialog, "cbPreset2"); }
    void Click(const char* button) { ClickButton(*dialog, button); }
    QString Names() { return Items(List()); }
    void ClickPreset(int row) {
        QTest::mouseClick(List().viewport(), Qt::LeftButton, {},
                          List().visualItemRect(List().item(row)).center());
    }

    /// Presses "Neu" and gives the name; `refused` expects an error instead of a new entry.
    void Add(const QString& name, bool refused = false) {
        driver.Expect(u"LineDialog"_s, [this, name, refused](QWidget& line) {
            EXPECT_EQ(line.windowTitle(), u"Kurven Name"_s);
            if (refused) {
                driver.Press(u"MessageBox"_s, u"OkButton"_s);
            }
            Child<QLineEdit>(line).setText(name);
            ClickButton(line, "OkButton");
        });
        Click("btnAdd");
    }

    /// Opens the dialog, does what is given and closes it by a button.
    controls::ModalResult Show(const std::function<void()>& answer, const char* button) {
        driver.Expect(u"fmRGBKurve"_s, [this, answer, button](QWidget&) {
            answer();
            Click(button);
        });
        return dialog->ShowEx(view);
    }

    void Make() { dialog = std::make_unique<dialogs::TfmRGBKurve>(folder.path()); }

    QTemporaryDir folder;
    ModalDriver driver;
    imaging::LayeredImage image;
    imaging::view::ImageView view{image};
    std::unique_ptr<dialogs::TfmRGBKurve> dialog;
};

TEST_F(RgbCurves, OkChangesThePhotoAsThePreviewShowedAndCancelLeavesIt) {
    Make();
    const auto invert = [this] {
        EXPECT_EQ(Editor().Curves(), CurveSet());
        EXPECT_EQ(view.PreviewFilter(), nullptr);
        Editor().SetCurves(Inverse());
        ASSERT_NE(view.PreviewFilter(), nullptr);
        EXPECT_TRUE(SamePixels(image.Photo(), Picture({"r-k", "w-b"})));
    };
    EXPECT_EQ(Show(invert, "btnCancel"), controls::ModalResult::Cancel);
    EXPECT_EQ(Editor().Curves(), CurveSet());
    EXPECT_EQ(view.PreviewFilter(), nullptr);
    EXPECT_TRUE(SamePixels(image.Photo(), Picture({"r-k", "w-b"})));
    EXPECT_EQ(Show(invert, "btnOk"), controls::ModalResult::Ok);
    EXPECT_EQ(view.PreviewFilter(), nullptr);
    EXPECT_EQ(image.Photo().Tile().pixel(0, 0), 0xff00ffff);

    imaging::LayeredImage other;
    other.Open(imaging::Pixels(Picture({"kw"})), {});
    dialog->ShowSilent(other);
    EXPECT_TRUE(SamePixels(other.Photo(), Picture({"wk"}))) << "the last curves";
}

TEST_F(RgbCurves, ASmallCopyOfWhatTheTemplateCoversFollowsTheCurves) {
    Make();
    image.AddLayer({imaging::Pixels(Picture({"k"})), QRect(1, 0, 5, 2)});
    Show(
        [this] {
            auto& face = Child<imaging::view::ImageView>(*dialog);
            EXPECT_TRUE(SamePixels(face.Image().Photo(), Picture({"-k", "-b"})));
            Editor().SetCurves(Inverse());
            EXPECT_EQ(face.PreviewFilter(), view.PreviewFilter());
        },
        "btnCancel");
}

TEST_F(RgbCurves, PresetsAreListedOnceSortedAndLoadedWhenChosen) {
    const QString capitals = folder.filePath(u"Weich.ACV"_s);
    for (const QString& file : {File(u"Zwei"_s), File(u"Ärger"_s), File(u"b"_s), capitals}) {
        imaging::WriteCurveFile(file, file == File(u"Zwei"_s) ? CurveSet() : Inverse());
    }
    imaging::WriteCurveFile(folder.filePath(u"no preset"_s), CurveSet());
    QDir(folder.path()).mkdir(u"folder.acv"_s);
    Make();
    EXPECT_EQ(Names(), u"Ärger|b|folder|Weich|Zwei"_s);
    EXPECT_EQ(List().currentRow(), 0);
    Show(
        [&] {
            EXPECT_EQ(Editor().Curves(), CurveSet()) << "selected is not loaded";
            for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Return}) {
                QTest::keyClick(&List(), key);
                EXPECT_EQ(Editor().Curves(), Inverse());
                EXPECT_TRUE(dialog->isVisible()) << "Enter does not confirm here";
                Editor().ResetAll();
            }
            ClickPreset(1);
            EXPECT_EQ(Editor().Curves(), Inverse());
            QTest::keyClick(&List(), Qt::Key_End);
            EXPECT_EQ(Editor().Curves(), CurveSet());
            ASSERT_TRUE(QFile::remove(File(u"b"_s)));
            driver.Press(u"MessageBox"_s, u"OkButton"_s);
            ClickPreset(1);

            ClickPreset(3);
            Editor().ResetAll();
            Click("btnUpdate");
            EXPECT_EQ(imaging::ReadCurveFile(capitals), CurveSet());
            driver.Press(u"MessageBox"_s, u"YesButton"_s);
            Click("btnDelete");
            EXPECT_FALSE(QFile::exists(capitals));
        },
        "btnCancel");
}

TEST_F(RgbCurves, NewUpdateAndDeleteKeepListAndFolderTogether) {
    Make();
    EXPECT_EQ(Names(), QString());
    Show(
        [this] {
            Click("btnUpdate");
            Click("btnDelete");
            Add(u"z"_s);
            Add(u"Über.alles"_s);
            Add(u""_s);
            EXPECT_EQ(Names(), u"z|Über.alles"_s) << "appended, not sorted";
            EXPECT_EQ(List().currentRow(), 1);
            Editor().SetCurves(Inverse());
            Add(u"z"_s);
            EXPECT_EQ(Names(), u"z|Über.alles"_s);
            EXPECT_EQ(imaging::ReadCurveFile(File(u"z"_s)), Inverse());
            ClickPreset(1);
            Editor().SetCurves(Inverse());
            Click("btnUpdate");
            EXPECT_EQ(imaging::ReadCurveFile(File(u"Über.alles"_s)), Inverse());

            driver.Press(u"MessageBox"_s, u"NoButton"_s);
            Click("btnDelete");
            EXPECT_EQ(Names(), u"z|Über.alles"_s);
            driver.Press(u"MessageBox"_s, u"YesButton"_s);
            Click("btnDelete");
            EXPECT_EQ(Names(), u"z"_s);
            EXPECT_FALSE(QFile::exists(File(u"Über.alles"_s)));
            ASSERT_TRUE(QFile::remove(File(u"z"_s)));
            driver.Press(u"MessageBox"_s, u"YesButton"_s);
            Click("btnDelete");
            EXPECT_EQ(Names(), QString()) << "its file was gone already";
        },
        "btnOk");
}

TEST_F(RgbCurves, ANameThatNoFileCanHaveAddsNothing) {
    QDir(folder.path()).mkdir(u"below"_s);
    Make();
    Show(
        [this] {
            for (const QString& name : {u"a/b"_s, u"../outside"_s, u"below/x"_s, u"/etc/x"_s,
                                        QString(255, u'x'), QString(200, u'ä')}) {
                Add(name, true);
                EXPECT_EQ(Names(), QString()) << name.toStdString();
            }
            Add(u".."_s);
            EXPECT_EQ(Names(), u".."_s) << "a file can be called so";
        },
        "btnOk");
    EXPECT_FALSE(QFile::exists(folder.filePath(u"../outside.acv"_s)));
    EXPECT_EQ(QDir(folder.filePath(u"below"_s)).entryList(QDir::Files), QStringList());
}

TEST_F(RgbCurves, AVanishedFolderIsReportedAndTheDialogStaysOpen) {
    imaging::WriteCurveFile(File(u"a"_s), Inverse());
    Make();
    folder.remove();
    Show(
        [this] {
            driver.Press(u"MessageBox"_s, u"OkButton"_s);
            ClickPreset(0);
            Add(u"new"_s, true);
            driver.Press(u"MessageBox"_s, u"OkButton"_s);
            Click("btnUpdate");
            EXPECT_EQ(Names(), u"a"_s);
            EXPECT_TRUE(dialog->isVisible());
        },
        "btnCancel");
    Make();
    EXPECT_EQ(Names(), QString());
    EXPECT_FALSE(QDir(folder.path()).exists());
}

TEST_F(RgbCurves, TheChannelBoxChoosesTheCurveThatIsResetAndEscapeCancels) {
    Make();
    driver.Expect(u"fmRGBKurve"_s, [this](QWidget& shown) {
        CurveSet all;
        for (imaging::Curve& curve : all.curves) {
            curve = imaging::Curve({{0, 20}, {255, 200}});
        }
        Editor().SetCurves(all);
        for (const int channel : {1, 2, 3, 0}) {
            Child<QComboBox>(*dialog, "cbChannel").setCurrentIndex(channel);
            Click("btnReset");
            all.curves.at(static_cast<size_t>(channel)) = imaging::Curve();
            EXPECT_EQ(Editor().Curves(), all) << channel;
        }
        Editor().SetCurves(Inverse());
        Click("btnResetAll");
        EXPECT_EQ(Editor().Curves(), CurveSet());
        QTest::keyClick(&shown, Qt::Key_Escape);
    });
    EXPECT_EQ(dialog->ShowEx(view), controls::ModalResult::Cancel);
}

class CurveEditing : public ::testing::Test {
 protected:
    CurveEditing() {
        editor_.resize(editor_.sizeHint());
        editor_.show();
    }

    const Points& Shown() { return editor_.Curves()[editor_.Channel()].Points(); }

    QPointF At(imaging::CurvePoint point) const { return editor_.ToWidget(point); }
    void Click(imaging::CurvePoint at, Qt::MouseButton button = Qt::LeftButton) {
        kadrona::testing::Drag(editor_, {At(at)}, button);
    }
    void Drag(std::initializer_list<QPointF> way) { kadrona::testing::Drag(editor_, way); }
    void Key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::keyClick(&editor_, key, modifiers);
    }

    CurveEditor editor_;
};

TEST_F(CurveEditing, TheMouseAddsMovesAndRemovesPoints) {
    QSignalSpy changed(&editor_, &CurveEditor::CurvesChanged);
    Drag({At({100, 60}), At({100, 90}), At({120, 140})});
    EXPECT_EQ(Shown(), (Points{{0, 0}, {120, 140}, {255, 255}}));
    EXPECT_EQ(changed.count(), 3);
    Drag({At({120, 140}), At({255, 265})});
    EXPECT_EQ(Shown(), (Points{{0, 0}, {254, 255}, {255, 255}})) << "kept before its neighbour";
    Drag({At({0, 0}), At({40, 10})});
    EXPECT_EQ(Shown().front(), (imaging::CurvePoint{40, 10}));

    const QPointF outside = At({254, 255}) + QPointF(-100, -60);
    Drag({At({254, 255}), outside, At({200, 180})});
    EXPECT_EQ(Shown(), (Points{{40, 10}, {200, 180}, {255, 255}})) << "dragged back again";
    Drag({At({200, 180}), outside});
    EXPECT_EQ(Shown(), (Points{{40, 10}, {255, 255}}));
    Drag({At({40, 10}), outside});
    Click({255, 255}, Qt::RightButton);
    EXPECT_EQ(Shown().size(), 2U) << "two points stay";
    Click({90, 90});
    Click({90, 90}, Qt::RightButton);
    EXPECT_EQ(Shown().size(), 2U);
    Click({20, -30});
    EXPECT_EQ(Shown().size(), 2U) << "beside the field";
}

TEST_F(CurveEditing, TheKeyboardWalksAddsMovesAndRemovesPoints) {
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
    Key(Qt::Key_Insert);
    EXPECT_EQ(Shown()[1], (imaging::CurvePoint{127, 127})) << "before the last, which is selected";
    Key(Qt::Key_Delete);
    for (int i = 0; i < 30; ++i) {
        Key(Qt::Key_Left, Qt::ShiftModifier);
    }
    EXPECT_EQ(Shown().back(), (imaging::CurvePoint{1, 255})) << "kept behind the other";
}

TEST_F(CurveEditing, NoMorePointsThanAPresetCanHold) {
    QSignalSpy refused(&editor_, &CurveEditor::PointRefused);
    for (int i = 0; i < imaging::MaximumCurvePoints; ++i) {
        editor_.SetChannel(i % 2 == 0 ? imaging::CurveChannel::Red : imaging::CurveChannel::Blue);
        Click({12 + i * 4, 240});
    }
    EXPECT_EQ(editor_.Curves().PointCount(), imaging::MaximumCurvePoints);
    EXPECT_EQ(refused.count(), 8) << "eight end points stand from the beginning";
    Drag({At({255, 255}), At({255, 128})});
    EXPECT_EQ(Shown().back(), (imaging::CurvePoint{255, 128})) << "a full set can still be moved";
}

}  // namespace kadrona::testing
