// The set-up dialog over a real print service.

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QListWidget>
#include <QSpinBox>
#include <QTest>

#include "PrintService.h"
#include "printing/cups/CupsPrinterLayer.h"
#include "printing/cups/service/DeviceMode.h"
#include "tests/support/ModalDriver.h"

using namespace kadrona::printing;
using namespace kadrona::testing;
using namespace Qt::StringLiterals;
using cups::CupsPrinterLayer;
using cups::DeviceMode;

namespace {

template <typename Control>
Control& Find(QWidget& window, const char* name) {
    auto* control = window.findChild<Control*>(QString::fromLatin1(name));
    if (control == nullptr) {
        throw std::runtime_error(std::string("there is no ") + name);
    }
    return *control;
}

/// Chooses an entry as a user does.
void Choose(QWidget& window, const char* name, const QString& text) {
    auto& box = Find<QComboBox>(window, name);
    const int index = box.findText(text, Qt::MatchStartsWith);
    ASSERT_GE(index, 0) << name << " offers no " << text.toStdString();
    box.setCurrentIndex(index);
    Q_EMIT box.activated(index);
}

QStringList Texts(QWidget& window, const char* name) {
    auto& box = Find<QComboBox>(window, name);
    QStringList texts;
    for (int i = 0; i < box.count(); ++i) {
        texts.append(box.itemText(i));
    }
    return texts;
}

QStringList QueueTexts(QWidget& window) {
    auto& list = Find<QListWidget>(window, "QueueList");
    QStringList texts;
    for (int row = 0; row < list.count(); ++row) {
        texts.append(list.item(row)->text());
    }
    return texts;
}

class SetupDialogTest : public ::testing::Test {
 protected:
    /// Runs the dialog, does something in it and presses a button.
    bool Run(const std::function<void(QWidget&)>& step, const QString& button = u"OkButton"_s) {
        driver_.Expect(u"PrinterSetupDialog"_s, [step, button](QWidget& window) {
            step(window);
            Find<QAbstractButton>(window, button.toLatin1().constData()).click();
        });
        return layer_.ShowSetupDialog(nullptr);
    }

    DeviceMode Mode() { return DeviceMode(layer_.CurrentPrinter().deviceMode); }

