#include "dialogs/settings/FileNamePrompt.h"

#include <QDialogButtonBox>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "controls/messages/MessageBoxes.h"
#include "platform/Paths.h"

using namespace Qt::StringLiterals;

namespace kadrona::dialogs {

namespace {

constexpr QStringView SwallowedCharacters = u"!()./;<>?[\\]{}";

bool IsSwallowed(QChar character) {
    return SwallowedCharacters.contains(character);
}

QString WithoutSwallowed(QString text) {
    return text.removeIf(IsSwallowed);
}

}  // namespace

TFileNameFm::TFileNameFm(core::NameSources nameSources, QWidget* parent)
    : QDialog(parent), nameSources_(std::move(nameSources)) {
    setObjectName(u"FileNameFm"_s);
    setWindowTitle(u"Dialog"_s);
    BuildFields();
    auto* row = new QHBoxLayout;
    row->addWidget(praefixText_);
    row->addWidget(new QLabel(u"-"_s));
    row->addWidget(fileNameEdit_, 1);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(16, 14, 16, 14);
    layout->addWidget(new QLabel(u"Bitte geben Sie einen Dateiname ein.."_s));
    layout->addLayout(row);
    layout->addSpacing(10);
    layout->addWidget(Buttons());
    layout->setSizeConstraint(QLayout::SetFixedSize);
}

void TFileNameFm::BuildFields() {
    praefixText_ = new QLineEdit;
    praefixText_->setObjectName(u"PraefixText"_s);
    praefixText_->setAccessibleName(u"Datum"_s);
    praefixText_->setReadOnly(true);
    praefixText_->setFocusPolicy(Qt::ClickFocus);
    praefixText_->setFixedWidth(praefixText_->fontMetrics().horizontalAdvance(u"0000-00-00"_s) +
                                24);
    fileNameEdit_ = new QLineEdit;
    fileNameEdit_->setObjectName(u"FileNameEdit"_s);
    fileNameEdit_->setAccessibleName(u"Dateiname"_s);
    fileNameEdit_->setMinimumWidth(260);
    fileNameEdit_->installEventFilter(this);
    connect(fileNameEdit_, &QLineEdit::textEdited, this, &TFileNameFm::FileNameEditChange);
}

QDialogButtonBox* TFileNameFm::Buttons() {
    auto* buttons = new QDialogButtonBox(this);
    auto* ok = buttons->addButton(u"&Übernehmen"_s, QDialogButtonBox::AcceptRole);
    ok->setObjectName(u"btnOk"_s);
    ok->setDefault(true);
    buttons->addButton(u"&Abbrechen"_s, QDialogButtonBox::RejectRole)
        ->setObjectName(u"btnCancel"_s);
    connect(buttons, &QDialogButtonBox::accepted, this, &TFileNameFm::btnOkClick);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    return buttons;
}

controls::ModalResult TFileNameFm::ShowEx(const QString& folder) {
    praefixText_->setText(core::GetDatePrefix(nameSources_));
    fileNameEdit_->clear();
    fileNameEdit_->setFocus();
    folder_ = folder;
    return controls::ShowModal(*this);
}

QString TFileNameFm::Path() const {
    return platform::JoinPath(folder_,
                              praefixText_->text() + u'-' + fileNameEdit_->text() + u".jpg"_s);
}

/// A swallowed key leaves a selection in place.
bool TFileNameFm::eventFilter(QObject* watched, QEvent* event) {
    if (watched == fileNameEdit_ && event->type() == QEvent::KeyPress) {
        const QString text = static_cast<QKeyEvent*>(event)->text();
        if (!text.isEmpty() && WithoutSwallowed(text).isEmpty()) {
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}

/// What comes in by pasting or from an input method.
void TFileNameFm::FileNameEditChange() {
    const QString text = fileNameEdit_->text();
    const QString kept = WithoutSwallowed(text);
    if (kept != text) {
        const auto cursor = WithoutSwallowed(text.left(fileNameEdit_->cursorPosition())).size();
        fileNameEdit_->setText(kept);
        fileNameEdit_->setCursorPosition(static_cast<int>(cursor));
    }
}

void TFileNameFm::btnOkClick() {
    if (fileNameEdit_->text().isEmpty()) {
        return;
    }
    if (QFileInfo::exists(Path())) {
        controls::ShowInformation(this, u"Eine Datei mit diesem Namen existiert bereits!"_s);
        return;
    }
    accept();
}

}  // namespace kadrona::dialogs
