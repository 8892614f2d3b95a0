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
#include "tests/support/Accessibility.h"
#include "tests/support/Errors.h"
#include "tests/support/ModalDriver.h"

using namespace kadrona::printing;
using namespace kadrona::testing;
using namespace Qt::StringLiterals;
using cups::CupsPrinterLayer;
using cups::DeviceMode;

namespace {

/// Chooses an entry as a user does.
void Choose(QWidget& window, const char* name, const QString& text) {
    auto& box = Child<QComboBox>(window, name);
    const int index = box.findText(text, Qt::MatchStartsWith);
    ASSERT_GE(index, 0) << name << " offers no " << text.toStdString();
    box.setCurrentIndex(index);
    Q_EMIT box.activated(index);
}

/// The entries of a box or a list, parted by "|".
template <typename Control>
QString Texts(QWidget& window, const char* name) {
    const QAbstractItemModel& entries = *Child<Control>(window, name).model();
    QStringList texts;
    for (int row = 0; row < entries.rowCount(); ++row) {
        texts.append(entries.index(row, 0).data().toString());
    }
    return texts.join(u'|');
}

QString Chosen(QWidget& window, const char* name) {
    return Child<QComboBox>(window, name).currentText();
}

class SetupDialogTest : public ::testing::Test {
 protected:
    /// Runs the dialog, does something in it and presses a button.
    bool Run(const std::function<void(QWidget&)>& step, const QString& button = u"OkButton"_s) {
        driver_.Expect(u"PrinterSetupDialog"_s, [step, button](QWidget& window) {
            step(window);
            Child<QAbstractButton>(window, button).click();
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
    QStringList faults;
    const auto choose = [&faults](QWidget& window) {
        CollectNameFaults(QAccessible::queryAccessibleInterface(&window), {}, faults);
        faults += Unreachable(window);
        Choose(window, "PaperBox", u"A6"_s);
    };
    EXPECT_FALSE(Run(choose, u"CancelButton"_s));
    EXPECT_EQ(faults.join(u'\n').toStdString(), "");
    EXPECT_EQ(layer_.CurrentPrinter(), before);
    ASSERT_TRUE(Run([](QWidget& window) {
        for (const auto& [box, texts] : std::initializer_list<std::pair<const char*, QString>>{
                 {"PaperBox",
                  u"A4 (210 × 297 mm)|A6 (105 × 148 mm)|4x6 (102 × 152 mm)|"
                  "5x7 Roll (127 × 178 mm)|3.5x5 Wide (127 × 89 mm)|Eigenes Format"_s},
                 {"TrayBox", u"Hauptfach|Fotofach"_s},
                 {"MediaTypeBox", u"Normalpapier|Fotopapier, glänzend"_s},
                 {"QualityBox", u"Entwurf|Normal|Hoch"_s},
                 {"ColorBox", u"Farbe|Graustufen"_s},
                 {"DuplexBox", u"Aus|Lange Seite|Kurze Seite"_s},
                 {"PhotoEnhance", u"Ein|Aus"_s}}) {
            EXPECT_EQ(Texts<QComboBox>(window, box), texts) << box;
        }
        EXPECT_EQ(Child<QAbstractButton>(window, "FurtherOptionsButton").text(),
                  u"&Weitere Einstellungen des Treibers (2)"_s);
        EXPECT_EQ(Chosen(window, "OrientationBox"), u"Automatisch"_s);
        Choose(window, "PaperBox", u"3.5x5 Wide"_s);
        EXPECT_EQ(Child<QComboBox>(window, "OrientationBox").itemText(1), u"Querformat"_s);
        EXPECT_FALSE(Child<QCheckBox>(window, "BorderlessBox").isEnabled());
        Choose(window, "PaperBox", u"A6"_s);
        Child<QCheckBox>(window, "BorderlessBox").click();
        Choose(window, "OrientationBox", u"Querformat"_s);
        Choose(window, "TrayBox", u"Fotofach"_s);
        Choose(window, "ColorBox", u"Graustufen"_s);
        Child<QSpinBox>(window, "CopiesBox").setValue(3);
        Child<QAbstractButton>(window, "FurtherOptionsButton").click();
        Choose(window, "DryTime", u"Long"_s);
    }));
    EXPECT_EQ(Mode().ToBlock(),
              "PageSize=A6.Borderless\nInputSlot=Photo\nMediaType=Plain\nColorModel=Gray\n"
              "cupsPrintQuality=Normal\nDuplex=None\nPhotoEnhance=True\nDryTime=Long\ncopies=3\n"
              "orientation-requested=4\n");

    Run([](QWidget& window) {
        EXPECT_EQ(Chosen(window, "PaperBox"), u"A6 (105 × 148 mm)"_s);
        EXPECT_TRUE(Child<QCheckBox>(window, "BorderlessBox").isChecked());
        EXPECT_EQ(Child<QSpinBox>(window, "CopiesBox").value(), 3);
        EXPECT_EQ(Chosen(window, "DryTime"), u"Long"_s);
        Child<QCheckBox>(window, "BorderlessBox").click();
    });
    EXPECT_EQ(Mode().Value("PageSize"), "A6");
    Run([](QWidget& window) {
        EXPECT_FALSE(Child<QWidget>(window, "CustomPaper").isVisible());
        Choose(window, "PaperBox", u"Eigenes Format"_s);
        Child<QDoubleSpinBox>(window, "CustomWidthBox").setValue(1000);
        Child<QDoubleSpinBox>(window, "CustomHeightBox").setValue(120.5);
    });
    EXPECT_EQ(Mode().Value("PageSize"), "Custom.215.9x120.5mm");
    EXPECT_NEAR(layer_.Paper().geometry.page.height(), 120.5, 0.02);
    Run([](QWidget& window) {
        EXPECT_EQ(Chosen(window, "PaperBox"), u"Eigenes Format"_s);
        EXPECT_EQ(Child<QDoubleSpinBox>(window, "CustomHeightBox").value(), 120.5);
    });
}

TEST_F(SetupDialogTest, QueuesComeAndGoWithTheirState) {
    Run([](QWidget& window) {
        EXPECT_EQ(Texts<QListWidget>(window, "QueueList"), u"Photo\nBereit"_s);
    });
    service_.AddQueue(u"Neu"_s);
    service_.AddQueue(u"Voll"_s);
    service_.Run(u"cupsdisable"_s, {u"Neu"_s});
    service_.Run(u"cupsreject"_s, {u"Voll"_s});
    service_.Run(u"lpadmin"_s, {u"-d"_s, u"Neu"_s});
    Run([](QWidget& window) {
        EXPECT_EQ(Texts<QListWidget>(window, "QueueList"),
                  u"Neu (Standard)\nAngehalten|Photo\nBereit|Voll\nNimmt keine Aufträge an"_s);
        auto& list = Child<QListWidget>(window, "QueueList");
        EXPECT_EQ(list.currentRow(), 1) << "the current printer is not the one shown";
        Choose(window, "PaperBox", u"A6"_s);
        list.setCurrentRow(0);
        EXPECT_EQ(Chosen(window, "PaperBox"), u"A4 (210 × 297 mm)"_s);
        list.setCurrentRow(1);
        EXPECT_EQ(Chosen(window, "PaperBox"), u"A6 (105 × 148 mm)"_s);
        list.setCurrentRow(0);
    });
    EXPECT_EQ(layer_.CurrentPrinter().device, u"Neu"_s);
    Run(
        [this](QWidget& window) {
            service_.Kill();
            Child<QListWidget>(window, "QueueList").setCurrentRow(1);
            EXPECT_TRUE(Child<QLabel>(window, "NoteLabel").isVisible());
            EXPECT_FALSE(Child<QAbstractButton>(window, "OkButton").isEnabled());
        },
        u"CancelButton"_s);
}

TEST_F(SetupDialogTest, WhatTheQueueNoLongerHasIsKeptAndWhatExcludesEachOtherNamed) {
    PrinterChoice choice = layer_.CurrentPrinter();
    choice.deviceMode = "InputSlot=Gone\nGoneOption=x\nMediaType=Gone\n";
    layer_.SetCurrentPrinter(choice);
    Run([](QWidget& window) {
        EXPECT_EQ(Chosen(window, "TrayBox"), u"Hauptfach"_s);
        Choose(window, "TrayBox", u"Fotofach"_s);
    });
    EXPECT_EQ(Mode().Value("InputSlot"), "Photo");
    EXPECT_EQ(Mode().Value("GoneOption"), "x");
    EXPECT_EQ(Mode().Value("MediaType"), "Gone");

    Run([](QWidget& window) {
        auto& note = Child<QLabel>(window, "NoteLabel");
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
