#include <QDateEdit>
#include <QElapsedTimer>
#include <QSpinBox>
#include <QTreeWidget>

#include "controls/cards/CardGrid.h"
#include "controls/fields/FindPanel.h"
#include "core/Data.h"
#include "dialogs/archive/ArchiveWindow.h"
#include "dialogs/archive/ImageTags.h"
#include "store/sqlite/SqliteDatabase.h"
#include "tests/support/CoreFakes.h"
#include "tests/support/Windows.h"

using namespace Qt::StringLiterals;

namespace kadrona::testing {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class ArchiveWindow : public ::testing::Test {
 protected:
    ArchiveWindow() {
        data.SetSettings(&settings);
        data.InitSystem();
    }

    /// Archived a minute after the one before.
    qint64 AddRecord(const QString& tags) { return AddRecord(*data.Archive(), tags); }
    static qint64 AddRecord(core::ArchiveTable& table, const QString& tags) {
        const qint64 id = table.Insert();
        table.Fill({.id = id,
                    .name = u"2026_03_%1.jpg"_s.arg(id, 5, 10, QChar(u'0')),
                    .type = u"Pass.msk"_s,
                    .created = QDateTime(QDate(2026, 3, 7), QTime(14, static_cast<int>(id))),
                    .folder = u"2026\\03"_s,
                    .tags = tags},
                   {});
        return id;
    }

    controls::ModalResult Show(std::function<void(QWidget&)> answer,
                               const QString& folder = u"/archive"_s) {
        driver.Expect(u"fmImgSearch"_s, std::move(answer));
        return window.ShowEx(folder);
    }

    /// Types as a user would and waits for the hits.
    void Find(const QString& text) {
        auto& edit = Child<QLineEdit>(window, "FindEdit");
        edit.setText(text);
        QTest::keyClick(&edit, Qt::Key_Return);
    }

    QString Hits() { return Child<QLabel>(window, "FindHits").text(); }
    controls::CardGrid& Grid() { return Child<controls::CardGrid>(window, "CardGrid"); }
    QAction& Action(const char* name) { return Child<QAction>(window, name); }

    /// Changes the text in the tag editor and accepts it.
    void ExpectTags(const std::function<void(QPlainTextEdit&)>& change) {
        driver.Expect(u"fmImageTagEdit"_s, [change](QWidget& shown) {
            change(Child<QPlainTextEdit>(shown, "TagMemo"));
            dynamic_cast<QDialog&>(shown).accept();
        });
    }

