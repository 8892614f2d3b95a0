#include "controls/theme/ThemeStyle.h"

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
    // A box's items drop down as a list below it, not as a menu over it; buttons of dialogs bear no
    // icons; a single click selects.
    if (hint == SH_ComboBox_Popup || hint == SH_DialogButtonBox_ButtonsHaveIcons ||
        hint == SH_ItemView_ActivateItemOnSingleClick) {
        return 0;
    }
    return QProxyStyle::styleHint(hint, option, widget, returnData);
}

}  // namespace kadrona::controls
