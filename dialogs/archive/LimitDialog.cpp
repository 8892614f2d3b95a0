#include "dialogs/archive/LimitDialog.h"

#include <QCheckBox>
#include <QDateEdit>
#include <QDialog>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

#include "core/archive/ArchiveRetention.h"

using namespace Qt::StringLiterals;

namespace kadrona::dialogs {

namespace {

/// A box that says whether there is a limit, with its value behind it.
class LimitDialog : public QDialog {
 public:
    /// Takes ownership of the editor.
    LimitDialog(QWidget* parent, const QString& title, const QString& caption, QWidget* limit,
                const QString& unit, const QString& note)
        : QDialog(parent), limited_(new QCheckBox(caption)) {
        constexpr int NoteWidth = 360;
        setObjectName(u"LimitDialog"_s);
        setWindowTitle(title);
        limited_->setObjectName(u"Limited"_s);
        limit->setObjectName(u"Limit"_s);
        limit->setAccessibleName(caption);
        auto* row = new QHBoxLayout;
        row->addWidget(limited_);
        row->addWidget(limit);
        row->addWidget(new QLabel(unit));
        row->addStretch();
        auto* text = new QLabel(note);
        text->setWordWrap(true);
        text->setMinimumWidth(NoteWidth);
        auto* buttons = new QDialogButtonBox;
        buttons->addButton(u"&Übernehmen"_s, QDialogButtonBox::AcceptRole)
            ->setObjectName(u"OkButton"_s);
        buttons->addButton(u"&Abbrechen"_s, QDialogButtonBox::RejectRole)
            ->setObjectName(u"CancelButton"_s);
        connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
        connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
        connect(limited_, &QCheckBox::toggled, limit, &QWidget::setEnabled);
        auto* layout = new QVBoxLayout(this);
        layout->setContentsMargins(16, 14, 16, 14);
        layout->setSpacing(12);
        layout->addLayout(row);
        layout->addWidget(text);
        layout->addWidget(buttons);
    }

    QCheckBox& Limited() { return *limited_; }

 private:
    QCheckBox* limited_;
};

}  // namespace

std::optional<std::optional<int>> AskForPeriod(QWidget* parent, std::optional<int> months) {
    constexpr int Proposal = 12;
    auto* limit = new QSpinBox;
    limit->setRange(1, core::LongestRetentionMonths);
    limit->setValue(months.value_or(Proposal));
    LimitDialog dialog(
        parent, u"Aufbewahrung"_s, u"&Bilder werden fällig nach"_s, limit, u"Monaten"_s,
        u"Fällige Bilder werden nie von selbst gelöscht: „Fällige Bilder“ zeigt sie, und "
        u"Sie löschen, was weg soll. Ein eigenes Löschdatum geht vor."_s);
    dialog.Limited().setChecked(months.has_value());
    limit->setEnabled(months.has_value());
    if (dialog.exec() != QDialog::Accepted) {
        return std::nullopt;
    }
    return dialog.Limited().isChecked() ? std::optional(limit->value()) : std::optional<int>();
}

std::optional<std::optional<QDate>> AskForDay(QWidget* parent, std::optional<QDate> until,
                                              QDate today) {
    constexpr int ProposedMonths = 12;
    auto* limit = new QDateEdit;
    limit->setCalendarPopup(true);
    limit->setDisplayFormat(u"dd.MM.yyyy"_s);
    // A day that has gone by is refused with the reason: a bound would change what is typed.
    limit->setDate(until.value_or(today.addMonths(ProposedMonths)));
    LimitDialog dialog(parent, u"Löschdatum"_s, u"Aufbewahren &bis"_s, limit, {},
                       u"Ohne Haken gilt, was für das ganze Archiv festgelegt ist."_s);
    dialog.Limited().setChecked(until.has_value());
    limit->setEnabled(until.has_value());
    if (dialog.exec() != QDialog::Accepted) {
        return std::nullopt;
    }
    return dialog.Limited().isChecked() ? std::optional(limit->date()) : std::optional<QDate>();
}

}  // namespace kadrona::dialogs
