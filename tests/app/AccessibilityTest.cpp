// What a screen reader is told of every window, and what weak eyes see of it.

#include <QAccessible>
#include <QApplication>
#include <QCheckBox>
#include <QDialog>
#include <QLabel>
#include <QPushButton>
#include <QRegularExpression>
#include <QStyleOptionButton>
#include <QTabWidget>
#include <QVBoxLayout>
#include <cmath>
#include <map>

#include "controls/theme/Theme.h"
#include "controls/theme/Tone.h"
#include "tests/app/StoryFixture.h"

using namespace Qt::StringLiterals;

namespace kadrona::testing {

namespace {

/// Made by the toolkit inside of another control, or rows of a list, which are named by their
/// texts.
bool IsPartOfAControl(const QAccessibleInterface& part) {
    const QAccessibleInterface* parent = part.parent();
    return parent != nullptr &&
           (parent->role() == QAccessible::ComboBox || parent->role() == QAccessible::SpinBox);
}

/// A box is called by its value here; what it is for is said by the label that it belongs to.
bool HasLabel(const QAccessibleInterface& part) {
    return !part.relations(QAccessible::Label).isEmpty();
}

/// Empty where nothing is wrong.
QString FaultOf(const QAccessibleInterface& part) {
    static const QRegularExpression markUp(u"<[a-z/]"_s);
    const QString name = part.text(QAccessible::Name).trimmed();
    if (name.contains(markUp) || part.text(QAccessible::Description).contains(markUp)) {
        return u"speaks mark-up"_s;
    }
    // Texts that can be selected have a focus too, and nothing to say while they are empty.
    if (!part.state().focusable || IsPartOfAControl(part) ||
        part.role() == QAccessible::StaticText) {
        return {};
    }
    if (part.role() == QAccessible::NoRole) {
        return u"has no role"_s;
    }
    if (part.role() == QAccessible::ComboBox) {
        return HasLabel(part) ? QString() : u"has no label"_s;
    }
    return name.isEmpty() ? u"has no name"_s : QString();
}

void CollectFaults(QAccessibleInterface* part, const QString& path, QStringList& faults) {
    if (part == nullptr || part->object() == nullptr) {
        return;
    }
    const QString here = path + u'/' + part->object()->objectName();
    if (const QString fault = FaultOf(*part); !fault.isEmpty()) {
        faults.append(u"%1 (%2) %3"_s.arg(
            here, QString::fromLatin1(part->object()->metaObject()->className()), fault));
    }
    for (int i = 0; i < part->childCount(); ++i) {
        QAccessibleInterface* child = part->child(i);
        if (child != nullptr && child->object() != nullptr) {
            CollectFaults(child, here, faults);
        }
    }
}

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
    return text.trimmed().isEmpty() ? QRect()
           : button                 ? control.rect().adjusted(Frame, Frame, -Frame, -Frame)
                                    : control.rect();
}

/// The texts of a window that are harder to read than 4.5 : 1, each with its contrast.
QStringList FaintTexts(QWidget& window, int& looked) {
    constexpr double LeastContrast = 4.5;
    const QImage picture = window.grab().toImage();
    QStringList faint;
    for (const QWidget* control : window.findChildren<QWidget*>()) {
        const QRect area = TextArea(*control);
        if (area.isEmpty() || !control->isVisibleTo(&window) || !control->isEnabled()) {
            continue;
        }
        const QRect place(control->mapTo(&window, area.topLeft()), area.size());
        const double contrast = ContrastIn(picture.copy(place & picture.rect()));
        ++looked;
        if (contrast < LeastContrast) {
            faint.append(
                u"%1/%2: %3"_s.arg(window.objectName(), control->objectName()).arg(contrast));
        }
    }
    return faint;
}

}  // namespace

TEST_F(Story, EveryTextOfEveryWindowStandsOutInBothAppearances) {
    QList<QWidget*> windows{window.get()};
    for (QDialog* dialog : window->findChildren<QDialog*>()) {
        windows.append(dialog);
    }
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
    windows.append(&tones);
    QStringList faint;
    int looked = 0;
    for (const auto appearance : {controls::Appearance::Light, controls::Appearance::Dark}) {
        controls::ApplyTheme(*qApp, appearance);
        for (QWidget* each : windows) {
            faint += FaintTexts(*each, looked);
            for (auto* pages : each->findChildren<QTabWidget*>()) {
                for (int page = 1; page < pages->count(); ++page) {
                    pages->setCurrentIndex(page);
                    faint += FaintTexts(*each, looked);
                }
            }
        }
    }
    qApp->setStyleSheet({});
    QApplication::setPalette(QApplication::style()->standardPalette());
    EXPECT_GT(looked, 150);
    EXPECT_EQ(faint.join(u'\n'), QString());
}

TEST_F(Story, EveryControlOfEveryWindowHasANameThatIsNoMarkUp) {
    QStringList faults;
    CollectFaults(QAccessible::queryAccessibleInterface(window.get()), {}, faults);
    const auto dialogs = window->findChildren<QDialog*>();
    EXPECT_GT(dialogs.size(), 5);
    for (QDialog* dialog : dialogs) {
        CollectFaults(QAccessible::queryAccessibleInterface(dialog), {}, faults);
    }
    EXPECT_EQ(faults.join(u'\n'), QString());
}

}  // namespace kadrona::testing