    Installation installation;
    FakeInterface ui;
    FakeSettings settings;
    ModalDriver driver;
    core::TData data{ui, installation.Folders()};
    dialogs::TfmImageTagEdit tagEditor;
    dialogs::TfmImgSearch window{data, tagEditor};
};

TEST_F(ArchiveWindow, ListsTheNewestFirstAndFindsWhatTheCardsShow) {
    Show([this](QWidget& shown) {
        EXPECT_EQ(Grid().EmptyHeading(), u"Das Archiv ist noch leer."_s);
        EXPECT_FALSE(Action("acEditTags").isEnabled());
        QTest::keyClick(&shown, Qt::Key_Q, Qt::ControlModifier);
    });
    for (const QString& tags : {u"Anna\r\nMüller\r\n"_s, u"Jürgen\r\nO'Neill\r\n"_s, u"\r\n"_s}) {
        AddRecord(tags);
    }
    const auto result = Show([this](QWidget& shown) {
        EXPECT_THAT(Grid().Cards(), ElementsAre(3, 2, 1));
        EXPECT_EQ(Hits(), u"3 Bilder"_s);
        Find(u"müll*"_s);
        EXPECT_THAT(Grid().Cards(), ElementsAre(1));
        EXPECT_EQ(Hits(), u"1 von 3"_s);
        EXPECT_TRUE(Grid().hasFocus());
        Find(u"07.03.2026 -00002"_s);
        EXPECT_THAT(Grid().Cards(), ElementsAre(3, 1));
        Find(u"Meier"_s);
        EXPECT_THAT(Grid().Cards(), IsEmpty());
        EXPECT_EQ(Grid().EmptyHeading(), u"Nichts gefunden."_s);
        EXPECT_FALSE(Action("acPrintImg").isEnabled());
        QTest::keyClick(&shown, Qt::Key_F, Qt::ControlModifier);
        EXPECT_TRUE(Child<QLineEdit>(shown, "FindEdit").hasFocus());
        Action("acClearSearch").trigger();
        EXPECT_EQ(Grid().Cards().size(), 3U);
        Find(u"o'neill"_s);
        QTest::keyClick(&Grid(), Qt::Key_Return);
    });
    EXPECT_EQ(result, controls::ModalResult::Ok);
    EXPECT_EQ(data.CurrentRecord(), 2);

    AddRecord(u"Neu\r\n"_s);
    data.ImgTagSearch(u"Anna"_s);
    const auto again = Show([this](QWidget& shown) {
        EXPECT_THAT(Grid().Cards(), ElementsAre(4, 3, 2, 1));  // neither search is left
        QTest::keyClick(&shown, Qt::Key_Escape);
    });
    EXPECT_EQ(again, controls::ModalResult::Cancel);
}

TEST_F(ArchiveWindow, TagsGoToTheRecordThatTheyWereEnteredForEvenWithoutItsPhoto) {
    AddRecord(u"Anna\r\n"_s);
    AddRecord(u"Bea\r\n"_s);
    for (const QString& folder : {u"/no/such/archive"_s, QString()}) {
        driver.Expect(u"fmImgSearch"_s, [this](QWidget& shown) {
            Child<QLineEdit>(shown, "FindEdit").setText(u"Anna"_s);
            Action("acEditTags").trigger();
            EXPECT_EQ(data.CurrentRecord(), 1) << "as the card that is shown as current";
            shown.close();
        });
        ExpectTags([this](QPlainTextEdit& memo) {
            EXPECT_TRUE(QTest::qWaitFor([this] { return Grid().Cards().size() == 1; }));
            memo.setPlainText(memo.toPlainText() + u"neu %1's"_s);
        });
        window.ShowEx(folder);
    }
    EXPECT_EQ(data.Archive()->Read(2)->tags, u"Bea\r\nneu %1's\r\nneu %1's\r\n"_s);
    EXPECT_THAT(ui.messages, ElementsAre(u"Datei /no/such/archive/2026/03/2026_03_00002.jpg "
                                         u"konnte nicht gefunden werden!"_s));
}

TEST_F(ArchiveWindow, TagsThatAnotherProgramChangedAreReplacedOnlyWhenTheUserSaysSo) {
    AddRecord(u"alt\r\n"_s);
    for (const auto& [button, tags] :
         {std::pair(u"NoButton"_s, u"fremd\r\n"_s), std::pair(u"YesButton"_s, u"mein\r\n"_s)}) {
        data.Archive()->SetTags(1, u"alt\r\n"_s);
        driver.Expect(u"fmImgSearch"_s, [this, tags = tags](QWidget& shown) {
            shown.grab();
            Action("acEditTags").trigger();
            const QString card =
                Grid().model()->index(0, 0).data(Qt::AccessibleTextRole).toString();
            EXPECT_TRUE(card.endsWith(tags.trimmed())) << card.toStdString();
            shown.close();
        });
        ExpectTags([this](QPlainTextEdit& memo) {
            data.Archive()->SetTags(1, u"fremd\r\n"_s);
            memo.setPlainText(u"mein"_s);
        });
        driver.Answer(u"fremd"_s, button);
        if (button == u"NoButton"_s) {
            driver.Expect(u"fmImageTagEdit"_s, [](QWidget& shown) {
                EXPECT_TRUE(
                    Child<QPlainTextEdit>(shown, "TagMemo").toPlainText().startsWith(u"mein"_s));
                shown.close();
            });
        }
        window.ShowEx({});
        EXPECT_EQ(data.Archive()->Read(1)->tags, tags);
    }
}

TEST_F(ArchiveWindow, WhatIsGoneOrLockedIsSaidAtOnceAndHarmsNothing) {
    data.Archive()->Insert();
    const qint64 lost = AddRecord(u"x\r\n"_s);
    Show([&](QWidget& shown) {
        store::SqliteDatabase other(installation.DataFile("Database"));
        other.Execute(uR"(DELETE FROM "ImgDB" WHERE "ID" = %1)"_s.arg(lost));
        shown.grab();
        driver.Press(u"MessageBox"_s, u"OkButton"_s);
        Action("acEditTags").trigger();

        other.Execute(u"BEGIN EXCLUSIVE"_s);
        driver.Answer(u"Ein anderes Programm benutzt die Datenbank"_s);
        QElapsedTimer time;
        time.start();
        Find(u"x"_s);
        EXPECT_LT(time.elapsed(), 2000);
        other.Execute(u"ROLLBACK"_s);
        Find(u"x"_s);
        EXPECT_THAT(Grid().Cards(), IsEmpty()) << "Return searches again";

        other.Execute(uR"(ALTER TABLE "ImgDB" RENAME TO "Gone")"_s);
        driver.Answer(u"Das Bildarchiv ist nicht verfügbar"_s);
        Find(u"y"_s);
        shown.grab();
        shown.close();
    });
}

TEST_F(ArchiveWindow, DeletesTheSelectedPhotosAfterAQuestionThatNamesThem) {
    const QString folder = installation.Path("archive");
    installation.Write("archive/Notiz.txt", "the share is there");
    for (const char* name : {"Anna", "Bea", "Cora", "Dora"}) {
        AddRecord(QString::fromLatin1(name) + u"\r\n"_s);
    }
    data.Archive()->Insert();
    const auto press = [&](const QStringList& question, const QString& button) {
        driver.Answer(question, button);
        window.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
        QTest::keyClick(&Grid(), Qt::Key_Delete);
    };
    Show(
        [&](QWidget& shown) {
            EXPECT_EQ(Hits(), u"4 Bilder, 1 leerer Datensatz"_s);
            EXPECT_EQ(Grid().Cards().size(), 5U);
            Action("acHideBlank").trigger();
            EXPECT_EQ(Grid().Cards().size(), 4U);
            Grid().setFocus();
            QTest::keyClick(&Grid(), Qt::Key_Right);
            QTest::keyClick(&Grid(), Qt::Key_Right, Qt::ShiftModifier);
            press({u"diese 2 Bilder"_s, u"07.03.2026 14:03 · Cora\n"_s, u"Bea"_s}, u"NoButton"_s);
            EXPECT_EQ(Grid().Cards().size(), 4U);
            press({u"nicht zu finden ist: 2"_s}, u"YesButton"_s);
            EXPECT_THAT(Grid().Cards(), ElementsAre(4, 1));
            EXPECT_EQ(Grid().Current(), 1) << "its place";
            driver.Answer(u"leer"_s, u"YesButton"_s);
            Action("acDeleteBlank").trigger();
            Action("acHideBlank").trigger();
            EXPECT_EQ(Hits(), u"2 Bilder"_s);
            EXPECT_FALSE(Action("acDeleteBlank").isEnabled());
            shown.close();
        },
        folder);
    EXPECT_EQ(data.Archive()->Ids(), (std::vector<qint64>{4, 1}));
}

TEST_F(ArchiveWindow, ListsWhatIsDueByThePeriodThatIsSet) {
    core::NameSources sources;
    sources.now = [] { return QDateTime(QDate(2026, 6, 7), QTime(9, 0)); };
    data.SetNameSources(sources);
    AddRecord(u"Anna\r\n"_s);
    AddRecord(u"Bea\r\n"_s);
    const auto limit = [&](const char* action, const std::function<void(QWidget&)>& set) {
        driver.Expect(u"LimitDialog"_s, [set](QWidget& dialog) {
            Child<QCheckBox>(dialog, "Limited").setChecked(true);
            set(dialog);
            ClickButton(dialog, "OkButton");
        });
        Action(action).trigger();
    };
    Show([&](QWidget& shown) {
        Action("acDue").trigger();
        EXPECT_EQ(Grid().EmptyHeading(), u"Kein Bild ist fällig."_s);
        limit("acRetention", [](QWidget& dialog) {
            auto& months = Child<QSpinBox>(dialog, "Limit");
            months.setValue(0);
            EXPECT_EQ(months.value(), 1);
        });
        EXPECT_THAT(Grid().Cards(), ElementsAre(2, 1));
        EXPECT_EQ(Hits(), u"2 von 2"_s);
        limit("acKeepUntil", [](QWidget& dialog) {
            auto& day = Child<QDateEdit>(dialog, "Limit");
            EXPECT_LT(day.minimumDate(), QDate(2020, 1, 1)) << "what is typed stays";
            day.setDate(QDate(2026, 6, 30));
        });
        EXPECT_THAT(Grid().Cards(), ElementsAre(1));
        Action("acDue").trigger();
        Child<QComboBox>(shown, "OrderBox").setCurrentIndex(1);
        EXPECT_THAT(Grid().Cards(), ElementsAre(1, 2));
        Child<QComboBox>(shown, "PeriodBox").setCurrentIndex(1);
        EXPECT_THAT(Grid().Cards(), IsEmpty());
        shown.close();
    });
}

TEST_F(ArchiveWindow, ACheckSaysWhatIsWrongAndWhatCanBeDone) {
    const QString folder = installation.Path("archive");
    installation.Write("archive/Notiz.txt", "of the user");
    AddRecord(u"Anna\r\n"_s);
    Show(
        [&](QWidget& shown) {
            driver.Expect(u"ArchiveCheckDialog"_s, [&](QWidget& check) {
                auto& findings = Child<QTreeWidget>(check, "Findings");
                EXPECT_EQ(Items(findings),
                          u"Die Datei fehlt (1)|Die Datei gehört nicht zum Archiv (1)"_s);
                EXPECT_TRUE(Child<QLabel>(check, "Advice").text().contains(u"Sicherung"));
                driver.Answer(u"Anna"_s, u"YesButton"_s);
                ClickButton(check, "btnRemedy");
                EXPECT_EQ(Items(findings), u"Die Datei gehört nicht zum Archiv (1)"_s);
                EXPECT_FALSE(Child<QPushButton>(check, "btnRemedy").isVisible());
                check.close();
            });
            Action("acCheck").trigger();
            EXPECT_THAT(Grid().Cards(), IsEmpty());
            shown.close();
        },
        folder);
}

TEST_F(ArchiveWindow, ShowsWhatOthersFileAndChangeMeanwhile) {
    AddRecord(u"a\r\n"_s);
    Show([&](QWidget& shown) {
        core::TData other(ui, installation.Folders());
        other.InitSystem();
        const qint64 id = AddRecord(*other.Archive(), u"neu\r\n"_s);
        EXPECT_TRUE(QTest::qWaitFor([&] { return Grid().Cards().size() == 2; }, 2000));
        Find(u"neu"_s);
        EXPECT_THAT(Grid().Cards(), ElementsAre(id));
        other.Archive()->SetTags(id, u"alt\r\n"_s);
        EXPECT_TRUE(QTest::qWaitFor([&] { return Grid().Cards().empty(); }, 2000));
        shown.close();
    });
}

TEST_F(ArchiveWindow, RemembersItsSize) {
    Show([](QWidget& shown) {
        shown.resize(640, 480);
        shown.close();
    });
    Show([](QWidget& shown) {
        EXPECT_EQ(shown.size(), QSize(640, 480));
        shown.close();
    });
    dialogs::TfmImgSearch next(data, tagEditor);
    EXPECT_EQ(next.size(), QSize(640, 480));
    // It only knows places of windows: the program starts without it.
    const QString layout = installation.DataFile("kdr.ini");
    ASSERT_TRUE(QFile::remove(layout) && QDir().mkpath(layout));
    EXPECT_EQ(dialogs::TfmImgSearch(data, tagEditor).minimumSize(), QSize(420, 420));
}

TEST_F(ArchiveWindow, PhotosThatWaitAreFoundAndDeletedToo) {
    const core::FilingQueue& queue = data.Archiving().Queue();
    for (const QString& tags : {u"Anna\r\n"_s, u"Bea\r\n"_s}) {
        queue.Add({.archiveFolder = {},
                   .templateName = {},
                   .tags = tags,
                   .created = data.NameSources().now(),
                   .photo = "a face",
                   .thumbnail = "small"});
    }
    Show([this](QWidget& shown) {
        EXPECT_TRUE(Hits().endsWith(u", 2 warten"_s)) << Hits().toStdString();
        Find(u"Anna"_s);
        driver.Answer({u"dieses Bild"_s, u"wartet · "_s, u" · Anna"_s}, u"YesButton"_s);
        Action("acDeleteFound").trigger();
        shown.close();
    });
    ASSERT_EQ(queue.Waiting().size(), 1);
    EXPECT_EQ(queue.ReadKnowledge(queue.Waiting()[0]).tags, u"Bea\r\n"_s);
    queue.Remove(queue.Waiting()[0]);
}

}  // namespace kadrona::testing
