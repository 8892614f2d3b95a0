// The dialogs that turn the photo and change its colours.

#include <QDoubleSpinBox>
#include <QSlider>
#include <QSpinBox>
#include <QTabWidget>

#include "dialogs/adjustments/ColourAdjustment.h"
#include "dialogs/adjustments/RotateDialog.h"
#include "dialogs/adjustments/RotationPreview.h"
#include "imaging/view/ImageView.h"
#include "tests/support/Windows.h"

using namespace Qt::StringLiterals;

namespace kadrona::testing {

using dialogs::RotationPreview;
using imaging::Pixels;
using imaging::view::ImageView;

class RotateDialog : public ::testing::Test {
 protected:
    std::optional<double> Show(const std::function<void(RotationPreview&)>& answer,
                               const QString& button) {
        driver.Expect(u"fmRotateDlg"_s, [answer, button](QWidget& shown) {
            answer(Child<RotationPreview>(shown));
            ClickButton(shown, button);
        });
        return dialog.ShowEx(Pixels(Filled({200, 300}, ColourOf('k'))));
    }

    ModalDriver driver;
    dialogs::TfmRotateDlg dialog;
};

TEST_F(RotateDialog, TheMouseTurnsAndMovesThePreview) {
    const auto degrees = Show(
        [](RotationPreview& preview) {
            const QPointF middle(preview.width() / 2.0, preview.height() / 2.0);
            const auto isCovered = [&](QPointF at) {
                return qGray(preview.grab().toImage().pixel(at.toPoint())) < 128;
            };
            preview.SetDegrees(30);
            SendMouse(preview, QEvent::MouseButtonDblClick, middle);
            EXPECT_EQ(preview.Degrees(), 0);
            const QPointF left = middle - QPointF(100, 5);
            EXPECT_TRUE(isCovered(left));
            Drag(preview, {middle, middle + QPointF(60, 0)}, Qt::RightButton);
            EXPECT_FALSE(isCovered(left));
            EXPECT_EQ(preview.Degrees(), 0);
            SendMouse(preview, QEvent::MouseButtonDblClick, middle);
            EXPECT_TRUE(isCovered(left)) << "a double click puts it back";

            Drag(preview, {middle + QPointF(100, 0), middle + QPointF(100, -100)});
            EXPECT_NEAR(preview.Degrees(), 45, 1e-9);
            Drag(preview, {middle + QPointF(-50, 5), middle + QPointF(-50, -5)});
        },
        u"btnOk"_s);
    EXPECT_NEAR(degrees.value_or(0), 45 - 2 * 5.7105931375, 1e-9)
        << "across the left, exactly, not as the field rounds it";
}

TEST_F(RotateDialog, WheelKeysAndFieldTurnInStepsAndEveryOpeningStartsUpright) {
    const auto degrees = Show(
        [](RotationPreview& preview) {
            auto& field = Child<QDoubleSpinBox>(*preview.window(), u"Angle"_s);
            QTest::keyClick(&preview, Qt::Key_Left);
            QTest::keyClick(&preview, Qt::Key_Up, Qt::ShiftModifier);
            EXPECT_NEAR(field.value(), 1.1, 1e-9);
            SendWheel(preview, {5, 5}, -240);
            EXPECT_NEAR(preview.Degrees(), 0.9, 1e-9);
            for (const QLocale::Language language : {QLocale::German, QLocale::C}) {
                field.setLocale(language);
                for (const auto& [typed, angle] :
                     {std::pair("2,5", 2.5), {"2.5", 2.5}, {"-12,3", -12.3}, {"7", 7.0}}) {
                    field.selectAll();
                    QTest::keyClicks(&field, QLatin1StringView(typed));
                    EXPECT_NEAR(preview.Degrees(), angle, 1e-9) << typed;
                }
            }
            field.setValue(-3.4);
        },
        u"btnOk"_s);
    EXPECT_EQ(degrees, -3.4);
    EXPECT_EQ(
        Show([](RotationPreview& preview) { EXPECT_EQ(preview.Degrees(), 0); }, u"btnCancel"_s),
        std::nullopt);
}

TEST_F(RotateDialog, TheGuideLineShowsThroughBelowTheTop) {
    Show(
        [](RotationPreview& preview) {
            const QImage shown = preview.grab().toImage();
            const double scale = preview.height() / (200 * 0.2588190451 + 300 * 0.9659258263);
            const int row = static_cast<int>((preview.height() / 2.0 - 150 * scale + 120 * scale) *
                                             shown.devicePixelRatio());
            const auto rowColour = [&](int y) { return shown.pixel(shown.width() / 2 + 7, y); };
            EXPECT_NE(rowColour(row), rowColour(row + 5));
        },
        u"btnCancel"_s);
}

class ColourDialog : public ::testing::Test {
 protected:
    static QRgb Seen(ImageView& view) {
        const QImage shown = view.grab().toImage();
        return shown.pixel(shown.rect().center()) | 0xff000000;
    }

