#include "controls/fields/ClearableComboBox.h"
#include "controls/messages/ActionGuard.h"
#include "controls/messages/MessageBoxes.h"
#include "platform/Error.h"
#include "tests/support/Windows.h"

using namespace Qt::StringLiterals;

namespace kadrona::controls {
namespace {

using testing::Child;
using testing::ClickButton;
using testing::ModalDriver;

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

}  // namespace
}  // namespace kadrona::controls
