// The archive through the real window: filing photos with tags, finding one, changing its tags,
// opening it for printing.

#include <QImageReader>

#include "controls/cards/CardGrid.h"
#include "controls/fields/StatusPanels.h"
#include "imaging/reading/ImageReader.h"
#include "tests/app/StoryFixture.h"

using namespace Qt::StringLiterals;

namespace kadrona::testing {

class ArchiveStory : public Story {
 protected:
    ArchiveStory() {
        core::NameSources march;
        march.now = [] { return QDateTime(QDate(2026, 3, 7), QTime(14, 30)); };
        data().SetNameSources(march);
        QDir().mkpath(ArchiveFolder());
    }

    core::TData& data() { return window->Data(); }
    QString ArchiveFolder() const { return installation.Path("archive"); }
    QString PhotoOf(int id) const {
        return ArchiveFolder() + u"/2026/03/2026_03_%1.jpg"_s.arg(id, 5, 10, QChar(u'0'));
    }

    /// Opens a photo, makes a sheet of two by three and answers the tag dialog; without tags it is
    /// cancelled. Where archiving then fails with a message it is not tried again.
    void Archive(const char* photo, const std::optional<QString>& tags,
                 const QString& failure = {}) {
        Open(photo);
        Setting<QLineEdit>("ImageDestinationDir").setText(ArchiveFolder());
        Setting<QAbstractButton>("ImageAutoSave").setChecked(true);
        SetLayout(1);
        AnswerTags(tags);
        if (!failure.isEmpty()) {
            driver.Answer(failure, u"NoButton"_s);
        }
        Trigger(u"acCrop"_s);
    }

    void AnswerTags(const std::optional<QString>& tags, const QString& offered = {}) {
        driver.Expect(u"fmImageTagEdit"_s, [tags, offered](QWidget& shown) {
            EXPECT_EQ(QApplication::overrideCursor(), nullptr);
            auto& memo = Child<QPlainTextEdit>(shown, "TagMemo");
            EXPECT_EQ(memo.toPlainText(), offered);
            memo.setPlainText(tags.value_or(u"x"_s));
            ClickButton(shown, tags ? "btnOk" : "btnCancel");
        });
    }

    /// Opens the archive, finds by a text and goes on with the window; then `message` is shown.
    void Search(const QString& text, const std::function<void(QWidget&)>& then,
                const QString& message = {}) {
        driver.Expect(u"fmImgSearch"_s, [=](QWidget& shown) {
            auto& edit = Child<QLineEdit>(shown, "FindEdit");
            edit.setText(text);
            QTest::keyClick(&edit, Qt::Key_Return);
            then(shown);
        });
        if (!message.isEmpty()) {
            driver.Answer(message);
        }
        Trigger(u"acSearchArchiv"_s);
    }

    static void DoubleClickFirst(QWidget& shown) {
        auto& grid = Child<controls::CardGrid>(shown, "CardGrid");
        const QPoint first = grid.CardRectangle(0).center();
        QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, first);
        QTest::mouseDClick(grid.viewport(), Qt::LeftButton, {}, first);
    }
};

TEST_F(ArchiveStory, FilesFindsTagsAnewAndOpensForPrinting) {
    SavePhoto("dark.png", QSize(900, 1200), 60);
    Archive("photo.png", u"Jürgen Weiß\nLübeck"_s);
    Archive("dark.png", u"Müzeyyen Özdemir"_s);
    Archive("photo.png", std::nullopt);
    Archive("photo.png", u"Anna"_s);
    ASSERT_EQ(data().Archive()->Ids().size(), 3U);

    Search(u"özdem*"_s, [this](QWidget& shown) {
        AnswerTags(u"Müzeyyen Özdemir\nKöln"_s, u"Müzeyyen Özdemir\n"_s);
        Child<QAction>(shown, "acEditTags").trigger();
        DoubleClickFirst(shown);
    });
    EXPECT_EQ(data().Archive()->Read(2)->tags, u"Müzeyyen Özdemir\r\nKöln\r\n"_s);

    const imaging::IptcItems iptc = imaging::ReadImageFile(PhotoOf(2)).iptc;
    EXPECT_EQ(iptc.Text(iptc.IndexOf(2, 5)), u"Müzeyyen Özdemir"_s);
    EXPECT_EQ(iptc.Text(iptc.IndexOf(2, 25)), u"Müzeyyen Özdemir,Köln,"_s);

    // The archived photo has its border; it is only repeated.
    const QSize single = QImageReader(PhotoOf(2)).size();
    EXPECT_EQ(Image().Photo().Size(), QSize(3 * single.width(), 2 * single.height()));
    EXPECT_EQ(Image().Resolution().value, imaging::ReadImageFile(PhotoOf(2)).resolution.value);
    EXPECT_EQ(Image().LayerCount(), 1);
    EXPECT_FALSE(Image().CanUndo());
    EXPECT_EQ(data().CurrentFile(), u"2026_03_00002.jpg"_s);
    EXPECT_EQ(data().CurrentFileFolder(), QFileInfo(installation.Path("photo.png")).path());
    EXPECT_EQ(Child<controls::StatusPanels>(*window).Path(), u"Archiv Image"_s);
    EXPECT_TRUE(IsEnabled(u"acPrintImage"_s));
    EXPECT_FALSE(IsEnabled(u"acCrop"_s));
    EXPECT_FALSE(IsEnabled(u"acUndo"_s));
}