    ModalDriver driver_;
    PrintService service_;
    // On a busy machine nothing but the dialog may appear.
    CupsPrinterLayer layer_{service_.Address(), std::chrono::minutes(1), std::chrono::minutes(1)};
};

TEST_F(SetupDialogTest, EveryFieldShowsTheDriverInGermanAndKeepsWhatIsChosen) {
    const PrinterChoice before = layer_.CurrentPrinter();
    EXPECT_FALSE(
        Run([](QWidget& window) { Choose(window, "PaperBox", u"A6"_s); }, u"CancelButton"_s));
    EXPECT_EQ(layer_.CurrentPrinter(), before);
    ASSERT_TRUE(Run([](QWidget& window) {
        EXPECT_EQ(
            Texts(window, "PaperBox"),
            (QStringList{u"A4 (210 × 297 mm)"_s, u"A6 (105 × 148 mm)"_s, u"4x6 (102 × 152 mm)"_s,
                         u"5x7 Roll (127 × 178 mm)"_s, u"3.5x5 Wide (127 × 89 mm)"_s}));
        for (const auto& [box, texts] : std::initializer_list<std::pair<const char*, QString>>{
                 {"TrayBox", u"Hauptfach,Fotofach"_s},
                 {"MediaTypeBox", u"Normalpapier,Fotopapier, glänzend"_s},
                 {"QualityBox", u"Entwurf,Normal,Hoch"_s},
                 {"ColorBox", u"Farbe,Graustufen"_s},
                 {"DuplexBox", u"Aus,Lange Seite,Kurze Seite"_s},
                 {"PhotoEnhance", u"Ein,Aus"_s}}) {
            EXPECT_EQ(Texts(window, box).join(u','), texts) << box;
        }
        EXPECT_EQ(Find<QAbstractButton>(window, "FurtherOptionsButton").text(),
                  u"Weitere Einstellungen des Treibers (2)"_s);
        auto& orientation = Find<QComboBox>(window, "OrientationBox");
        EXPECT_EQ(orientation.currentText(), u"Automatisch"_s);
        Choose(window, "PaperBox", u"3.5x5 Wide"_s);
        EXPECT_EQ(orientation.itemText(1), u"Querformat"_s);
        EXPECT_FALSE(Find<QCheckBox>(window, "BorderlessBox").isEnabled());
        Choose(window, "PaperBox", u"A6"_s);
        Find<QCheckBox>(window, "BorderlessBox").click();
        Choose(window, "OrientationBox", u"Querformat"_s);
        Choose(window, "TrayBox", u"Fotofach"_s);
        Choose(window, "ColorBox", u"Graustufen"_s);
        Find<QSpinBox>(window, "CopiesBox").setValue(3);
        Find<QAbstractButton>(window, "FurtherOptionsButton").click();
        Choose(window, "DryTime", u"Long"_s);
    }));
    EXPECT_EQ(Mode().ToBlock(),
              "PageSize=A6.Borderless\nInputSlot=Photo\nMediaType=Plain\nColorModel=Gray\n"
              "cupsPrintQuality=Normal\nDuplex=None\nPhotoEnhance=True\nDryTime=Long\ncopies=3\n"
              "orientation-requested=4\n");

    Run([](QWidget& window) {
        EXPECT_EQ(Find<QComboBox>(window, "PaperBox").currentText(), u"A6 (105 × 148 mm)"_s);
        EXPECT_TRUE(Find<QCheckBox>(window, "BorderlessBox").isChecked());
        EXPECT_EQ(Find<QSpinBox>(window, "CopiesBox").value(), 3);
        EXPECT_EQ(Find<QComboBox>(window, "DryTime").currentText(), u"Long"_s);
        Find<QCheckBox>(window, "BorderlessBox").click();
    });
    EXPECT_EQ(Mode().Value("PageSize"), "A6");
}

TEST_F(SetupDialogTest, QueuesComeAndGoWithTheirState) {
    Run([](QWidget& window) { EXPECT_EQ(QueueTexts(window), QStringList{u"Photo\nBereit"_s}); });
    service_.AddQueue(u"Neu"_s);
    service_.AddQueue(u"Voll"_s);
    service_.Run(u"cupsdisable"_s, {u"Neu"_s});
    service_.Run(u"cupsreject"_s, {u"Voll"_s});
    service_.Run(u"lpadmin"_s, {u"-d"_s, u"Neu"_s});
    Run([](QWidget& window) {
        EXPECT_EQ(QueueTexts(window),
                  (QStringList{u"Neu (Standard)\nAngehalten"_s, u"Photo\nBereit"_s,
                               u"Voll\nNimmt keine Aufträge an"_s}));
        auto& list = Find<QListWidget>(window, "QueueList");
        EXPECT_EQ(list.currentRow(), 1) << "the current printer is not the one shown";
        Choose(window, "PaperBox", u"A6"_s);
        list.setCurrentRow(0);
        EXPECT_EQ(Find<QComboBox>(window, "PaperBox").currentText(), u"A4 (210 × 297 mm)"_s);
        list.setCurrentRow(1);
        EXPECT_EQ(Find<QComboBox>(window, "PaperBox").currentText(), u"A6 (105 × 148 mm)"_s);
        list.setCurrentRow(0);
    });
    EXPECT_EQ(layer_.CurrentPrinter().device, u"Neu"_s);
    Run(
        [this](QWidget& window) {
            service_.Kill();
            Find<QListWidget>(window, "QueueList").setCurrentRow(1);
            EXPECT_TRUE(Find<QLabel>(window, "NoteLabel").isVisible());
            EXPECT_FALSE(Find<QAbstractButton>(window, "OkButton").isEnabled());
        },
        u"CancelButton"_s);
}

TEST_F(SetupDialogTest, OptionsThatTheQueueNoLongerHasAreKeptUntilChosenAnew) {
    PrinterChoice choice = layer_.CurrentPrinter();
    choice.deviceMode = "InputSlot=Gone\nGoneOption=x\nMediaType=Gone\n";
    layer_.SetCurrentPrinter(choice);
    Run([](QWidget& window) {
        EXPECT_EQ(Find<QComboBox>(window, "TrayBox").currentText(), u"Hauptfach"_s);
        Choose(window, "TrayBox", u"Fotofach"_s);
    });
    EXPECT_EQ(Mode().Value("InputSlot"), "Photo");
    EXPECT_EQ(Mode().Value("GoneOption"), "x");
    EXPECT_EQ(Mode().Value("MediaType"), "Gone");
}

TEST_F(SetupDialogTest, ChoicesThatExcludeEachOtherAreNamed) {
    Run([](QWidget& window) {
        auto& note = Find<QLabel>(window, "NoteLabel");
        EXPECT_FALSE(note.isVisible());
        Choose(window, "MediaTypeBox", u"Fotopapier"_s);
        Choose(window, "DuplexBox", u"Lange Seite"_s);
        EXPECT_TRUE(note.isVisible());
        EXPECT_TRUE(note.text().contains(u"Doppelseitig"_s)) << note.text().toStdString();
        EXPECT_TRUE(note.text().contains(u"Papierart"_s)) << note.text().toStdString();
        Choose(window, "DuplexBox", u"Aus"_s);
        EXPECT_FALSE(note.isVisible());
    });
}

}  // namespace
