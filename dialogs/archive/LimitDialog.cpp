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
#include "dialogs/archive/DateField.h"

using namespace Qt::StringLiterals;

namespace kadrona::dialogs {

namespace {

/// A box that says whether there is a limit, with its value behind it.
class LimitDialog : public QDialog {
 public:
    /// Takes ownership of the editor.
    LimitDialog(QWidget* parent, const QString& title, const QString& caption, bool limited,
                QWidget* limit, const QString& unit, const QString& note)
        : QDialog(parent), limited_(new QCheckBox(caption)) {
        constexpr int NoteWidth = 360;
        setObjectName(u"LimitDialog"_s);
        setWindowTitle(title);
        limited_->setObjectName(u"Limited"_s);
        limit->setObjectName(u"Limit"_s);
        limit->setAccessibleName(QString(caption).remove(u'&'));
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
        limited_->setChecked(limited);
        limit->setEnabled(limited);
        auto* layout = new QVBoxLayout(this);
        layout->setContentsMargins(16, 14, 16, 14);
        layout->setSpacing(12);
        layout->addLayout(row);
        layout->addWidget(text);
        layout->addWidget(buttons);
    }

    /// The limit that `value` reads from the editor; nothing inside for none, nothing at all when
    /// the user cancels.
    template <typename Reader>
    auto Ask(Reader value) -> std::optional<std::optional<decltype(value())>> {
        if (exec() != Accepted) {
            return std::nullopt;
        }
        return limited_->isChecked() ? std::optional(value()) : std::optional<decltype(value())>();
    }

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
        parent, u"Aufbewahrung"_s, u"&Bilder werden fällig nach"_s, months.has_value(), limit,
        u"Monaten"_s,
        u"Fällige Bilder werden nie von selbst gelöscht: „Fällige Bilder“ zeigt sie, und "
        u"Sie löschen, was weg soll. Ein eigenes Löschdatum geht vor."_s);
    return dialog.Ask([limit] { return limit->value(); });
}

std::optional<std::optional<QDate>> AskForDay(QWidget* parent, std::optional<QDate> until,
                                              QDate today) {
    constexpr int ProposedMonths = 12;
    // A day that has gone by is refused with the reason: a bound would change what is typed.
    QDateEdit* limit = NewDateField(until.value_or(today.addMonths(ProposedMonths)));
    LimitDialog dialog(parent, u"Löschdatum"_s, u"Aufbewahren &bis"_s, until.has_value(), limit, {},
                       u"Ohne Haken gilt, was für das ganze Archiv festgelegt ist."_s);
    return dialog.Ask([limit] { return limit->date(); });
}

}  // namespace kadrona::dialogs
