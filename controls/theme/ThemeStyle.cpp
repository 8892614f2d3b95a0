#include "controls/theme/ThemeStyle.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QFileDialog>
#include <QHelpEvent>
#include <QLabel>
#include <QMetaObject>
#include <QPushButton>
#include <QStyledItemDelegate>
#include <QToolTip>
#include <typeinfo>

#include "controls/commands/ScreenTip.h"
#include "platform/HarmlessText.h"

using namespace Qt::StringLiterals;

namespace kadrona::controls {

namespace {

/// Shows foreign names in lists harmless.
class NameDelegate : public QStyledItemDelegate {
 public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QString displayText(const QVariant& value, const QLocale& locale) const override {
        return platform::HarmlessLine(QStyledItemDelegate::displayText(value, locale));
    }
};

/// Shows what the views of the toolkit's file dialog say in tips, the paths of folders, as plain
/// text.
class PlainTips : public QObject {
 public:
    using QObject::QObject;

    bool eventFilter(QObject* watched, QEvent* event) override {
        auto* view = qobject_cast<QAbstractItemView*>(watched->parent());
        if (event->type() != QEvent::ToolTip || view == nullptr) {
            return false;
        }
        const auto& help = static_cast<QHelpEvent&>(*event);
        const QVariant tip = view->indexAt(help.pos()).data(Qt::ToolTipRole);
        QToolTip::showText(help.globalPos(), PlainTip(tip.toString()), view);
        return true;
    }
};

/// The lists that its boxes drop down are windows of their own.
bool IsOfFileDialog(const QWidget* widget) {
    while (widget != nullptr && qobject_cast<const QFileDialog*>(widget) == nullptr) {
        widget = widget->parentWidget();
    }
    return widget != nullptr;
}

/// Of that very class, which those derived from it do not tell by their meta object.
bool HasPlainDelegate(const QAbstractItemView& view) {
    const QAbstractItemDelegate* delegate = view.itemDelegate();
    return delegate != nullptr && typeid(*delegate) == typeid(QStyledItemDelegate);
}

}  // namespace

ThemeStyle::ThemeStyle() : QProxyStyle(u"Fusion"_s) {}

void ThemeStyle::polish(QWidget* widget) {
    QProxyStyle::polish(widget);
    if (auto* view = qobject_cast<QAbstractItemView*>(widget)) {
        // A view that was scrolled before it was first shown has measured its items without the
        // style sheet.
        QMetaObject::invokeMethod(view, &QAbstractItemView::doItemsLayout, Qt::QueuedConnection);
        if (HasPlainDelegate(*view)) {
            view->setItemDelegate(new NameDelegate(view));
        }
        if (IsOfFileDialog(view)) {
            view->viewport()->installEventFilter(new PlainTips(view));
        }
    } else if (auto* box = qobject_cast<QComboBox*>(widget)) {
        // A box's own delegate ignores the padding that the style sheet gives to items.
        if (qstrcmp(box->itemDelegate()->metaObject()->className(), "QComboBoxDelegate") == 0) {
            box->setItemDelegate(new NameDelegate(box));
        }
    } else if (auto* button = qobject_cast<QPushButton*>(widget)) {
        // The style sheet's least width, which the size that a button asks for keeps to anyway,
        // would also let layouts make it narrower than its text.
        QMetaObject::invokeMethod(
            button, [button] { button->setMinimumWidth(0); }, Qt::QueuedConnection);
    } else if (auto* label = qobject_cast<QLabel*>(widget)) {
        // Tool tips are labels as well; theirs is made by PlainTip and ScreenTipOf.
        if (label->textFormat() == Qt::AutoText && !label->inherits("QTipLabel")) {
            label->setTextFormat(Qt::PlainText);
        }
    }
}

void ThemeStyle::drawItemText(QPainter* painter, const QRect& rect, int flags,
                              const QPalette& palette, bool enabled, const QString& text,
                              QPalette::ColorRole role) const {
    QProxyStyle::drawItemText(painter, rect, flags, palette, enabled, platform::HarmlessText(text),
                              role);
}

int ThemeStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                          QStyleHintReturn* returnData) const {
    // A box's items drop down as a list below it, not as a menu over it; buttons of dialogs bear no
    // icons; a single click selects.
    if (hint == SH_ComboBox_Popup || hint == SH_DialogButtonBox_ButtonsHaveIcons ||
        hint == SH_ItemView_ActivateItemOnSingleClick) {
        return 0;
    }
    return QProxyStyle::styleHint(hint, option, widget, returnData);
}

}  // namespace kadrona::controls
