#include "controls/MessageBoxes.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QInputDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace kadrona::controls {
namespace {

// `symbol` is the end of an icon's name: message-information, -question, -warning or -error.
void Prepare(QMessageBox& box, const QString& symbol, const QString& text) {
    constexpr QSize SymbolSize(40, 40);
    box.setObjectName(u"MessageBox"_s);
    box.setWindowTitle(QGuiApplication::applicationDisplayName());
    box.setIconPixmap(QIcon(u":/kadrona/icons/message-%1.svg"_s.arg(symbol))
                          .pixmap(SymbolSize, box.devicePixelRatio()));
    box.setTextFormat(Qt::PlainText);
    box.setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    box.setText(text);
}

QPushButton* AddButton(QMessageBox& box, const QString& caption, QMessageBox::ButtonRole role,
                       const QString& name) {
    QPushButton* button = box.addButton(caption, role);
    button->setObjectName(name);
    return button;
}

void ShowMessage(QWidget* parent, const QString& symbol, const QString& text) {
    QMessageBox box(parent);
    Prepare(box, symbol, text);
    QPushButton* ok = AddButton(box, u"OK"_s, QMessageBox::AcceptRole, u"OkButton"_s);
    box.setDefaultButton(ok);
    box.setEscapeButton(ok);
    box.exec();
}

}  // namespace

void ShowInformation(QWidget* parent, const QString& text) {
    ShowMessage(parent, u"information"_s, text);
}

void ShowError(QWidget* parent, const QString& text) {
    ShowMessage(parent, u"error"_s, text);
}

bool AskYesNo(QWidget* parent, const QString& text, Severity severity) {
    QMessageBox box(parent);
    Prepare(box, severity == Severity::Warning ? u"warning"_s : u"question"_s, text);
    QPushButton* yes = AddButton(box, u"&Ja"_s, QMessageBox::YesRole, u"YesButton"_s);
    QPushButton* no = AddButton(box, u"&Nein"_s, QMessageBox::NoRole, u"NoButton"_s);
    box.setDefaultButton(no);
    box.setEscapeButton(no);
    box.exec();
    return box.clickedButton() == yes;
}

std::optional<QString> AskForLine(QWidget* parent, const QString& title, const QString& prompt) {
    QInputDialog dialog(parent);
    dialog.setObjectName(u"LineDialog"_s);
    dialog.setWindowTitle(title);
    dialog.setLabelText(prompt);
    dialog.setOkButtonText(u"OK"_s);
    dialog.setCancelButtonText(u"Abbrechen"_s);
    dialog.setMinimumWidth(360);
    if (auto* edit = dialog.findChild<QLineEdit*>()) {
        edit->setObjectName(u"LineEdit"_s);
    }
    if (auto* buttons = dialog.findChild<QDialogButtonBox*>()) {
        buttons->button(QDialogButtonBox::Ok)->setObjectName(u"OkButton"_s);
        buttons->button(QDialogButtonBox::Cancel)->setObjectName(u"CancelButton"_s);
    }
    if (dialog.exec() != QDialog::Accepted) {
        return std::nullopt;
    }
    return dialog.textValue();
}

}  // namespace kadrona::controls
