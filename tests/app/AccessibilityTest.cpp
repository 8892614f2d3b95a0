// What a screen reader is told of every window, what weak eyes see of it, what the keyboard reaches
// in it, and how much of it small screens show.

#include <QCheckBox>
#include <QDialog>
#include <QFileInfo>
#include <QMenu>
#include <QPushButton>
#include <QStyleOptionButton>
#include <QVBoxLayout>
#include <cmath>
#include <map>

#include "controls/commands/LetterMenu.h"
#include "controls/fields/ElidedLabel.h"
#include "controls/messages/MessageBoxes.h"
#include "controls/theme/Theme.h"
#include "controls/theme/Tone.h"
#include "dialogs/ManualWindow.h"
#include "dialogs/adjustments/ColourAdjustment.h"
#include "dialogs/archive/ArchiveCheckDialog.h"
#include "dialogs/archive/ArchiveUpkeep.h"
#include "dialogs/archive/LimitDialog.h"
#include "dialogs/base/SmallScreens.h"
#include "dialogs/printing/CalibrationDialog.h"
#include "tests/app/StoryFixture.h"
#include "tests/support/Accessibility.h"

using namespace Qt::StringLiterals;

namespace kadrona::testing {

namespace {

/// Relative luminance of WCAG 2.1, https://www.w3.org/TR/WCAG21/#dfn-relative-luminance.
double Luminance(QRgb colour) {
    const auto linear = [](int level) {
        const double share = level / 255.0;
        return share <= 0.04045 ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(qRed(colour)) + 0.7152 * linear(qGreen(colour)) +
           0.0722 * linear(qBlue(colour));
}

/// Between the colour that most pixels have and the one furthest from it: the inmost of the
/// letters.
double ContrastIn(const QImage& picture) {
    std::map<QRgb, int> counts;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            ++counts[picture.pixel(x, y)];
        }
    }
    const auto ground =
        std::ranges::max_element(counts, {}, [](const auto& entry) { return entry.second; });
    const double under = Luminance(ground->first);
    double most = 1;
    for (const auto& [colour, count] : counts) {
        const double over = Luminance(colour);
        most = std::max(most, (std::max(over, under) + 0.05) / (std::min(over, under) + 0.05));
    }
    return most;
}

/// Where a control shows its text, as far as it is one that does; empty for others.
QRect TextArea(const QWidget& control) {
    if (const auto* box = qobject_cast<const QCheckBox*>(&control)) {
        QStyleOptionButton option;
        option.initFrom(box);
        return box->text().isEmpty()
                   ? QRect()
                   : box->style()->subElementRect(QStyle::SE_CheckBoxContents, &option, box);
    }
    const auto* label = qobject_cast<const QLabel*>(&control);
    const auto* button = qobject_cast<const QPushButton*>(&control);
    const QString text = label ? label->text() : button ? button->text() : QString();
    constexpr int Frame = 4;  // of a button, in the accent's colour when it has the focus
    // Dots have no inside, nor has what is cut down to them.
    const bool isCut = qobject_cast<const controls::ElidedLabel*>(label) != nullptr &&
                       label->sizeHint().width() > label->width();
    return isCut || !text.contains(QRegularExpression(u"\\w"_s)) ? QRect()
           : button ? control.rect().adjusted(Frame, Frame, -Frame, -Frame)
                    : control.rect();
}

/// Whether a control shows an area of its own, whatever scrolls around it.
bool Shows(const QWidget& control, QRect area) {
    for (const QWidget* at = &control; !at->isWindow(); at = at->parentWidget()) {
        if (!at->rect().contains(area)) {
            return false;
        }
        area.translate(at->pos());
    }
    return true;
}

/// The texts of a window that are harder to read than 4.5 : 1, each with its contrast.
QStringList FaintTexts(QWidget& window, int& looked) {
    constexpr double LeastContrast = 4.5;
    const QImage picture = window.grab().toImage();
    QStringList faint;
    for (const QWidget* control : window.findChildren<QWidget*>()) {
        const QRect area = TextArea(*control);
        if (area.isEmpty() || !control->isVisibleTo(&window) || !control->isEnabled() ||
            !Shows(*control, area)) {
            continue;
        }
        const QRect place(control->mapTo(&window, area.topLeft()), area.size());
        QRect inSight = place & picture.rect();
        for (const QWidget* part = control->parentWidget(); part != &window;
             part = part->parentWidget()) {
            inSight &= QRect(part->mapTo(&window, QPoint()), part->size());
        }
        if (inSight != place) {
            continue;  // scrolled away
        }
        const double contrast = ContrastIn(picture.copy(place));
        ++looked;
        if (contrast < LeastContrast) {
            const QString text = control->property("text").toString();
            faint.append(u"%1/%2 \"%3\": %4"_s.arg(window.objectName(), control->objectName(), text)
                             .arg(contrast));
        }
    }
    return faint;
}

/// The letter that leads to a control or presses it; empty where there is none.
QString MnemonicOf(const QWidget& control) {
    if (const auto* button = qobject_cast<const QAbstractButton*>(&control)) {
        return button->shortcut().toString();
    }
    const auto* label = qobject_cast<const QLabel*>(&control);
    return label != nullptr && label->buddy() != nullptr
               ? QKeySequence::mnemonic(label->text()).toString()
               : QString();
}

/// The letters that several controls of a window's page have.
QStringList SharedMnemonics(const QWidget& window) {
    QStringList found;
    QSet<QString> taken;
    for (const QWidget* control : window.findChildren<QWidget*>()) {
        const QString keys = MnemonicOf(*control);
        if (control->window() != &window || !control->isVisibleTo(&window) || keys.isEmpty()) {
            continue;
        }
        if (taken.contains(keys)) {
            found.append(window.objectName() + u'/' + control->objectName() + u' ' + keys);
        }
        taken.insert(keys);
    }
    return found;
}

}  // namespace