TEST_F(ArchiveStory, WhatFailedIsArchivedAfterwardsAsItWouldHaveBeen) {
    const auto expectTags = [this](const QString& offered) {
        driver.Expect(u"fmImageTagEdit"_s, [offered](QWidget& shown) {
            EXPECT_EQ(Child<QPlainTextEdit>(shown, "TagMemo").toPlainText(), offered);
            ClickButton(shown, "btnOk");
        });
    };
    Setting<QAbstractButton>("KeepOriginals").setChecked(true);
    ASSERT_TRUE(QDir().rmdir(ArchiveFolder()));
    Archive("photo.png", u"Weg\nKöln"_s, u"nicht archiviert"_s);
    const QSize single = QSize(Image().Photo().Width() / 3, Image().Photo().Height() / 2);

    QDir().mkpath(ArchiveFolder());
    SetLayout(6);  // its border is another one
    expectTags(u"Weg\nKöln\n"_s);
    Trigger(u"acArchivePhoto"_s);
    EXPECT_EQ(QImageReader(PhotoOf(2)).size(), single);
    EXPECT_TRUE(QFile::exists(ArchiveFolder() + u"/Originale/2026/03/2026_03_00002.png"_s));
    EXPECT_FALSE(IsEnabled(u"acArchivePhoto"_s)) << "once is enough";

    // The same customer needs another document.
    Search(u"Weg"_s, [this](QWidget& shown) {
        ExpectTemplate(1);
        Child<QAction>(shown, "acRecut").trigger();
    });
    expectTags(u"Weg\nKöln\n"_s);
    Trigger(u"acCrop"_s);
    EXPECT_TRUE(QFile::exists(PhotoOf(3)));
}

TEST_F(ArchiveStory, APaperTakesTheArchivedPhotoWithoutItsBorder) {
    Archive("photo.png", u"a"_s);
    const QSize single = QImageReader(PhotoOf(1)).size();
    Setting<QComboBox>("SheetPaper").setCurrentIndex(1);
    Search({}, DoubleClickFirst);
    const imaging::Pixels& sheet = Image().Photo();
    ASSERT_NE(sheet.Arranged(), nullptr);
    EXPECT_EQ(sheet.PhotoCount(), 6);
    const QSize border = single - sheet.Arranged()->pictures.front().size();
    EXPECT_NEAR(border.width(), data().FrameSize(), 1);
    EXPECT_NEAR(border.height(), data().FrameSize(), 1);
    const double inches = static_cast<double>(sheet.Width()) / Image().Resolution().value;
    EXPECT_NEAR(inches * 25.4, 101.6, 12.7 / Image().Resolution().value);
}

TEST_F(ArchiveStory, LaysOutAsTheWindowSaysAndPrintsAtOnce) {
    Archive("photo.png", u"a"_s);
    const QSize single = QImageReader(PhotoOf(1)).size();
    Setting<QAbstractButton>("RotateBeforeTileImg").setChecked(true);
    for (const auto& [layout, columns] : {std::pair(3, 4), std::pair(-1, 1)}) {
        SetLayout(layout);
        Search({}, DoubleClickFirst);
        EXPECT_EQ(Image().Photo().Size(), QSize(columns * single.height(), single.width()));
    }
    EXPECT_EQ(printer.jobs.size(), 0);
    Setting<QAbstractButton>("PrintAfterCrop").setChecked(true);
    Search({}, [this](QWidget& shown) {
        driver.Accept(u"BeforPrintDlgFm"_s);
        DoubleClickFirst(shown);
    });
    EXPECT_EQ(printer.jobs.size(), 1);
}

TEST_F(ArchiveStory, NothingIsOpenedWithoutAFolderAPhotoOrAChoice) {
    Setting<QLineEdit>("ImageDestinationDir").setText({});
    driver.Answer(u"Sie haben kein Bilddatenbankverzeichnis in den Einstellungen angegeben"_s);
    Trigger(u"acSearchArchiv"_s);

    Archive("photo.png", u"a"_s);
    const QSize before = Image().Photo().Size();
    Search({}, [](QWidget& shown) { QTest::keyClick(&shown, Qt::Key_Q, Qt::ControlModifier); });
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    driver.Close(u"fmImgSearch"_s);
    QTest::keyClick(window.get(), Qt::Key_F, Qt::ControlModifier);
    EXPECT_TRUE(window->isVisible());

    ASSERT_TRUE(QFile::rename(PhotoOf(1), PhotoOf(9)));
    Search({}, DoubleClickFirst, PhotoOf(1));
    EXPECT_EQ(Image().Photo().Size(), before);

    // A damaged photo leaves nothing that could be printed.
    installation.Write("archive/2026/03/2026_03_00001.jpg", "damaged");
    Search({}, DoubleClickFirst, u"2026_03_00001.jpg"_s);
    EXPECT_TRUE(Image().IsEmpty());
    EXPECT_EQ(Child<controls::StatusPanels>(*window).Path(), QString());
    EXPECT_FALSE(IsEnabled(u"acPrintImage"_s));
    EXPECT_TRUE(Child<QWidget>(*window, "EmptyState").isVisible());
}

}  // namespace kadrona::testing
