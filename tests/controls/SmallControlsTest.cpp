// Fields, lists, the theme and message boxes.

#include <QFileDialog>
#include <QHelpEvent>
#include <QImage>
#include <QScrollArea>
#include <QSpinBox>
#include <QStyledItemDelegate>
#include <QToolButton>
#include <QToolTip>
#include <algorithm>
#include <cmath>

#include "controls/commands/ScreenTip.h"
#include "controls/fields/ClearableComboBox.h"
#include "controls/fields/FindPanel.h"
#include "controls/fields/LabelsFollowFields.h"
#include "controls/fields/PathShortening.h"
#include "controls/fields/RememberedChoice.h"
#include "controls/fields/SelectionList.h"
#include "controls/fields/WheelNeedsFocus.h"
#include "controls/messages/ActionGuard.h"
#include "controls/messages/MessageBoxes.h"
#include "controls/messages/ProgressBox.h"
#include "controls/theme/Icons.h"
#include "controls/theme/Theme.h"
#include "platform/Error.h"
#include "platform/HarmlessText.h"
#include "tests/support/Windows.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace kadrona::controls {
namespace {

using testing::Child;
using testing::ClickButton;
using testing::ModalDriver;
using testing::SendWheel;

TEST(FindPanel, SearchesAfterAPauseAtOnceByReturnAndWhenCleared) {
    QWidget window;
    FindPanel panel(&window);
    auto& edit = Child<QLineEdit>(panel, "FindEdit");
    QStringList searches;
    QObject::connect(&panel, &FindPanel::Searched, [&](const QString& text) { searches += text; });
    const QSignalSpy left(&panel, &FindPanel::Left);
    panel.SetDelay(30ms);
    QTest::keyClicks(&edit, u"Meier"_s);
    EXPECT_TRUE(searches.isEmpty());
    EXPECT_TRUE(QTest::qWaitFor([&] { return !searches.isEmpty(); }));
    panel.SetDelay(1h);
    QTest::keyClicks(&edit, u"s"_s);
    QTest::keyClick(&edit, Qt::Key_Down);
    QTest::keyClick(&edit, Qt::Key_Down);
    QTest::keyClick(&edit, Qt::Key_Return);
    EXPECT_EQ(searches.join(u'|'), u"Meier|Meiers|Meiers"_s) << "Return searches again";
    EXPECT_EQ(left.count(), 3);
    QTest::keyClick(&edit, Qt::Key_Escape);
    panel.SetText(u"b"_s);
    panel.SetDelay(1ms);
    edit.findChildren<QToolButton*>().last()->click();  // the toolkit's button that clears
    EXPECT_TRUE(QTest::qWaitFor([&] { return searches.size() == 6; }));
    EXPECT_EQ(searches.join(u'|'), u"Meier|Meiers|Meiers||b|"_s);
    QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, {});
    QCoreApplication::sendEvent(&edit, &escape);
    EXPECT_FALSE(escape.isAccepted());  // closes the window
}

TEST(ShortenPath, GivesTheLongestFormThatFits) {
    // A font in which every character is as wide as the next, so that widths read as lengths.
    const auto length = [](const QString& text) { return static_cast<int>(text.size()); };
    const QString path = u"/home/anna/fotos/kunden/bild.jpg"_s;  // 32 characters
    struct Row {
        QString path;
        int width;
        QString expected;
    };
    for (const auto& [given, width, expected] :
         {Row{path, 32, path}, Row{path, 31, u"/home/…/fotos/kunden/bild.jpg"_s},
          Row{path, 23, u"/home/…/kunden/bild.jpg"_s}, Row{path, 22, u"/home/…/bild.jpg"_s},
          Row{path, 15, u"…/bild.jpg"_s}, Row{path, 9, u"bild.jpg"_s}, Row{path, 7, u"bil…jpg"_s},
          Row{path, 1, u"…"_s}, Row{path, 0, u""_s},
          Row{u"C:\\Users\\anna\\Bilder\\bild.jpg"_s, 22, u"C:\\…\\Bilder\\bild.jpg"_s},
          Row{u"\\\\server\\fotos\\kunden\\bild.jpg"_s, 20, u"\\\\server\\…\\bild.jpg"_s},
          Row{u"/ein-langer-name.jpg"_s, 10, u"ein-l….jpg"_s},
          Row{u"ein-langer-name.jpg"_s, 10, u"ein-l….jpg"_s},
          Row{u"/home/anna/fotos/"_s, 12, u"/home/…/"_s}, Row{u""_s, 10, u""_s},
          // A character beyond 16 bits is two code units: never half of one, whichever end it is.
          Row{u"😀😀😀😀"_s, 4, u"😀…"_s}, Row{u"😀😀😀😀"_s, 6, u"😀…😀"_s}}) {
        EXPECT_EQ(ShortenPath(given, width, length), expected) << given.toStdString() << width;
    }
}

