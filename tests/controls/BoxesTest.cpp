#include <gtest/gtest.h>

#include <QAbstractItemView>
#include <QApplication>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <functional>
#include <stdexcept>

#include "controls/ActionGuard.h"
#include "controls/ClearableComboBox.h"
#include "controls/MessageBoxes.h"
#include "controls/PathEdit.h"
#include "controls/StatusPanels.h"
#include "platform/Error.h"

using namespace Qt::StringLiterals;

namespace kadrona::controls {
namespace {

// Answers the modal dialog that comes up next; a test whose dialog never comes fails.
class Answerer {
 public:
    explicit Answerer(std::function<void(QWidget&)> answer) {
        QTimer::singleShot(0, &context_, [this, answer = std::move(answer)] {
            if (QWidget* dialog = QApplication::activeModalWidget()) {
                asked_ = true;
                answer(*dialog);
            }
        });
    }
    ~Answerer() { EXPECT_TRUE(asked_) << "no dialog came up"; }

 private:
    QObject context_;
    bool asked_ = false;
};

void Press(QWidget& dialog, const QString& button) {
    auto* found = dialog.findChild<QPushButton*>(button);
    ASSERT_NE(found, nullptr);
    found->click();
}

void Key(QWidget& dialog, Qt::Key key) {
    QTest::keyClick(&dialog, key);
}

TEST(AskYesNo, OnlyJaIsYes) {
    {
        const Answerer answer([](QWidget& box) { Press(box, u"YesButton"_s); });
        EXPECT_TRUE(AskYesNo(nullptr, u"Wirklich?"_s));
    }
    {
        const Answerer answer([](QWidget& box) { Press(box, u"NoButton"_s); });
        EXPECT_FALSE(AskYesNo(nullptr, u"Wirklich?"_s));
    }
    for (const Qt::Key key : {Qt::Key_Escape, Qt::Key_Return}) {  // Return takes the default
        const Answerer answer([key](QWidget& box) { Key(box, key); });
        EXPECT_FALSE(AskYesNo(nullptr, u"Wirklich?"_s, Severity::Warning));
    }
    const Answerer answer([](QWidget& box) { box.close(); });
    EXPECT_FALSE(AskYesNo(nullptr, u"Wirklich?"_s));
}

TEST(MessageBox, ShowsTheTextAsItStands) {
    QString shown;
    const Answerer answer([&shown](QWidget& box) {
        shown = static_cast<QMessageBox&>(box).text();
        EXPECT_EQ(static_cast<QMessageBox&>(box).textFormat(), Qt::PlainText);
        Key(box, Qt::Key_Escape);
    });
    ShowInformation(nullptr, u"<b>a</b> & b"_s);
    EXPECT_EQ(shown, u"<b>a</b> & b"_s);
}

TEST(AskForLine, GivesTheLineOrNothing) {
    const auto type = [](QWidget& dialog) {
        dialog.findChild<QLineEdit*>(u"LineEdit"_s)->setText(u"Büro "_s);
    };
    {
        const Answerer answer([&type](QWidget& dialog) {
            type(dialog);
            Press(dialog, u"OkButton"_s);
        });
        EXPECT_EQ(AskForLine(nullptr, u"New Profile"_s, u"Name"_s), u"Büro "_s);
    }
    {
        const Answerer answer([](QWidget& dialog) { Press(dialog, u"OkButton"_s); });
        EXPECT_EQ(AskForLine(nullptr, u"New Profile"_s, u"Name"_s), u""_s);
    }
    const Answerer answer([&type](QWidget& dialog) {
        type(dialog);
        Press(dialog, u"CancelButton"_s);
    });
    EXPECT_EQ(AskForLine(nullptr, u"New Profile"_s, u"Name"_s), std::nullopt);
}

// Runs `function` guarded and returns the text that was shown.
QString Shown(const std::function<void()>& function) {
    QString text;
    const Answerer answer([&text](QWidget& box) {
        text = static_cast<QMessageBox&>(box).text();
        Press(box, u"OkButton"_s);
    });
    EXPECT_FALSE(Guarded(nullptr, function));
    return text;
}

TEST(Guarded, ShowsWhatEscapes) {
    EXPECT_EQ(Shown([] { throw platform::FileError(u"„a.jpg“ fehlt."_s); }), u"„a.jpg“ fehlt."_s);
    EXPECT_EQ(Shown([] { throw std::bad_alloc(); }),
              u"Für diesen Vorgang reicht der Arbeitsspeicher nicht aus."_s);
    EXPECT_TRUE(Shown([] { throw std::runtime_error("bad größe"); }).endsWith(u"\n\nbad größe"_s));
    EXPECT_FALSE(Shown([] { throw 5; }).isEmpty());
    EXPECT_TRUE(Guarded(nullptr, [] {}));
}

TEST(ClearableComboBox, DeleteTakesTheChoiceBack) {
    ClearableComboBox box(u"ENTF"_s);
    box.addItems({u"a"_s, u"b"_s});
    box.setCurrentIndex(1);
    QSignalSpy changes(&box, &QComboBox::currentIndexChanged);
    QSignalSpy activations(&box, &QComboBox::activated);
    QTest::keyClick(&box, Qt::Key_Delete);
    EXPECT_EQ(box.currentIndex(), -1);
    QTest::keyClick(&box, Qt::Key_Delete);
    EXPECT_EQ(changes.count(), 1);
    EXPECT_EQ(activations.count(), 1);
    EXPECT_EQ(box.count(), 2);

    box.setCurrentIndex(0);
    box.show();
    box.showPopup();
    QTest::keyClick(box.view(), Qt::Key_Delete);
    EXPECT_EQ(box.currentIndex(), -1);
    EXPECT_FALSE(box.view()->isVisible());
}

TEST(PathEdit, TheButtonBearsTheEditsNameAndAsks) {
    PathEdit edit;
    edit.setObjectName(u"ImageSaveDir"_s);
    edit.resize(200, 28);
    edit.show();
    QSignalSpy requests(&edit, &PathEdit::BrowseRequested);
    auto* button = edit.findChild<QAbstractButton*>(u"ImageSaveDirButton"_s);
    ASSERT_NE(button, nullptr);
    button->click();
    EXPECT_EQ(requests.count(), 1);
    EXPECT_TRUE(edit.rect().contains(button->geometry()));
    EXPECT_GE(edit.textMargins().right(), button->width());
}

TEST(StatusPanels, TheLinkIsReachedByMouseAndKeyboard) {
    StatusPanels bar;
    bar.SetLink(u"Hersteller"_s, 150);
    bar.SetPath(u"/a/b.jpg"_s);
    EXPECT_EQ(bar.Path(), u"/a/b.jpg"_s);
    bar.show();
    QSignalSpy clicks(&bar, &StatusPanels::LinkClicked);
    auto* link = bar.findChild<QWidget*>(u"StatusPanel2"_s);
    ASSERT_NE(link, nullptr);
    EXPECT_EQ(link->width(), 150);
    QTest::mouseClick(link, Qt::LeftButton);
    QTest::keyClick(link, Qt::Key_Space);
    EXPECT_EQ(clicks.count(), 2);
}

}  // namespace
}  // namespace kadrona::controls
