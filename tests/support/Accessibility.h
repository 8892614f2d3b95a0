#pragma once

// What a screen reader is told of a window, and what the keyboard reaches in it.

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSpinBox>
#include <QAccessible>
#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QRegularExpression>
#include <QSet>
#include <QTabWidget>
#include <QTest>

namespace kadrona::testing {

/// Made by the toolkit inside of another control, or rows of a list, which are named by their
/// texts.
inline bool IsPartOfAControl(const QAccessibleInterface& part) {
    const QAccessibleInterface* parent = part.parent();
    return parent != nullptr &&
           (parent->role() == QAccessible::ComboBox || parent->role() == QAccessible::SpinBox);
}

/// Why a screen reader could not tell what it is; empty where it could.
inline QString NameFaultOf(const QAccessibleInterface& part) {
    using namespace Qt::StringLiterals;
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
    // A box is called by its value here; what it is for is said by the label that it belongs to.
    if (part.role() == QAccessible::ComboBox) {
        return part.relations(QAccessible::Label).isEmpty() ? u"has no label"_s : QString();
    }
    return name.isEmpty() ? u"has no name"_s : QString();
}

/// A line for each control of the window that has no name, no role, or one with mark-up.
inline void CollectNameFaults(QAccessibleInterface* part, const QString& path,
                              QStringList& faults) {
    using namespace Qt::StringLiterals;
    if (part == nullptr || part->object() == nullptr) {
        return;
    }
    const QString here = path + u'/' + part->object()->objectName();
    if (const QString fault = NameFaultOf(*part); !fault.isEmpty()) {
        faults.append(u"%1 (%2) %3"_s.arg(
            here, QString::fromLatin1(part->object()->metaObject()->className()), fault));
    }
    for (int i = 0; i < part->childCount(); ++i) {
        CollectNameFaults(part->child(i), here, faults);
    }
}

/// The controls that Tab comes to in the active window until it begins anew. Some have several
/// places for it.
inline QSet<QWidget*> ReachedByTab(QWidget& window) {
    constexpr int MostKeys = 300;
    QWidget* const first = window.focusWidget();
    QSet<QWidget*> reached{first};
    for (int i = 0; i < MostKeys && (reached.size() == 1 || window.focusWidget() != first); ++i) {
        QWidget* at = window.focusWidget();
        QTest::keyClick(at != nullptr ? at : &window, Qt::Key_Tab);
        reached.insert(window.focusWidget());
    }
    return reached;
}

/// Whether a person has something to do with the control: not with the parts of others, nor with
/// texts that can only be selected.
inline bool IsForTheHand(const QWidget& control) {
    for (const QWidget* above = control.parentWidget(); above != nullptr && !above->isWindow();
         above = above->parentWidget()) {
        if (qobject_cast<const QComboBox*>(above) || qobject_cast<const QAbstractSpinBox*>(above) ||
            qobject_cast<const QLineEdit*>(above) ||
            qobject_cast<const QAbstractItemView*>(above)) {
            return false;
        }
    }
    const auto* line = qobject_cast<const QLineEdit*>(&control);
    return qobject_cast<const QAbstractButton*>(&control) != nullptr ||
           (control.focusPolicy() != Qt::NoFocus && control.focusProxy() == nullptr &&
            qobject_cast<const QLabel*>(&control) == nullptr &&
            (line == nullptr || !line->isReadOnly()));
}

/// Arrow keys go from one button of a choice to the next, and a letter may press a button.
inline bool HasKeysOfItsOwn(const QWidget& control, const QSet<QWidget*>& reached) {
    const auto* button = qobject_cast<const QAbstractButton*>(&control);
    if (button == nullptr || !button->shortcut().isEmpty()) {
        return button != nullptr;
    }
    return button->autoExclusive() &&
           std::any_of(reached.begin(), reached.end(), [button](const QWidget* other) {
               return qobject_cast<const QRadioButton*>(other) != nullptr &&
                      other->parentWidget() == button->parentWidget();
           });
}

/// Those of the window itself, not of others that belong to it.
inline QList<QTabWidget*> TabsOf(const QWidget& window) {
    QList<QTabWidget*> tabs = window.findChildren<QTabWidget*>();
    tabs.removeIf([&window](const QTabWidget* each) { return each->window() != &window; });
    return tabs;
}

/// The controls of a window, which it shows, that no key leads to; on all pages of its tabs.
inline QStringList Unreachable(QWidget& window) {
    constexpr int Patience = 20'000;  // milliseconds, on a busy machine
    window.show();
    window.activateWindow();
    if (!QTest::qWaitForWindowActive(&window, Patience)) {
        return {window.objectName() + QStringLiteral(": not active")};
    }
    QStringList found;
    const auto look = [&] {
        const QSet<QWidget*> reached = ReachedByTab(window);
        for (QWidget* control : window.findChildren<QWidget*>()) {
            if (control->window() == &window && control->isVisible() && control->isEnabled() &&
                IsForTheHand(*control) && !reached.contains(control) &&
                !HasKeysOfItsOwn(*control, reached)) {
                found.append(window.objectName() + u'/' + control->objectName() + u' ' +
                             QString::fromLatin1(control->metaObject()->className()));
            }
        }
    };
    const QList<QTabWidget*> tabs = TabsOf(window);
    if (tabs.isEmpty()) {
        look();
    }
    for (QTabWidget* pages : tabs) {
        for (int page = 0; page < pages->count(); ++page) {
            pages->setCurrentIndex(page);
            look();
        }
    }
    found.removeDuplicates();
    return found;
}

}  // namespace kadrona::testing
