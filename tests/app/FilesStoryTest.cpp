#include <gtest/gtest.h>

#include <QClipboard>
#include <QDoubleSpinBox>
#include <QFileDialog>
#include <QGuiApplication>
#include <QLabel>
#include <QMimeData>
#include <QRadioButton>
#include <QUrl>

#include "app/base/FilePreview.h"
#include "core/archive/Tags.h"
#include "core/settings/WatchedFolder.h"
#include "platform/AtomicFile.h"
#include "tests/app/StoryFixture.h"
#include "tests/imaging/RawFixture.h"

using namespace Qt::StringLiterals;

namespace kadrona::testing {

class UploadStory : public SavingStory {
 protected:
    static void SetOwn(QWidget& shown, int width, int height, int kilobytes) {
        const auto set = [&shown](const char* name, int value) {
            Child<QDoubleSpinBox>(shown, name).setValue(value);
        };
        set("UploadWidthFrom", width);
        set("UploadWidthTo", width);
        set("UploadHeightFrom", height);
        set("UploadHeightTo", height);
        set("UploadKilobytesTo", kilobytes);
        Child<QRadioButton>(shown, "OwnFigures").setChecked(true);
    }
    QString Saved(const char* name) const {
        return installation.Path("saved/") + QLatin1StringView(name);
    }
};

TEST_F(UploadStory, MakesTheFileOfTheCutItselfAndKeepsOwnFigures) {
    EXPECT_FALSE(IsEnabled(u"acUploadFile"_s));
    Open(photoName);
    const QSize cut = Template().size();
    driver.Expect(u"UploadFileFm"_s, [cut](QWidget& shown) {
        EXPECT_TRUE(Child<QLabel>(shown, "Evidence").text().contains(u"keine Vorgaben"_s));
        const QPixmap picture = Child<QLabel>(shown, "Picture").pixmap();
        EXPECT_EQ(picture.size(), cut) << "a pixel on a pixel";
        dynamic_cast<QDialog&>(shown).reject();
    });
    Trigger(u"acUploadFile"_s);

    Trigger(u"acCrop"_s);
    ASSERT_GT(Image().Photo().Width(), 4 * cut.width()) << "a sheet with borders";
    core::SetIptcTags(Image(), u"Anna"_s, u"privat"_s);
    driver.Expect(u"UploadFileFm"_s, [](QWidget& shown) {
        SetOwn(shown, 413, 413, 20);
        EXPECT_FALSE(Child<QPushButton>(shown, "btnSave").isEnabled());
        EXPECT_TRUE(Child<QLabel>(shown, "State").text().contains(u"413 x 531"_s));
        Child<QRadioButton>(shown, "TemplateFigures").setChecked(true);
        SetOwn(shown, 413, 531, 20);
        EXPECT_EQ(Child<QLabel>(shown, "Pixels").text(), u"413 x 531 Pixel, 300 dpi"_s);
        Child<QPushButton>(shown, "btnSave").click();
    });
    driver.Expect(u"SaveDialog"_s, [](QWidget& shown) { Type(shown, u"antrag.jpg"_s); });
    Trigger(u"acUploadFile"_s);
    const QImage file(Saved("antrag.jpg"));
    ASSERT_EQ(file.size(), QSize(413, 531));
    EXPECT_NEAR(qRed(file.pixel(0, 0)), 120, 1) << "no border";
    EXPECT_FALSE(platform::ReadWholeFile(Saved("antrag.jpg"), 1 << 20).contains("privat"));

    Start();
    Open(photoName);
    driver.Expect(u"UploadFileFm"_s, [](QWidget& shown) {
        EXPECT_TRUE(Child<QRadioButton>(shown, "OwnFigures").isChecked());
        EXPECT_EQ(Child<QDoubleSpinBox>(shown, "UploadHeightTo").value(), 531);
        dynamic_cast<QDialog&>(shown).reject();
    });
    Trigger(u"acUploadFile"_s);
}

TEST_F(Story, ThePhotoOfTheClipboardOpensUnderANameOfItsOwn) {
    auto* clipboard = QGuiApplication::clipboard();
    clipboard->setText(u"no picture"_s);
    driver.Answer(u"kein Bild"_s);
    Trigger(u"acPaste"_s);

    QImage picture(300, 400, QImage::Format_RGB32);
    picture.fill(qRgb(10, 20, 200));
    ExpectTemplate();
    clipboard->setImage(picture);
    Trigger(u"acPaste"_s);
    EXPECT_EQ(Image().Photo().Size(), picture.size());
    EXPECT_EQ(Image().Photo().Tile().pixel(5, 5), qRgb(10, 20, 200));
    EXPECT_TRUE(window->Session().FileName().startsWith(u"Zwischenablage 20"_s));

    auto* file = new QMimeData;
    file->setUrls({QUrl::fromLocalFile(installation.Path("photo.png"))});
    file->setImageData(picture);
    ExpectTemplate();
    clipboard->setMimeData(file);
    Trigger(u"acPaste"_s);
    EXPECT_EQ(window->Session().FileName(), installation.Path("photo.png")) << "the file itself";
}

TEST_F(Story, ARawFileGivenUpLeavesThePhotoBefore) {
    installation.Write("a.dng", imaging::test::RawFile({.size = {1600, 1300}}, Qt::gray));
    Open("photo.png");
    driver.Press(u"DevelopingProgress"_s, u"Cancel"_s);
    window->OpenDroppedFiles({installation.Path("a.dng")});
    EXPECT_EQ(Image().Photo().Size(), QSize(1200, 1600));
    EXPECT_EQ(Image().LayerCount(), 2);
    EXPECT_EQ(window->Session().FileName(), installation.Path("photo.png"));
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

TEST_F(Story, TheWatchedFoldersPhotosStandInAStripThatOpensThem) {
    SavePhoto("card/one.jpg", {800, 1000});
    installation.Write("card/half.jpg", "\xff\xd8\xff half of a photo");
    installation.Write("card/large.gif",
                       "GIF89a N N");  // too large for a small picture
    core::SetWatchedFolder(installation.Path("card"));
    Start();
    auto& strip = Child<QListWidget>(*window, "PhotoStrip");
    ASSERT_TRUE(QTest::qWaitFor([&] { return strip.isVisible() && strip.count() == 2; }, 8000));
    const auto shown = strip.findItems(u"one.jpg"_s, Qt::MatchExactly);
    ASSERT_EQ(shown.size(), 1);
    ExpectTemplate();
    Q_EMIT strip.itemClicked(shown.first());
    EXPECT_EQ(window->Session().FileName(), installation.Path("card/one.jpg"));

    SavePhoto("card/other.jpg", {800, 1000});
    EXPECT_TRUE(QTest::qWaitFor([&] { return strip.count() == 3; }, 8000));
    EXPECT_EQ(window->Session().FileName(), installation.Path("card/one.jpg")) << "not asked for";
    Setting<QAbstractButton>("OpenNewestPhoto").setChecked(true);
    ExpectTemplate();
    SavePhoto("card/two.jpg", {800, 1000});
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return window->Session().FileName() == installation.Path("card/two.jpg"); }, 8000));
    core::SetWatchedFolder({});
}

TEST_F(Story, ThePhotoChosenInTheFileDialogIsShownBesideTheListWhereThereIsRoom) {
    const auto previewIn = [](QFileDialog& dialog, int width) {
        dialog.setOption(QFileDialog::DontUseNativeDialog);
        dialog.resize(width, 300);
        app::FilePreview::AddTo(dialog);
        return dialog.findChild<QLabel*>(u"PreviewPicture"_s);
    };
    QFileDialog wide;
    EXPECT_EQ(previewIn(wide, wide.screen()->availableSize().width() - 50), nullptr);
    QFileDialog dialog;
    const QLabel* preview = previewIn(dialog, 400);
    ASSERT_NE(preview, nullptr);
    Q_EMIT dialog.currentChanged(installation.Path("photo.png"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return !preview->pixmap().isNull(); }, 3000));
    installation.Write("no.jpg", "photo");
    Q_EMIT dialog.currentChanged(installation.Path("no.jpg"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return preview->text() == u"Keine Vorschau"_s; }, 3000));
}

}  // namespace kadrona::testing