/// Every window of the program, over a photo with its template.
class Windows : public Story {
 protected:
    Windows() {
        installation.WriteFigures();
        // What is made when it is needed.
        new dialogs::ColourAdjustment(window.get());
        auto* manual = new dialogs::ManualWindow(window.get());
        manual->Load(QFileInfo(QStringLiteral(TEMPLATE_TABLE)).path() + u"/../docs/handbuch"_s);
        window->Data().SavePrintProfile(u"A"_s);
        new dialogs::CalibrationDialog(window->Data(), u"A"_s, window.get());
        core::ArchiveReport report;
        report.findings = {{core::ArchiveFault::Lost, 0, installation.Path("a.jpg")}};
        new dialogs::ArchiveCheckDialog(upkeep, report, installation.Path("archive"), window.get());
    }

    /// The main window in each of its states, the dialogs, and the questions that come and go.
    void ForEach(const std::function<void(QWidget&)>& look) {
        look(*window);
        Open("photo.png");
        for (const auto& side : {u"acShowCheck"_s, u"acShowSheet"_s}) {
            Named(side).setChecked(false);
            Trigger(side);
        }
        look(*window);
        const auto dialogs = window->findChildren<QDialog*>();
        EXPECT_GE(dialogs.size(), 16);
        for (QDialog* dialog : dialogs) {
            look(*dialog);
            dialog->hide();
        }
        const auto ask = [&](const QString& name, const auto& question) {
            driver.Expect(name, [&look](QWidget& shown) {
                look(shown);
                dynamic_cast<QDialog&>(shown).reject();
            });
            question();
        };
        ask(u"MessageBox"_s, [&] { controls::AskYesNo(window.get(), u"Wirklich?"_s); });
        ask(u"LineDialog"_s, [&] { controls::AskForLine(window.get(), u"Name"_s, u"Profil"_s); });
        ask(u"LimitDialog"_s, [&] { dialogs::AskForPeriod(window.get(), 12); });
        const QDate today(2026, 3, 7);
        ask(u"LimitDialog"_s, [&] { dialogs::AskForDay(window.get(), today, today); });
        ask(u"LibrariesDialog"_s, [&] { ClickButton(*window, "btnLibraries"); });
        driver.Answer(u"Trotzdem erstellen?"_s, u"YesButton"_s);
        Trigger(u"acCrop"_s);
        look(*window);
    }

    dialogs::ArchiveUpkeep upkeep{window->Data(), *window};
};

