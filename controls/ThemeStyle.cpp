#include "controls/ThemeStyle.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QMetaObject>
#include <QStyledItemDelegate>

using namespace Qt::StringLiterals;

namespace kadrona::controls {

ThemeStyle::ThemeStyle() : QProxyStyle(u"Fusion"_s) {}

void ThemeStyle::polish(QWidget* widget) {
    QProxyStyle::polish(widget);
    if (auto* view = qobject_cast<QAbstractItemView*>(widget)) {
        // A view that was scrolled before it was first shown has measured its items without the
        // style sheet.
        QMetaObject::invokeMethod(view, &QAbstractItemView::doItemsLayout, Qt::QueuedConnection);
    } else if (auto* box = qobject_cast<QComboBox*>(widget)) {
        // A box's own delegate ignores the padding that the style sheet gives to items.
        if (qstrcmp(box->itemDelegate()->metaObject()->className(), "QComboBoxDelegate") == 0) {
            box->setItemDelegate(new QStyledItemDelegate(box));
        }
    }
}

int ThemeStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                          QStyleHintReturn* returnData) const {
    switch (hint) {
        case SH_ComboBox_Popup:
            return 0;  // a list below the box, not a menu over it
        case SH_DialogButtonBox_ButtonsHaveIcons:
        case SH_ItemView_ActivateItemOnSingleClick:
            return 0;
        default:
            return QProxyStyle::styleHint(hint, option, widget, returnData);
    }
}

}  // namespace kadrona::controls
