#include "controls/fields/ClearButton.h"

#include <QAction>
#include <QLineEdit>

#include "controls/theme/Icons.h"

using namespace Qt::StringLiterals;

namespace kadrona::controls {

void AddClearButton(QLineEdit& edit) {
    edit.setClearButtonEnabled(true);
    // The name that the toolkit gives to the action behind its button.
    if (auto* clear = edit.findChild<QAction*>(u"_q_qlineeditclearaction"_s)) {
        clear->setText(u"Leeren"_s);
        clear->setIcon(Icon(u"clear"_s));
    }
}

}  // namespace kadrona::controls