TEST_F(Windows, HaveTextsThatStandOutInBothAppearances) {
    // The lines of a check, of which only some are ever shown together.
    using controls::Tone;
    QDialog tones;
    tones.setObjectName(u"Tones"_s);
    auto* column = new QVBoxLayout(&tones);
    for (const Tone tone : {Tone::Plain, Tone::Muted, Tone::Good, Tone::Warning, Tone::Bad}) {
        auto* line = new QLabel(u"32 bis 36 mm"_s);
        controls::SetTone(*line, tone);
        column->addWidget(line);
    }
    QStringList faint;
    int looked = 0;
    const auto look = [&](QWidget& each) {
        faint += FaintTexts(each, looked);
        for (auto* pages : TabsOf(each)) {
            for (int page = 1; page < pages->count(); ++page) {
                pages->setCurrentIndex(page);
                faint += FaintTexts(each, looked);
            }
        }
    };
    for (const auto appearance : {controls::Appearance::Light, controls::Appearance::Dark}) {
        controls::ApplyTheme(*qApp, appearance);
        look(tones);
        ForEach(look);
    }
    qApp->setStyleSheet({});
    QApplication::setPalette(QApplication::style()->standardPalette());
    EXPECT_GT(looked, 150);
    EXPECT_EQ(faint.join(u'\n'), QString());
}

TEST_F(Windows, HaveControlsWithNamesThatAreNoMarkUp) {
    QStringList faults;
    ForEach([&](QWidget& each) {
        CollectNameFaults(QAccessible::queryAccessibleInterface(&each), {}, faults);
    });
    EXPECT_EQ(faults.join(u'\n'), QString());
}

TEST_F(Windows, AreReachedByTheKeyboardInAllTheirControls) {
    QStringList faults;
    ForEach([&](QWidget& each) { faults += Unreachable(each); });
    EXPECT_EQ(faults.join(u'\n'), QString());

    const auto buttons = window->findChildren<QAbstractButton*>();
    const auto menus = window->findChildren<QMenu*>();
    for (const app::ActionDefinition& definition : app::ActionDefinitions()) {
        QAction& action = Named(QString::fromUtf16(definition.name));
        const bool hasButton = std::any_of(buttons.begin(), buttons.end(), [&](auto* button) {
            return button->objectName().startsWith(action.objectName());
        });
        const bool isInAMenu = std::any_of(menus.begin(), menus.end(), [&](const QMenu* menu) {
            return menu->actions().contains(&action);
        });
        EXPECT_TRUE(hasButton || isInAMenu || !action.shortcut().isEmpty())
            << action.objectName().toStdString();
    }
}

TEST_F(Windows, HaveNoLetterForTwoThings) {
    QStringList shared;
    ForEach([&](QWidget& each) {
        shared += SharedMnemonics(each);
        for (QTabWidget* pages : TabsOf(each)) {
            for (int page = 0; page < pages->count(); ++page) {
                pages->setCurrentIndex(page);
                shared += SharedMnemonics(each);
            }
        }
    });
    EXPECT_EQ(shared.join(u'\n'), QString());

    QSet<QChar> taken;
    for (const QAction* entry : Child<QMenu>(*window, "DateiMenu").actions()) {
        EXPECT_TRUE(entry->isSeparator() || !taken.contains(controls::MenuLetter(*entry)))
            << entry->text().toStdString();
        taken.insert(controls::MenuLetter(*entry));
    }
    for (const QAbstractButton* box :
         Child<QTabWidget>(*window, "PageControl").findChildren<QAbstractButton*>()) {
        const bool isTicked = qobject_cast<const QCheckBox*>(box) != nullptr ||
                              qobject_cast<const QRadioButton*>(box) != nullptr;
        EXPECT_FALSE(isTicked && box->shortcut().isEmpty()) << box->objectName().toStdString();
    }
}

// What the screen is like is said by the platform: tests/app/CMakeLists.txt.
TEST_F(Windows, LieWhollyOnTheScreen) {
    dialogs::SmallScreens onScreen;
    qApp->installEventFilter(&onScreen);
    controls::ApplyTheme(*qApp, controls::Appearance::Light);
    QStringList faults;
    ForEach([&](QWidget& each) {
        each.show();
        const QRect screen = each.screen()->availableGeometry();
        if (!screen.contains(each.frameGeometry())) {
            const QSize size = each.frameGeometry().size();
            faults += u"%1: %2 x %3 at %4, %5"_s.arg(each.objectName())
                          .arg(size.width())
                          .arg(size.height())
                          .arg(each.x())
                          .arg(each.y());
        }
    });
    EXPECT_EQ(faults.join(u'\n'), QString());
    qApp->setStyleSheet({});
}

}  // namespace kadrona::testing