    ImageView& Before() { return Child<ImageView>(dialog, "Before"); }
    ImageView& After() { return Child<ImageView>(dialog, "After"); }

    Pixels photo = Pixels(Filled({40, 60}, qRgb(90, 120, 150)));
    ModalDriver driver;
    dialogs::ColourAdjustment dialog;
};

TEST_F(ColourDialog, ShowsWhatItReturnsBesideThePhotoAsItIs) {
    ASSERT_EQ(Child<QTabWidget>(dialog).count(), 4);
    driver.Expect(u"ColourAdjustment"_s, [this](QWidget& shown) {
        EXPECT_EQ(dialog.Filter(), nullptr);
        for (const char* slider : {"Contrast", "Brightness", "Hue", "Saturation", "Lightness",
                                   "Red", "Green", "Blue", "Equalisation"}) {
            Child<QSpinBox>(dialog, slider).setValue(40);
            const imaging::PixelFilterPointer filter = dialog.Filter();
            ASSERT_NE(filter, nullptr) << slider;
            EXPECT_EQ(Seen(Before()), qRgb(90, 120, 150)) << slider;
            EXPECT_EQ(Seen(After()), imaging::Filtered(photo, *filter).Tile().pixel(0, 0))
                << slider;
        }
        ClickButton(shown, "btnResetAll");
        EXPECT_EQ(dialog.Filter(), nullptr);
        Child<QSlider>(shown, "RedSlider").setValue(30);
        EXPECT_NE(Seen(After()), Seen(Before()));
        ClickButton(shown, "btnOk");
    });
    EXPECT_EQ(dialog.ShowEx(photo), controls::ModalResult::Ok);
    EXPECT_GT(qRed(imaging::Filtered(photo, *dialog.Filter()).Tile().pixel(0, 0)), 90);
}

TEST_F(ColourDialog, BothSidesZoomTogetherAndTheSizeIsKept) {
    const QSize screen = dialog.screen()->availableSize();
    EXPECT_LT(dialog.height(), screen.height()) << "there is room for its title";
    EXPECT_EQ(dialog.size(), QSize(800, 800).boundedTo(screen - QSize(16, 48)));
    EXPECT_LE(dialog.minimumSizeHint().height(), 700);
    driver.Expect(u"ColourAdjustment"_s, [this](QWidget& shown) {
        EXPECT_EQ(Before().ZoomPercent(), After().ZoomPercent());
        SendWheel(Before(), {30, 40}, 720);
        EXPECT_EQ(Before().ZoomPercent(), After().ZoomPercent());
        EXPECT_EQ(Before().ToImage({0, 0}), After().ToImage({0, 0}));
        shown.resize(700, 650);
        ClickButton(shown, "btnCancel");
    });
    EXPECT_EQ(dialog.ShowEx(photo), controls::ModalResult::Cancel);
    driver.Expect(u"ColourAdjustment"_s, [](QWidget& shown) {
        EXPECT_EQ(shown.size(), QSize(700, 650));
        shown.close();
    });
    dialog.ShowEx(photo);
}

}  // namespace kadrona::testing
