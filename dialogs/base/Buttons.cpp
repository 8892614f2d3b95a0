#include "dialogs/base/Buttons.h"

#include <QDialog>
#include <QPushButton>

namespace kadrona::dialogs {

using namespace Qt::StringLiterals;

QPushButton* NamedButton(const QString& name, const QString& caption) {
    auto* button = new QPushButton(caption);
    button->setObjectName(name);
    return button;
}

QPushButton* ClickedButton(const QString& name, const QString& caption) {
    QPushButton* button = NamedButton(name, caption);
    button->setAutoDefault(false);
    return button;
}

AnswerButtons MakeAnswerButtons(QDialog& dialog, const QString& accept, const QString& reject) {
    const AnswerButtons buttons = {NamedButton(u"btnOk"_s, accept),
                                   NamedButton(u"btnCancel"_s, reject)};
    buttons.accept->setDefault(true);
    QObject::connect(buttons.accept, &QPushButton::clicked, &dialog, &QDialog::accept);
    buttons.reject->setAutoDefault(false);
    QObject::connect(buttons.reject, &QPushButton::clicked, &dialog, &QDialog::reject);
    return buttons;
}

}  // namespace kadrona::dialogs