TEST(RememberedChoice, FollowsTheTextAndOnlyThenThePlace) {
    const QStringList items{u"A"_s, u"B"_s, u"A"_s, u""_s};
    struct Row {
        QString text;
        int place, expected;
    };
    for (const auto& [text, place, expected] :
         {Row{u"B"_s, 1, 1}, Row{u"B"_s, 0, 1}, Row{u"A"_s, 2, 2}, Row{u"A"_s, 1, 0},
          Row{u"C"_s, 1, -1}, Row{u"B"_s, -1, 1}, Row{u"B"_s, 99, 1}, Row{u""_s, 1, 1},
          Row{u""_s, -1, -1}, Row{u""_s, 4, -1}}) {
        EXPECT_EQ(RememberedChoice(items, text, place), expected) << text.toStdString() << place;
    }
}

TEST(SelectionList, FiltersByWordsAndKeepsSomethingSelected) {
    SelectionList list(u"list"_s, u"Liste"_s);
    list.SetTexts({u"Österreich Reisepass"_s, u"Polen Reisepass"_s, u"China Visum"_s});
    struct Row {
        QString words, shown;
        int selected;
    };
    for (const auto& [words, shown, selected] :
         {Row{u"REISE"_s, u"01"_s, 0}, Row{u"pass osterr"_s, u"0"_s, 0},
          Row{u" visum "_s, u"2"_s, 2}, Row{u"kein"_s, u""_s, -1}, Row{u""_s, u"012"_s, -1},
          Row{u"e"_s, u"01"_s, 0}}) {
        list.Filter(words);
        QString left;
        for (int row = 0; row < list.count(); ++row) {
            left += list.item(row)->isHidden() ? QString() : QString::number(row);
        }
        EXPECT_EQ(left, shown) << words.toStdString();
        EXPECT_EQ(list.SelectedRow(), selected) << words.toStdString();
    }
}

TEST(HarmlessText, NoCharacterLeavesItsPlace) {
    const QString kept = u"Größe <b> & 😀 \u05d0\u200d"_s;
    EXPECT_EQ(platform::HarmlessLine(kept), kept);
    for (const char16_t harmful :
         {u'\n', u'\0', u'\x1b', u'\x85', u'\u2028', u'\u2029', u'\u202a', u'\u202e', u'\u2066',
          u'\u2069', char16_t{0xd800}, char16_t{0xdc00}}) {
        const QString text = u"a"_s + QChar(harmful) + u"b"_s;
        EXPECT_EQ(platform::HarmlessLine(text), u"a\ufffdb"_s) << static_cast<int>(harmful);
    }
    EXPECT_EQ(platform::HarmlessText(u"a\r\n\tb\r\u202e"_s), u"a\r\n\tb\ufffd\ufffd"_s);
}

