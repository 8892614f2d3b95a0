// The dialogs that turn the photo and change its colours.

#include <gtest/gtest.h>

#include <QDoubleSpinBox>
#include <QMouseEvent>
#include <QPushButton>
#include <QSlider>
#include <QSpinBox>
#include <QTabWidget>
#include <QTest>
#include <QWheelEvent>

#include "dialogs/ColourAdjustment.h"
#include "dialogs/RotateDialog.h"
#include "dialogs/RotationPreview.h"
#include "imaging/view/ImageView.h"
#include "tests/support/ModalDriver.h"
#include "tests/support/PixelMatchers.h"

using namespace Qt::StringLiterals;

namespace kadrona::testing {

using dialogs::RotationPreview;
using imaging::Pixels;
using imaging::view::ImageView;

namespace {

void Drag(QWidget& widget, std::initializer_list<QPointF> way) {
    QTest::mousePress(&widget, Qt::LeftButton, {}, way.begin()->toPoint());
    for (const QPointF& to : way) {
        QMouseEvent move(QEvent::MouseMove, to, widget.mapToGlobal(to), Qt::NoButton,
                         Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&widget, &move);
    }
    QTest::mouseRelease(&widget, Qt::LeftButton, {}, (way.end() - 1)->toPoint());
}

}  // namespace

class RotateDialog : public ::testing::Test {
 protected:
    std::optional<double> Show(const std::function<void(RotationPreview&)>& answer,
                               const QString& button) {
        driver.Expect(u"fmRotateDlg"_s, [answer, button](QWidget& shown) {
            answer(*shown.findChild<RotationPreview*>(u"Preview"_s));
            shown.findChild<QPushButton*>(button)->click();
        });
        return dialog.ShowEx(Pixels(QImage(200, 300, QImage::Format_RGB32)));
    }

    ModalDriver driver;
    dialogs::TfmRotateDlg dialog;
};

TEST_F(RotateDialog, ADragAroundTheMiddleTurnsByItsAngleCounterClockwise) {
    const auto degrees = Show(
        [](RotationPreview& preview) {
            const QPointF middle(preview.width() / 2.0, preview.height() / 2.0);
            Drag(preview, {middle + QPointF(100, 0), middle + QPointF(100, -100)});
            EXPECT_NEAR(preview.Degrees(), 45, 1e-9);
            Drag(preview, {middle + QPointF(-50, 5), middle + QPointF(-50, -5)});
            EXPECT_NEAR(preview.Degrees(), 45 - 2 * 5.7105931375, 1e-9) << "across the left";
        },
        u"btnOk"_s);
    ASSERT_TRUE(degrees.has_value());
    EXPECT_NEAR(*degrees, 45 - 2 * 5.7105931375, 1e-9) << "exactly, not as the field rounds it";
}

TEST_F(RotateDialog, WheelKeysAndFieldTurnInStepsAndEveryOpeningStartsUpright) {
    const auto degrees = Show(
        [](RotationPreview& preview) {
            auto* field = preview.window()->findChild<QDoubleSpinBox*>(u"Angle"_s);
            QTest::keyClick(&preview, Qt::Key_Left);
            QTest::keyClick(&preview, Qt::Key_Up, Qt::ShiftModifier);
            EXPECT_NEAR(field->value(), 1.1, 1e-9);
            QWheelEvent wheel({5, 5}, {5, 5}, {}, {0, -240}, Qt::NoButton, Qt::NoModifier,
                              Qt::NoScrollPhase, false);
            QCoreApplication::sendEvent(&preview, &wheel);
            EXPECT_NEAR(preview.Degrees(), 0.9, 1e-9);
            field->setValue(-3.4);
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
    QRgb Seen(ImageView& view) {
        const QImage shown = view.grab().toImage();
        return shown.pixel(shown.rect().center()) | 0xff000000;
    }
    void Set(const char* slider, int value) {
        dialog.findChild<QSpinBox*>(QLatin1StringView(slider))->setValue(value);
    }

    Pixels photo = Pixels([] {
        QImage image(40, 60, QImage::Format_RGB32);
        image.fill(qRgb(90, 120, 150));
        return image;
    }());
    ModalDriver driver;
    dialogs::ColourAdjustment dialog;
};

TEST_F(ColourDialog, ShowsWhatItReturnsBesideThePhotoAsItIs) {
    ASSERT_EQ(dialog.findChild<QTabWidget*>(u"Pages"_s)->count(), 4);
    driver.Expect(u"ColourAdjustment"_s, [this](QWidget& shown) {
        auto& before = *shown.findChild<ImageView*>(u"Before"_s);
        auto& after = *shown.findChild<ImageView*>(u"After"_s);
        EXPECT_EQ(dialog.Filter(), nullptr);
        for (const char* slider : {"Contrast", "Brightness", "Hue", "Saturation", "Lightness",
                                   "Red", "Green", "Blue", "Equalisation"}) {
            Set(slider, 40);
            const imaging::PixelFilterPointer filter = dialog.Filter();
            ASSERT_NE(filter, nullptr) << slider;
            EXPECT_EQ(Seen(before), qRgb(90, 120, 150)) << slider;
            EXPECT_EQ(Seen(after), imaging::Filtered(photo, *filter).Tile().pixel(0, 0)) << slider;
        }
        shown.findChild<QPushButton*>(u"btnResetAll"_s)->click();
        EXPECT_EQ(dialog.Filter(), nullptr);
        shown.findChild<QSlider*>(u"RedSlider"_s)->setValue(30);
        EXPECT_NE(Seen(after), Seen(before));
        shown.findChild<QPushButton*>(u"btnOk"_s)->click();
    });
    EXPECT_EQ(dialog.ShowEx(photo), controls::ModalResult::Ok);
    EXPECT_GT(qRed(imaging::Filtered(photo, *dialog.Filter()).Tile().pixel(0, 0)), 90);
}

TEST_F(ColourDialog, BothSidesZoomTogetherAndTheSizeIsKept) {
    EXPECT_EQ(dialog.size(), QSize(800, 800).boundedTo(dialog.screen()->availableSize()));
    driver.Expect(u"ColourAdjustment"_s, [](QWidget& shown) {
        auto& before = *shown.findChild<ImageView*>(u"Before"_s);
        auto& after = *shown.findChild<ImageView*>(u"After"_s);
        EXPECT_EQ(before.ZoomPercent(), after.ZoomPercent());
        QWheelEvent wheel({30, 40}, before.mapToGlobal(QPointF(30, 40)), {}, {0, 360}, Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(&before, &wheel);
        QCoreApplication::sendEvent(&before, &wheel);
        EXPECT_EQ(before.ZoomPercent(), after.ZoomPercent());
        EXPECT_EQ(before.ToImage({0, 0}), after.ToImage({0, 0}));
        shown.resize(700, 650);
        shown.findChild<QPushButton*>(u"btnCancel"_s)->click();
    });
    EXPECT_EQ(dialog.ShowEx(photo), controls::ModalResult::Cancel);
    driver.Expect(u"ColourAdjustment"_s, [](QWidget& shown) {
        EXPECT_EQ(shown.size(), QSize(700, 650));
        shown.close();
    });
    dialog.ShowEx(photo);
}

}  // namespace kadrona::testing
