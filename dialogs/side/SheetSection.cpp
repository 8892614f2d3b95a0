#include "dialogs/side/SheetSection.h"

#include <QAction>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "controls/theme/Tone.h"
#include "dialogs/side/PaperFields.h"

using namespace Qt::StringLiterals;

namespace kadrona::dialogs {

SheetSection::SheetSection(QWidget* parent)
    : QWidget(parent),
      column_(new QVBoxLayout(this)),
      fields_(new PaperFields),
      summary_(new QLabel) {
    setObjectName(u"SheetSection"_s);
    auto* title = new QLabel(u"Blatt"_s);
    QFont bold = title->font();
    bold.setBold(true);
    title->setFont(bold);
    summary_->setObjectName(u"SheetSummary"_s);
    summary_->setWordWrap(true);
    summary_->setTextFormat(Qt::PlainText);
    column_->addWidget(title);
    column_->addWidget(fields_);
    column_->addWidget(summary_);
}

void SheetSection::SetSummary(const QString& text, bool isError) {
    const QString shown = isError ? u"✗ "_s + text : text;
    if (summary_->text() != shown) {
        summary_->setText(shown);
        controls::SetTone(*summary_, isError ? controls::Tone::Bad : controls::Tone::Plain);
    }
}

void SheetSection::SetPreview(QWidget* preview) {
    column_->insertWidget(3, preview);
}

void SheetSection::AddAction(QAction* action) {
    auto* button = new QPushButton(action->text());
    button->setObjectName(action->objectName() + u"Button"_s);
    button->setToolTip(action->toolTip());
    button->setEnabled(action->isEnabled());
    column_->addWidget(button);
    connect(button, &QPushButton::clicked, action, &QAction::trigger);
    connect(action, &QAction::changed, button,
            [action, button] { button->setEnabled(action->isEnabled()); });
}

}  // namespace kadrona::dialogs
