// What a screen reader is told of every window.

#include <QAccessible>
#include <QDialog>
#include <QRegularExpression>

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

}  // namespace

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
