#include "dialogs/archive/ImageTags.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QShortcut>
#include <QVBoxLayout>
#include <utility>

#include "core/archive/ArchiveTable.h"
#include "dialogs/archive/TagMemo.h"
#include "dialogs/base/WindowPlacement.h"

using namespace Qt::StringLiterals;

namespace kadrona::dialogs {

namespace {

/// Logical pixels.
constexpr QSize PictureBox(130, 180);

}  // namespace

TfmImageTagEdit::TfmImageTagEdit(QWidget* parent)
    : QDialog(parent, Qt::Dialog | Qt::WindowTitleHint | Qt::WindowCloseButtonHint) {
    setObjectName(u"fmImageTagEdit"_s);
    setWindowTitle(u"Schlüsselworte"_s);
    tagMemo_ = new TagMemo;
    photo_ = new QLabel;
    photo_->setObjectName(u"Photo"_s);
    photo_->setAlignment(Qt::AlignTop);
    tagMemo_->setObjectName(u"TagMemo"_s);
    tagMemo_->setAccessibleName(u"Schlüsselworte"_s);
    tagMemo_->setPlaceholderText(u"Je Zeile ein Schlüsselwort, zum Beispiel der Name des Kunden"_s);
    tagMemo_->setTabChangesFocus(true);

    auto* buttons = new QDialogButtonBox(this);
    QPushButton* ok = buttons->addButton(u"&Übernehmen"_s, QDialogButtonBox::AcceptRole);
    ok->setObjectName(u"btnOk"_s);
    ok->setToolTip(u"Übernehmen und schließen"_s);
    ok->setDefault(true);
    QPushButton* cancel = buttons->addButton(u"&Abbrechen"_s, QDialogButtonBox::RejectRole);
    cancel->setObjectName(u"btnCancel"_s);
    cancel->setToolTip(u"Abbrechen"_s);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    // Return alone begins a new line.
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
        connect(new QShortcut(Qt::CTRL | key, this), &QShortcut::activated, ok,
                &QPushButton::click);
    }

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(12, 12, 12, 12);
    layout->setSpacing(10);
    auto* row = new QHBoxLayout;
    row->setSpacing(10);
    row->addWidget(photo_);
    row->addWidget(tagMemo_, 1);
    layout->addLayout(row, 1);
    layout->addWidget(buttons);
    setFixedSize(sizeHint().expandedTo(QSize(420, 280)));
}

controls::ModalResult TfmImageTagEdit::ShowEx(const QString& tags) {
    tagMemo_->SetSuggestions(source_ ? source_() : QStringList());
    const QPixmap picture = std::exchange(picture_, {});
    photo_->setVisible(!picture.isNull());
    if (!picture.isNull()) {
        QPixmap shown = picture.scaled(PictureBox * devicePixelRatioF(), Qt::KeepAspectRatio,
                                       Qt::SmoothTransformation);
        shown.setDevicePixelRatio(devicePixelRatioF());
        photo_->setPixmap(shown);
    }
    tagMemo_->setPlainText(tags);
    tagMemo_->moveCursor(QTextCursor::End);
    tagMemo_->setFocus();
    CentreOnParent(*this);
    return controls::ShowModal(*this);
}

QStringList TfmImageTagEdit::Lines() const {
    QStringList lines = tagMemo_->toPlainText().split(u'\n');
    if (lines.last().isEmpty()) {
        lines.removeLast();
    }
    return lines;
}

QString TfmImageTagEdit::Tags() const {
    return core::TagText(Lines());
}

}  // namespace kadrona::dialogs
