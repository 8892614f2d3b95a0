#include "controls/messages/MessageBoxes.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

#include "platform/HarmlessText.h"

using namespace Qt::StringLiterals;

namespace kadrona::controls {
namespace {

/// Without the middle of what no screen has room for, as a print service may send it.
QString Shortened(const QString& text) {
    constexpr int LongestText = 1000;
    constexpr int LongestEnd = 200;
    return text.size() <= LongestText
               ? text
               : text.first(LongestText - LongestEnd) + u" … "_s + text.last(LongestEnd);
}

/// Lets the box break a word that is longer than a line, as a path may be, and would be cut off.
QString WithBreaks(const QString& text) {
    constexpr int LongestPiece = 60;
    constexpr QChar ZeroWidthSpace(0x200b);
    QString broken;
    int length = 0;
    for (const QChar character : text) {
        length = character.isSpace() ? 0 : length + 1;
        if (length > LongestPiece && !character.isLowSurrogate()) {
            broken += ZeroWidthSpace;
            length = 1;
        }
        broken += character;
    }
    return broken;
}

/// One without a parent stands in the middle of the screen: the toolkit leaves room for a frame
/// that it guesses.
class PlacedMessageBox : public QMessageBox {
 public:
    using QMessageBox::QMessageBox;

 protected:
    void showEvent(QShowEvent* event) override {
        QMessageBox::showEvent(event);
        if (parentWidget() == nullptr) {
            move(screen()->availableGeometry().center() - rect().center());
        }
    }
};

// `symbol` is the end of an icon's name: message-information, -question, -warning or -error.
void Prepare(QMessageBox& box, const QString& symbol, const QString& text) {
    constexpr QSize SymbolSize(40, 40);
    box.setObjectName(u"MessageBox"_s);
    box.setWindowTitle(QGuiApplication::applicationDisplayName());
    box.setIconPixmap(QIcon(u":/kadrona/icons/message-%1.svg"_s.arg(symbol))
                          .pixmap(SymbolSize, box.devicePixelRatio()));
    box.setTextFormat(Qt::PlainText);
    box.setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    box.setText(WithBreaks(Shortened(platform::HarmlessText(text))));
    // A short text must not cut the title off.
    constexpr int SmallestWidth = 280;
    if (auto* grid = qobject_cast<QGridLayout*>(box.layout())) {
        grid->addItem(new QSpacerItem(SmallestWidth, 0), grid->rowCount(), 0, 1,
                      grid->columnCount());
    }
}

QPushButton* AddButton(QMessageBox& box, const QString& caption, QMessageBox::ButtonRole role,
                       const QString& name) {
    QPushButton* button = box.addButton(caption, role);
    button->setObjectName(name);
    return button;
}

/// Over a window that is not shown yet a box would stand where that is going to be, or nowhere.
QWidget* OnScreen(QWidget* parent) {
    return parent != nullptr && parent->isVisible() ? parent : nullptr;
}

void ShowMessage(QWidget* parent, const QString& symbol, const QString& text) {
    PlacedMessageBox box(OnScreen(parent));
    Prepare(box, symbol, text);
    QPushButton* ok = AddButton(box, u"OK"_s, QMessageBox::AcceptRole, u"OkButton"_s);
    box.setDefaultButton(ok);
    box.setEscapeButton(ok);
    box.exec();
}

bool Ask(QWidget* parent, const QString& symbol, const QString& text, bool yesIsDefault) {
    PlacedMessageBox box(parent);
    Prepare(box, symbol, text);
    QPushButton* yes = AddButton(box, u"&Ja"_s, QMessageBox::YesRole, u"YesButton"_s);
    QPushButton* no = AddButton(box, u"&Nein"_s, QMessageBox::NoRole, u"NoButton"_s);
    box.setDefaultButton(yesIsDefault ? yes : no);
    box.setEscapeButton(no);
    box.exec();
    return box.clickedButton() == yes;
}

}  // namespace

void ShowInformation(QWidget* parent, const QString& text) {
    ShowMessage(parent, u"information"_s, text);
}

void ShowError(QWidget* parent, const QString& text) {
    ShowMessage(parent, u"error"_s, text);
}

bool AskYesNo(QWidget* parent, const QString& text, Severity severity) {
    return Ask(parent, severity == Severity::Warning ? u"warning"_s : u"question"_s, text, false);
}

bool AskToRetry(QWidget* parent, const QString& text) {
    return Ask(parent, u"warning"_s, text, true);
}

std::unique_ptr<QMessageBox> MakeWarning(const QString& text) {
    auto box = std::make_unique<PlacedMessageBox>();
    Prepare(*box, u"warning"_s, text);
    return box;
}

std::optional<QString> AskForLine(QWidget* parent, const QString& title, const QString& prompt,
                                  const QString& text) {
    QDialog dialog(parent);
    dialog.setObjectName(u"LineDialog"_s);
    dialog.setWindowTitle(title);
    auto* label = new QLabel(prompt, &dialog);
    label->setTextFormat(Qt::PlainText);
    auto* edit = new QLineEdit(&dialog);
    edit->setObjectName(u"LineEdit"_s);
    edit->setText(text);
    edit->selectAll();
    edit->setMinimumWidth(320);
    label->setBuddy(edit);

    auto* buttons = new QDialogButtonBox(&dialog);
    QPushButton* ok = buttons->addButton(u"OK"_s, QDialogButtonBox::AcceptRole);
    ok->setObjectName(u"OkButton"_s);
    ok->setDefault(true);
    buttons->addButton(u"&Abbrechen"_s, QDialogButtonBox::RejectRole)
        ->setObjectName(u"CancelButton"_s);
    QObject::connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);

    auto* layout = new QVBoxLayout(&dialog);
    layout->setContentsMargins(16, 14, 16, 14);
    layout->setSpacing(6);
    layout->addWidget(label);
    layout->addWidget(edit);
    layout->addSpacing(10);
    layout->addWidget(buttons);
    if (dialog.exec() != QDialog::Accepted) {
        return std::nullopt;
    }
    return edit->text();
}

}  // namespace kadrona::controls
