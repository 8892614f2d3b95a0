#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QFileInfo>
#include <QLabel>
#include <QSpinBox>

#include "tests/app/StoryFixture.h"

using namespace Qt::StringLiterals;

namespace kadrona::testing {

class PaperStory : public Story {
 protected:
    template <typename Control>
    Control& InSection(const char* name) {
        return Child<Control>(Child<QWidget>(*window, "SheetSection"), name);
    }
    QString Summary() { return InSection<QLabel>("SheetSummary").text(); }
    QListWidget& Tray() { return Child<QListWidget>(*window, "TrayList"); }
    void Click(const char* name) { Child<QAbstractButton>(*window, name).click(); }

    void Print() {
        printer.setupChoice = FakePrinter::Choice("Photo", "PageSize=A4\n");
        driver.Press(u"BeforPrintDlgFm"_s, u"btnNoProfile"_s);
        Trigger(u"acPrintImage"_s);
    }

    /// Four copies are asked for.
    void OpenOnPaper(int paper) {
        Open("photo.png");
        Child<QComboBox>(*window, "Anzahl").setCurrentIndex(2);
        Trigger(u"acShowSheet"_s);
        InSection<QComboBox>("SheetPaper").setCurrentIndex(paper);
    }
};

TEST_F(PaperStory, TheSectionSaysAndMakesTheSheetAndTheProfileKeepsIt) {
    OpenOnPaper(1);
    EXPECT_TRUE(Summary().startsWith(u"4 Bilder"_s)) << Summary().toStdString();
    InSection<QCheckBox>("SheetFill").setChecked(true);
    EXPECT_TRUE(Summary().startsWith(u"8 Bilder, gedreht"_s)) << Summary().toStdString();
    InSection<QDoubleSpinBox>("SheetEdge").setValue(5);
    EXPECT_TRUE(Summary().startsWith(u"6 Bilder"_s)) << Summary().toStdString();
    InSection<QDoubleSpinBox>("SheetEdge").setValue(50);
    EXPECT_TRUE(Summary().startsWith(u"✗"_s)) << Summary().toStdString();
    InSection<QDoubleSpinBox>("SheetEdge").setValue(5);
    Trigger(u"acCrop"_s);
    const imaging::Pixels& sheet = Image().Photo();
    ASSERT_NE(sheet.Arranged(), nullptr);
    EXPECT_EQ(sheet.PhotoCount(), 6);
    const double inches = static_cast<double>(sheet.Width()) / Image().Resolution().value;
    EXPECT_NEAR(inches * 25.4, 101.6, 12.7 / Image().Resolution().value);
    Print();
    ASSERT_EQ(printer.jobs.size(), 1);
    EXPECT_EQ(printer.jobs[0].image.arrangement->photos, 6);
    EXPECT_NEAR(printer.jobs[0].image.Millimetres().width(), 101.6, 0.1);

    Start();
    EXPECT_EQ(InSection<QComboBox>("SheetPaper").currentIndex(), 1);
    EXPECT_EQ(InSection<QDoubleSpinBox>("SheetEdge").value(), 5);
}

TEST_F(PaperStory, TenthsOfMillimetresAreTypedWhileThePreviewFollows) {
    OpenOnPaper(1);
    auto& gap = InSection<QDoubleSpinBox>("SheetGap");
    gap.selectAll();
    QTest::keyClicks(&gap, u"4"_s + gap.locale().decimalPoint() + u"5"_s);
    EXPECT_EQ(gap.value(), 4.5);
}

TEST_F(PaperStory, ThePreviewShowsTheLineOfText) {
    OpenOnPaper(1);
    auto& preview = Child<QWidget>(*window, "SheetPreview");
    const QImage without = Grabbed(preview);
    InSection<QCheckBox>("SheetText").setChecked(true);
    EXPECT_NE(Grabbed(preview), without);
    InSection<QCheckBox>("SheetText").setChecked(false);
    EXPECT_EQ(Grabbed(preview), without);
}

TEST_F(PaperStory, FewerThanAskedForAreMadeOnlyWhenTheUserWantsThem) {
    OpenOnPaper(7);
    InSection<QDoubleSpinBox>("SheetPaperWidth").setValue(50);
    InSection<QDoubleSpinBox>("SheetPaperHeight").setValue(150);
    EXPECT_TRUE(Summary().startsWith(u"3 Bilder statt 4"_s)) << Summary().toStdString();
    driver.Answer(u"Sollen es 3 Bilder werden?"_s, u"NoButton"_s);
    Trigger(u"acCrop"_s);
    EXPECT_EQ(Image().LayerCount(), 2) << "nothing was cut";
    driver.Answer(u"Sollen es 3 Bilder werden?"_s, u"YesButton"_s);
    Trigger(u"acCrop"_s);
    EXPECT_EQ(Image().Photo().PhotoCount(), 3);
}

TEST_F(PaperStory, TheTrayOutlivesTheProgramUntilItIsPrinted) {
    OpenOnPaper(4);
    Trigger(u"acAddToSheet"_s);
    SavePhoto("<u>other.png", QSize(800, 1000), 90);
    Open("<u>other.png", 1);
    Trigger(u"acAddToSheet"_s);
    ASSERT_EQ(Tray().count(), 2);
    EXPECT_TRUE(Tray().item(1)->toolTip().contains(u"&lt;u&gt;other"_s)) << "no mark-up";
    Child<QSpinBox>(*window, "TrayCount").setValue(1);
    Click("TrayUp");
    const QString folder = window->Data().DataFolder() + u"/Sammelblatt"_s;
    for (const QFileInfo& file : QDir(folder).entryInfoList(QDir::Files)) {
        EXPECT_EQ(file.permissions() &
                      ~(QFile::ReadOwner | QFile::WriteOwner | QFile::ReadUser | QFile::WriteUser),
                  QFile::Permissions())
            << qPrintable(file.fileName());
    }
    Start();
    ASSERT_EQ(Tray().count(), 2);
    EXPECT_TRUE(Tray().item(0)->text().startsWith(u"1 × "_s));
    EXPECT_TRUE(Tray().item(0)->text().contains(u"other"_s));
    EXPECT_TRUE(Tray().item(1)->text().startsWith(u"4 × "_s));
    Click("TrayMake");
    EXPECT_EQ(Image().Photo().PhotoCount(), 5);
    EXPECT_EQ(Tray().count(), 2) << "made, not printed";
    Print();
    EXPECT_EQ(Tray().count(), 0);
    EXPECT_EQ(QDir(folder).entryList(QDir::Files), QStringList(u"Sammelblatt.json"_s));
}

}  // namespace kadrona::testing