// Relative luminance and contrast of the Web Content Accessibility Guidelines 2.1.
double Contrast(const QColor& a, const QColor& b) {
    const auto luminance = [](const QColor& color) {
        const auto linear = [](double c) {
            return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
               0.0722 * linear(color.blueF());
    };
    const auto [darker, lighter] = std::minmax({luminance(a), luminance(b)});
    return (lighter + 0.05) / (darker + 0.05);
}

TEST(Theme, ItsColoursAndStyleSheetAreWhole) {
    ApplyTheme(*qApp);
    const ThemeColors& c = Colors();
    EXPECT_GE(std::min(Contrast(c.text, c.window), Contrast(c.text, c.accentWash)), 7);
    EXPECT_GE(std::min(Contrast(c.mutedText, c.window), Contrast(c.accent, c.window)), 4.5);
    EXPECT_GE(Contrast(Qt::white, c.accent), 4.5);
    const QString sheet = qApp->styleSheet();
    EXPECT_FALSE(sheet.contains(u'@')) << "a colour that the theme does not have";
    const QStringList pictures = sheet.split(u"url("_s).mid(1);
    EXPECT_FALSE(pictures.isEmpty());
    for (const QString& picture : pictures) {
        EXPECT_FALSE(QImage(picture.section(u')', 0, 0)).isNull()) << picture.toStdString();
    }
    EXPECT_GE(QApplication::font().pointSizeF(), 10);
}

bool IsDrawn(const QIcon& icon, int side) {
    const QImage image = icon.pixmap(QSize(side, side), 2.0).toImage();
    const QImage alpha = image.convertToFormat(QImage::Format_Alpha8);
    return image.width() == 2 * side && alpha.sizeInBytes() > 0 &&
           *std::max_element(alpha.constBits(), alpha.constBits() + alpha.sizeInBytes()) > 128;
}

TEST(Theme, EveryIconHasAPicture) {
    ApplyTheme(*qApp);
    for (const QString& name : IconNames()) {
        EXPECT_TRUE(IsDrawn(Icon(name), 16) && IsDrawn(Icon(name), 22)) << name.toStdString();
    }
    EXPECT_TRUE(Icon(u"no-such-icon"_s).isNull());
}

TEST(Theme, ForeignNamesAreShownAsPlainText) {
    ApplyTheme(*qApp);
    const QString name = u"<img src='/etc/hostname'>\u202ex"_s;
    QLabel foreign(name);
    QLabel own(u"<b>x</b>"_s);
    own.setTextFormat(Qt::RichText);
    QListWidget list;
    list.addItem(name);
    for (QWidget* widget : {static_cast<QWidget*>(&foreign), static_cast<QWidget*>(&own),
                            static_cast<QWidget*>(&list)}) {
        widget->ensurePolished();
    }
    EXPECT_EQ(foreign.textFormat(), Qt::PlainText);
    EXPECT_EQ(own.textFormat(), Qt::RichText);
    const auto& delegate = dynamic_cast<QStyledItemDelegate&>(*list.itemDelegate());
    EXPECT_EQ(delegate.displayText(name, {}), u"<img src='/etc/hostname'>\ufffdx"_s);
    EXPECT_TRUE(PlainTip(name).contains(u"&lt;img src='/etc/hostname'&gt;\ufffdx"_s));
    QFileDialog dialog;
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.show();
    auto& places = Child<QAbstractItemView>(dialog, "sidebar");
    const QModelIndex first = places.model()->index(0, 0);
    places.model()->setData(first, name, Qt::ToolTipRole);
    const QPoint at = places.visualRect(first).center();
    QHelpEvent help(QEvent::ToolTip, at, places.viewport()->mapToGlobal(at));
    QCoreApplication::sendEvent(places.viewport(), &help);
    EXPECT_EQ(QToolTip::text(), PlainTip(name));
}

TEST(Theme, AListThatWasScrolledBeforeItIsShownHasItsRowsApart) {
    ApplyTheme(*qApp);
    QWidget window;
    auto& list = *new QListWidget;
    for (int i = 0; i < 30; ++i) {
        list.addItem(QString::number(i));
    }
    list.setCurrentRow(3);
    list.setParent(&window);
    list.resize(200, 400);
    window.show();
    QApplication::processEvents();
    EXPECT_EQ(list.visualItemRect(list.item(1)).top() - list.visualItemRect(list.item(0)).top(),
              list.sizeHintForRow(0));
}

TEST(ScreenTip, HoldsHeaderTextLinesAndShortcut) {
    QAction action(u"&Speichern..."_s);
    action.setShortcut(QKeySequence(Qt::CTRL | Qt::Key_S));
    const QString keys = action.shortcut().toString(QKeySequence::NativeText);
    EXPECT_TRUE(ScreenTipOf(action).contains(u"<b>Speichern"_s));
    SetScreenTip(&action, u"A < B"_s, u"Zeile eins\nZeile zwei"_s);
    for (const QString& part : {u"<b>A &lt; B</b>"_s, u"Zeile eins<br>Zeile zwei"_s, keys}) {
        EXPECT_TRUE(ScreenTipOf(action).contains(part)) << part.toStdString();
    }
    EXPECT_EQ(action.toolTip(), u"A < B\nZeile eins\nZeile zwei"_s) << "is read out";
}

const QString Box = u"MessageBox"_s;

TEST(ShowError, BreaksALongName) {
    ModalDriver driver;
    driver.Expect(Box, [](QWidget& box) {
        EXPECT_LT(box.width(), 800);
        const auto* text = box.findChild<QLabel*>(u"qt_msgbox_label"_s);
        EXPECT_GE(text->height(), text->heightForWidth(text->width())) << "nothing is cut off";
        box.close();
    });
    ShowError(nullptr, u"Die Datei „/%1“ fehlt."_s.arg(QString(300, u'n')));
}

TEST(AskYesNo, OnlyJaIsYes) {
    ModalDriver driver;
    const auto answer = [] { return AskYesNo(nullptr, u"Wirklich?"_s, Severity::Warning); };
    driver.Press(Box, u"YesButton"_s);
    EXPECT_TRUE(answer());
    driver.Press(Box, u"NoButton"_s);
    EXPECT_FALSE(answer());
    for (const Qt::Key key : {Qt::Key_Escape, Qt::Key_Return}) {  // Return takes the default
        driver.Expect(Box, [key](QWidget& box) { QTest::keyClick(&box, key); });
        EXPECT_FALSE(answer());
    }
    driver.Expect(Box, [](QWidget& box) { box.close(); });
    EXPECT_FALSE(answer());
    for (const Qt::Key key : {Qt::Key_Escape, Qt::Key_Return}) {
        driver.Expect(Box, [key](QWidget& box) { QTest::keyClick(&box, key); });
        EXPECT_EQ(AskToRetry(nullptr, u"Noch einmal?"_s), key == Qt::Key_Return);
    }
}

TEST(AskForLine, GivesTheLineOrNothing) {
    ModalDriver driver;
    for (const auto& [button, line] : {std::pair(u"OkButton"_s, std::optional(u"Büro "_s)),
                                       std::pair(u"CancelButton"_s, std::optional<QString>())}) {
        driver.Expect(u"LineDialog"_s, [button = button](QWidget& dialog) {
            Child<QLineEdit>(dialog, "LineEdit").setText(u"Büro "_s);
            dialog.findChild<QPushButton*>(button)->click();
        });
        EXPECT_EQ(AskForLine(nullptr, u"New Profile"_s, u"Name"_s), line);
    }
}

// Runs `function` guarded and returns the text that was shown, which must be shown as it stands.
QString Shown(const std::function<void()>& function) {
    QString text;
    ModalDriver driver;
    driver.Expect(Box, [&text](QWidget& box) {
        EXPECT_EQ(static_cast<QMessageBox&>(box).textFormat(), Qt::PlainText);
        text = static_cast<QMessageBox&>(box).text();
        ClickButton(box, "OkButton");
    });
    EXPECT_FALSE(Guarded(nullptr, function));
    return text;
}

TEST(Guarded, ShowsWhatEscapes) {
    EXPECT_EQ(Shown([] { throw platform::FileError(u"„<b>&.jpg“ fehlt."_s); }),
              u"„<b>&.jpg“ fehlt."_s);
    EXPECT_EQ(Shown([] { throw std::bad_alloc(); }),
              u"Für diesen Vorgang reicht der Arbeitsspeicher nicht aus."_s);
    EXPECT_TRUE(Shown([] { throw std::runtime_error("bad größe"); }).endsWith(u"\n\nbad größe"_s));
    EXPECT_EQ(Shown([] { throw platform::Error(u"a\u202eb\nc"_s); }), u"a\ufffdb\nc"_s);
    const QString flood =
        Shown([] { throw platform::Error(u"Anfang "_s.repeated(900) + u"Ende"_s); });
    EXPECT_LT(flood.size(), 1100) << "no screen has room for more";
    EXPECT_TRUE(flood.startsWith(u"Anfang"_s) && flood.endsWith(u"Ende"_s));
    EXPECT_FALSE(Shown([] { throw 5; }).isEmpty());
    EXPECT_TRUE(Guarded(nullptr, [] {}));
}

TEST(WheelNeedsFocus, OnAPageItIsLeftToThePage) {
    WheelNeedsFocus filter;
    qApp->installEventFilter(&filter);
    QScrollArea area;
    area.setWidget(new QWidget);
    auto& box = *new QComboBox(area.widget());
    box.addItems({u"a"_s, u"b"_s});
    auto& number = *new QSpinBox(area.widget());
    number.setValue(5);
    area.show();
    area.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&area));
    for (QWidget* control : std::initializer_list<QWidget*>{&box, &number}) {
        EXPECT_EQ(control->focusPolicy(), Qt::StrongFocus) << "the wheel would give it the focus";
        area.setFocus();
        EXPECT_FALSE(SendWheel(*control, {3, 3}, -120));
        EXPECT_EQ(std::pair(box.currentIndex(), number.value()),
                  std::pair(control == &box ? 0 : 1, 5));
        control->setFocus();
        EXPECT_TRUE(SendWheel(*control, {3, 3}, -120));
    }
    EXPECT_EQ(std::pair(box.currentIndex(), number.value()), std::pair(1, 4));
}

