#include <QClipboard>
#include <QCompleter>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QMessageBox>
#include <QScrollArea>
#include <QToolButton>

#include "core/templates/TemplateSize.h"
#include "dialogs/TemplateChooser.h"
#include "dialogs/archive/ImageTags.h"
#include "dialogs/archive/TagMemo.h"
#include "dialogs/base/SmallScreens.h"
#include "dialogs/settings/FileNamePrompt.h"
#include "dialogs/settings/ProfileChooser.h"
#include "tests/support/CoreFakes.h"
#include "tests/support/Windows.h"

using namespace Qt::StringLiterals;

namespace kadrona::testing {

class TemplateChooser : public ::testing::Test {
 protected:
    TemplateChooser() {
        chooser.SetTemplates({u"A"_s, u"B"_s, u"Zürich"_s});
        chooser.SetRotationHandler([this](int degrees) { turns.append(degrees); });
        timer.setInterval(20);
    }

    void Default(const QString& text, int place) {
        settings[u"SchabloneBox"_s] = place;
        settings[u"SchabloneBoxText"_s] = text;
    }

    QListWidget& List() { return Child<QListWidget>(chooser, "lbSchablonen"); }
    QPushButton& Ok() { return Child<QPushButton>(chooser, "btnOk"); }

    FakeSettings settings;
    ModalDriver driver;
    QList<int> turns;
    dialogs::TSchabloneFm chooser{settings};
    QTimer& timer = Child<QTimer>(chooser, "Timer");
};

TEST_F(TemplateChooser, ConfirmsItselfWithTheDefaultTemplateWhereverItStandsToday) {
    for (const int place : {1, 0, 7}) {
        Default(u"B"_s, place);
        driver.Expect(u"SchabloneFm"_s, [](QWidget&) {});
        EXPECT_EQ(chooser.ShowEx(), controls::ModalResult::Ok);
        EXPECT_EQ(chooser.SelectedTemplate(), 1);
    }
}

TEST_F(TemplateChooser, WhoeverBeginsToChooseIsNotHurried) {
    Default(u"A"_s, 0);
    timer.setInterval(10'000);
    const std::initializer_list<std::function<void()>> beginnings{
        [this] { QTest::keyClick(&List(), Qt::Key_Down); },
        [this] {
            SendMouse(*List().viewport(), QEvent::MouseButtonPress, {5, 5});
        },
        [this] {
            SendWheel(*List().viewport(), {5, 5}, -120);
        },
        [this] {
            SendMouse(Child<QLineEdit>(chooser, "FilterEdit"), QEvent::MouseButtonPress, {5, 5});
        },
    };
    for (const auto& begin : beginnings) {
        driver.Expect(u"SchabloneFm"_s, [&](QWidget&) {
            EXPECT_TRUE(timer.isActive());
            begin();
            EXPECT_FALSE(timer.isActive());
            Ok().click();
        });
        EXPECT_EQ(chooser.ShowEx(), controls::ModalResult::Ok);
    }
}

TEST_F(TemplateChooser, CannotBeClosedWithoutASelection) {
    Default(u"gone"_s, 1);
    driver.Expect(u"SchabloneFm"_s, [this](QWidget& shown) {
        QTest::qWait(60);
        QTest::keyClick(&shown, Qt::Key_Escape);
        shown.close();
        Ok().click();
        EXPECT_TRUE(shown.isVisible());
        QTest::keyClick(&List(), Qt::Key_Home);
        EXPECT_EQ(chooser.SelectedTemplate(), 0);
        QTest::keyClicks(&List(), u"zu"_s);  // goes on in the line that filters
        EXPECT_EQ(chooser.SelectedTemplate(), 2);
        Ok().click();
    });
    EXPECT_EQ(chooser.ShowEx(), controls::ModalResult::Ok);
    EXPECT_EQ(chooser.SelectedTemplate(), 2);
}

TEST_F(TemplateChooser, TurnsThePhotoByItsButtonsAndTheSettings) {
    Default(u"A"_s, 0);
    settings[u"ImgRotateLeft"_s] = true;
    settings[u"ImgRotateRight"_s] = true;
    timer.setInterval(10'000);
    driver.Expect(u"SchabloneFm"_s, [this](QWidget& shown) {
        EXPECT_EQ(turns, (QList<int>{+90, -90}));
        Child<QToolButton>(shown, "btnRotateRight").click();
        EXPECT_EQ(turns.last(), -90);
        QTest::keyClick(&shown, Qt::Key_Escape);
    });
    EXPECT_EQ(chooser.ShowEx(), controls::ModalResult::Cancel);
    EXPECT_FALSE(timer.isActive());
}

TEST_F(TemplateChooser, IsAsWideAsItsNamesAndTheirSizes) {
    const Installation installation;
    chooser.SetTemplates({u"Pass"_s, QString(60, u'n'), u"weg"_s}, [&](int row) {
        return core::TemplateSize(installation.Path(
            row == 0 ? "program/Schablonen/Pass.msk"
                     : (row == 1 ? "program/Schablonen/USA.msk" : "program/MaskList.kdr")));
    });
    chooser.SetNotices([](int row) { return row == 0 ? u"nur digital"_s : QString(); });
    driver.Expect(u"SchabloneFm"_s, [this](QWidget& shown) {
        QStringList sizes;
        for (int row = 0; row < List().count(); ++row) {
            sizes += List().item(row)->data(Qt::AccessibleDescriptionRole).toString();
        }
        EXPECT_EQ(sizes.join(u'|'), u"35 x 45 mm|50,8 x 50,8 mm|"_s);
        EXPECT_GE(List().viewport()->width(), List().sizeHintForColumn(0));
        EXPECT_GE(shown.height(), 263);
        const auto& notice = Child<QLabel>(shown, "TemplateNotice");
        List().setCurrentRow(1);
        EXPECT_FALSE(notice.isVisible());
        List().setCurrentRow(0);
        EXPECT_TRUE(notice.isVisible() && notice.text() == u"nur digital");
        Ok().click();
    });
    chooser.ShowEx();
}

TEST(ProfileChooser, ChoosesByDoubleClickAndFailsOnAnEmptyList) {
    dialogs::TProfileDlgFM chooser;
    ModalDriver driver;
    chooser.SetProfiles({u"A"_s, u"B"_s});
    driver.Expect(u"ProfileDlgFM"_s, [](QWidget& shown) {
        auto& list = Child<QListWidget>(shown, "ProfileListBox");
        EXPECT_EQ(list.currentRow(), 0);
        const QPoint second = list.visualItemRect(list.item(1)).center();
        QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, second);
        QTest::mouseDClick(list.viewport(), Qt::LeftButton, {}, second);
    });
    EXPECT_EQ(chooser.ShowEx(), controls::ModalResult::Ok);
    EXPECT_EQ(chooser.SelectedProfile(), u"B"_s);

    chooser.SetProfiles({});
    driver.Press(u"ProfileDlgFM"_s, u"btnOK"_s);
    EXPECT_EQ(chooser.ShowEx(), controls::ModalResult::Ok);
    EXPECT_THROW(chooser.SelectedProfile(), platform::Error);
}

TEST(DialogButtons, ReturnConfirmsAlsoWhereTheDesktopPutsTheButtonsInAnotherOrder) {
    qApp->setStyleSheet(u"QDialogButtonBox { button-layout: 3 }"_s);  // as on GNOME
    dialogs::TFileNameFm fileName(core::NameSources{});
    dialogs::TfmImageTagEdit tags;
    dialogs::TProfileDlgFM profiles;
    for (const auto& [dialog, button] : {std::pair<QDialog*, QString>(&fileName, u"btnOk"_s),
                                         {&tags, u"btnOk"_s},
                                         {&profiles, u"btnOK"_s}}) {
        dialog->show();
        EXPECT_TRUE(Child<QPushButton>(*dialog, button).isDefault())
            << dialog->objectName().toStdString();
    }
    qApp->setStyleSheet({});
}

TEST(ImageTags, OffersEarlierTagsForTheLineThatIsTyped) {
    ModalDriver driver;
    dialogs::TfmImageTagEdit dialog;
    dialog.SetSuggestionSource([] { return QStringList{u"Berlin"_s, u"Bea"_s, u"Anna"_s}; });
    auto& memo = Child<dialogs::TagMemo>(dialog, "TagMemo");
    driver.Expect(u"fmImageTagEdit"_s, [&](QWidget& shown) {
        QAbstractItemView& offered = *memo.Completer().popup();
        memo.setPlainText(u"Cora\n"_s);
        memo.moveCursor(QTextCursor::End);
        QTest::keyClicks(&memo, u"b"_s);
        EXPECT_FALSE(offered.isVisible()) << "one letter is too few";
        QTest::keyClicks(&memo, u"e"_s);
        EXPECT_TRUE(offered.isVisible());
        EXPECT_EQ(Items(offered), u"Berlin|Bea"_s);
        QTest::keyClick(&offered, Qt::Key_Down);
        QTest::keyClick(&offered, Qt::Key_Return);
        EXPECT_EQ(memo.toPlainText(), u"Cora\nBerlin"_s);
        EXPECT_FALSE(offered.isVisible());
        QTest::keyClicks(&memo, u" "_s);
        memo.setPlainText({});
        QTest::keyClicks(&memo, u"Ann"_s);
        ASSERT_TRUE(offered.isVisible());
        QTest::keyClick(&offered, Qt::Key_Return);
        QTest::keyClicks(&memo, u"x"_s);
        EXPECT_EQ(memo.toPlainText(), u"Ann\nx"_s) << "none was chosen";
        shown.close();
    });
    dialog.ShowEx();
}

TEST(ImageTags, EveryLineEndsWithALineBreakAndComesBackUnchanged) {
    ModalDriver driver;
    dialogs::TfmImageTagEdit dialog;
    auto& memo = Child<QPlainTextEdit>(dialog, "TagMemo");
    const auto show = [&](const QString& tags, const std::function<void()>& steps) {
        driver.Expect(u"fmImageTagEdit"_s, [&, steps](QWidget&) {
            EXPECT_TRUE(memo.hasFocus());
            steps();
        });
        return dialog.ShowEx(tags);
    };
    const auto confirm = [&] { QTest::keyClick(&memo, Qt::Key_Return, Qt::ControlModifier); };
    struct Row {
        QString entered, tags, first;
    };
    for (const auto& [entered, tags, first] :
         {Row{u"Anna\nBerlin\n2026"_s, u"Anna\r\nBerlin\r\n2026\r\n"_s, u"Anna"_s},
          Row{u"Anna\n"_s, u"Anna\r\n"_s, u"Anna"_s}, Row{u""_s, u""_s, u""_s},
          Row{u"\nMüller 😀"_s, u"\r\nMüller 😀\r\n"_s, u""_s},
          Row{u"a\n\n\n"_s, u"a\r\n\r\n\r\n"_s, u"a"_s}}) {
        const auto enter = [&, text = entered] {
            EXPECT_TRUE(memo.toPlainText().isEmpty());
            memo.setPlainText(text);
            confirm();
        };
        EXPECT_EQ(show({}, enter), controls::ModalResult::Ok);
        EXPECT_EQ(dialog.FirstLine(), first);
        EXPECT_EQ(show(dialog.Tags(), confirm), controls::ModalResult::Ok);
        EXPECT_EQ(dialog.Tags(), tags);
    }
    const auto leave = [&] {
        QTest::keyClick(&memo, Qt::Key_Return);
        EXPECT_TRUE(dialog.isVisible());
        QTest::keyClick(&memo, Qt::Key_Escape);
    };
    EXPECT_EQ(show(u"x"_s, leave), controls::ModalResult::Cancel);
}

// Nothing in the program opens it.
TEST(FileNamePrompt, SwallowsWhatANameMustNotHoldAndTakesNoExistingOne) {
    Installation installation;
    installation.Write("2026-03-07-max.jpg", "taken");
    core::NameSources march;
    march.now = [] { return QDateTime({2026, 3, 7}, {12, 0}); };
    dialogs::TFileNameFm prompt{march};
    ModalDriver driver;
    driver.Expect(u"FileNameFm"_s, [&](QWidget& shown) {
        auto& edit = Child<QLineEdit>(shown, "FileNameEdit");
        QTest::keyClick(&edit, Qt::Key_Return);
        QTest::keyClicks(&edit, u"a!b(c)d.e/f;g<h>i?j[k\\l]m{n}:*\"|-_,'"_s);
        EXPECT_EQ(edit.text(), u"abcdefghijklmn:*\"|-_,'"_s);
        edit.selectAll();
        QTest::keyClicks(&edit, u"/"_s);
        EXPECT_TRUE(edit.hasSelectedText()) << "swallowed, not typed over";
        QGuiApplication::clipboard()->setText(u"(../max)"_s);
        edit.paste();
        driver.Press(u"MessageBox"_s, u"OkButton"_s);
        QTest::keyClick(&edit, Qt::Key_Return);
        EXPECT_TRUE(shown.isVisible());
        QTest::keyClicks(&edit, u"2"_s);
        QTest::keyClick(&edit, Qt::Key_Return);
    });
    const QString folder = QFileInfo(installation.Path("x")).path();
    EXPECT_EQ(prompt.ShowEx(folder), controls::ModalResult::Ok);
    EXPECT_EQ(prompt.Path(), folder + u"/2026-03-07-max2.jpg"_s);
}

TEST(SmallScreens, AnyDialogLiesOnTheScreenWithItsButtonsInSight) {
    dialogs::SmallScreens onScreen;
    qApp->installEventFilter(&onScreen);
    const auto show = [](QDialog& dialog, QSize content) {
        auto* filling = new QWidget;
        filling->setMinimumSize(content);
        auto* button = new QPushButton(u"Übernehmen"_s);
        auto* row = new QHBoxLayout;
        row->addWidget(button);
        auto* column = new QVBoxLayout(&dialog);
        auto* edit = new QLineEdit;
        column->addWidget(edit);
        edit->setFocus();
        column->addWidget(filling);
        column->addLayout(row);
        column->setSizeConstraint(QLayout::SetFixedSize);
        dialog.show();
        const QRect screen = dialog.screen()->availableGeometry();
        EXPECT_TRUE(screen.contains(dialog.frameGeometry()));
        const QRect place(button->mapTo(&dialog, QPoint()), button->size());
        EXPECT_TRUE(dialog.rect().contains(place));
        EXPECT_EQ(button->visibleRegion().boundingRect(), button->rect());
        EXPECT_EQ(dialog.focusWidget(), edit);
        dialog.hide();
        dialog.show();
        EXPECT_TRUE(screen.contains(dialog.frameGeometry()));
    };
    for (const QSize content : {QSize(3000, 200), QSize(300, 3000)}) {
        QDialog dialog;
        show(dialog, content);
        EXPECT_NE(dialog.findChild<QScrollArea*>(), nullptr);
        dialog.show();
        dialog.resize(5000, 5000);
        EXPECT_TRUE(dialog.screen()->availableGeometry().contains(dialog.frameGeometry()));
    }
    QDialog small;
    show(small, {300, 200});
    EXPECT_EQ(small.findChild<QScrollArea*>(), nullptr) << "there is room";
    QFileDialog large;
    large.setOption(QFileDialog::DontUseNativeDialog);
    large.resize(5000, 5000);
    large.show();
    EXPECT_TRUE(large.screen()->availableGeometry().contains(large.frameGeometry()));
    QMessageBox box;
    const QString name = u"10 · 22.11.2026 13:19 · Großmann, Köln · "_s;
    box.setText(QStringList(20, name + name + name + name).join(u'\n'));
    box.show();
    EXPECT_LT(box.frameGeometry().height(), box.screen()->availableGeometry().height());
}

}  // namespace kadrona::testing
