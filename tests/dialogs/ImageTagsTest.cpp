#include <gtest/gtest.h>

#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>

#include "dialogs/ImageTags.h"
#include "tests/support/ModalDriver.h"

using namespace Qt::StringLiterals;

namespace kadrona::testing {

class ImageTags : public ::testing::Test {
 protected:
    /// Shows the dialog with a text, as if the user had pasted another one, and confirms.
    controls::ModalResult Enter(const QString& preset, const std::optional<QString>& entered) {
        driver.Expect(u"fmImageTagEdit"_s, [=, this](QWidget& shown) {
            EXPECT_TRUE(Memo().hasFocus());
            if (entered) {
                Memo().setPlainText(*entered);
            }
            shown.findChild<QPushButton*>(u"btnOk"_s)->click();
        });
        return dialog.ShowEx(preset);
    }

    QPlainTextEdit& Memo() { return *dialog.findChild<QPlainTextEdit*>(u"TagMemo"_s); }

    ModalDriver driver;
    dialogs::TfmImageTagEdit dialog;
};

TEST_F(ImageTags, EveryLineEndsWithALineBreak) {
    struct Row {
        QString entered, tags, first;
    };
    for (const auto& [entered, tags, first] :
         {Row{u"Anna\nBerlin\n2026"_s, u"Anna\r\nBerlin\r\n2026\r\n"_s, u"Anna"_s},
          Row{u"Anna\n"_s, u"Anna\r\n"_s, u"Anna"_s}, Row{u""_s, u""_s, u""_s},
          Row{u"\nMüller 😀"_s, u"\r\nMüller 😀\r\n"_s, u""_s},
          Row{u"a\n\n\n"_s, u"a\r\n\r\n\r\n"_s, u"a"_s}}) {
        EXPECT_EQ(Enter({}, entered), controls::ModalResult::Ok);
        EXPECT_EQ(dialog.Tags(), tags);
        EXPECT_EQ(dialog.FirstLine(), first);
        // What was stored comes back unchanged when it is only confirmed.
        EXPECT_EQ(Enter(tags, std::nullopt), controls::ModalResult::Ok);
        EXPECT_EQ(dialog.Tags(), tags);
    }
}

TEST_F(ImageTags, StartsAnewAndLeavesByKeys) {
    Enter({}, u"Anna"_s);
    driver.Expect(u"fmImageTagEdit"_s, [this](QWidget& shown) {
        EXPECT_EQ(shown.windowTitle(), u"Schlüsselworte"_s);
        EXPECT_TRUE(Memo().toPlainText().isEmpty());
        QTest::keyClicks(&Memo(), u"a"_s);
        QTest::keyClick(&Memo(), Qt::Key_Return);
        EXPECT_TRUE(shown.isVisible());
        QTest::keyClick(&Memo(), Qt::Key_Escape);
    });
    EXPECT_EQ(dialog.ShowEx(), controls::ModalResult::Cancel);
    driver.Expect(u"fmImageTagEdit"_s, [this](QWidget&) {
        QTest::keyClick(&Memo(), Qt::Key_Return, Qt::ControlModifier);
    });
    EXPECT_EQ(dialog.ShowEx(), controls::ModalResult::Ok);
}

}  // namespace kadrona::testing