TEST(LabelsFollowFields, AreGreyWhereTheirFieldIs) {
    LabelsFollowFields filter;
    qApp->installEventFilter(&filter);
    QWidget window;
    auto& form = *new QWidget(&window);
    auto& label = *new QLabel(u"Name"_s, &form);
    auto& field = *new QSpinBox(&form);
    label.setBuddy(&field);
    field.setEnabled(false);
    window.show();
    EXPECT_FALSE(label.isEnabled());
    form.setEnabled(false);
    form.setEnabled(true);
    field.setEnabled(true);
    EXPECT_TRUE(label.isEnabled());
}

TEST(ClearableComboBox, DeleteTakesTheChoiceBack) {
    ClearableComboBox box(u"ENTF"_s);
    box.addItems({u"a"_s, u"b"_s});
    box.setCurrentIndex(1);
    QSignalSpy activations(&box, &QComboBox::activated);
    for (int press = 0; press < 2; ++press) {
        QTest::keyClick(&box, Qt::Key_Delete);
        EXPECT_EQ(box.currentIndex(), -1);
        EXPECT_EQ(activations.count(), 1);
    }
    EXPECT_EQ(box.count(), 2);
    box.setCurrentIndex(0);
    box.show();
    box.showPopup();
    QTest::keyClick(box.view(), Qt::Key_Delete);
    EXPECT_EQ(box.currentIndex(), -1);
    EXPECT_FALSE(box.view()->isVisible());
}

TEST(ProgressBox, IsShownWhereNobodyKnowsHowMuchThereIsToDo) {
    ProgressBox box(nullptr, u"Archiv"_s);
    const platform::Progress report = box.Reporter();
    for (const bool isShown : {false, true}) {
        report(u"Warten …"_s, 0, 0);
        EXPECT_EQ(QApplication::activeModalWidget() != nullptr, isShown);
        QTest::qSleep(450);
    }
    QTest::keyClick(QApplication::activeModalWidget(), Qt::Key_Escape);
    EXPECT_THROW(report(u"Warten …"_s, 0, 0), platform::Cancelled);
}

}  // namespace
}  // namespace kadrona::controls
