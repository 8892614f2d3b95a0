#include "dialogs/printing/CalibrationDialog.h"

#include <QFormLayout>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>
#include <limits>
#include <utility>

#include "controls/fields/ElidedLabel.h"
#include "controls/messages/ActionGuard.h"
#include "controls/messages/WaitCursor.h"
#include "core/Data.h"
#include "dialogs/base/Buttons.h"
#include "dialogs/base/WindowPlacement.h"
#include "printing/PrinterLayer.h"
#include "printing/RulerSheet.h"

using namespace Qt::StringLiterals;

namespace kadrona::dialogs {

namespace {

/// With a comma or a point; not a number where the text is none.
double NumberIn(const QLineEdit& edit) {
    bool isNumber = false;
    const double number = edit.text().trimmed().replace(u',', u'.').toDouble(&isNumber);
    return isNumber ? number : std::numeric_limits<double>::quiet_NaN();
}

/// Numbered; what wraps goes on below the text, not below its number.
QLayout* StepsOf(const QStringList& steps) {
    auto* grid = new QGridLayout;
    grid->setVerticalSpacing(4);
    grid->setColumnStretch(1, 1);
    for (int row = 0; row < steps.size(); ++row) {
        auto* text = new QLabel(steps[row]);
        text->setWordWrap(true);
        grid->addWidget(new QLabel(u"%1."_s.arg(row + 1)), row, 0, Qt::AlignTop);
        grid->addWidget(text, row, 1);
    }
    return grid;
}

}  // namespace

CalibrationDialog::CalibrationDialog(core::TData& data, QString profile, QWidget* parent)
    : QDialog(parent),
      data_(data),
      profile_(std::move(profile)),
      paper_(data.Printer().Paper().geometry),
      printedWith_(printing::StoredCalibration(data.DataFolder(), profile_)) {
    printing::RulerSheet(paper_, {});  // says now where the paper is none to calibrate with
    setObjectName(u"CalibrationDialog"_s);
    setWindowTitle(u"Drucker kalibrieren"_s);
    BuildControls();
    ShowState(u"Bisher"_s);
    findChild<QPushButton*>(u"btnPrintSheet"_s)->setFocus();  // the first step
    FitToScreen(*this);
}

void CalibrationDialog::BuildControls() {
    auto* apply = ClickedButton(u"btnApply"_s, u"&Übernehmen"_s);
    auto* close = ClickedButton(u"btnClose"_s, u"&Schließen"_s);
    apply->setDefault(true);
    state_ = new QLabel;
    state_->setObjectName(u"lblState"_s);
    state_->setTextFormat(Qt::PlainText);
    state_->setWordWrap(true);

    const printing::RulerLines lines = printing::RulerLinesFor(paper_);
    auto* form = new QFormLayout;
    const auto add = [&](double Readings::*reading, const QString& name, const QString& caption) {
        readings_.push_back({reading, AddReading(*form, name, caption)});
    };
    add(&Readings::across, u"edAcross"_s, u"Länge der Linie &A (soll %1 mm)"_s.arg(lines.across));
    add(&Readings::along, u"edAlong"_s, u"Länge der Linie &B (soll %1 mm)"_s.arg(lines.along));
    add(&Readings::left, u"edLeft"_s, u"Vom &linken Papierrand bis zum Kreuz"_s);
    add(&Readings::top, u"edTop"_s, u"Vom &oberen Papierrand bis zum Kreuz"_s);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(apply);
    buttons->addWidget(close);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(16, 14, 16, 14);
    layout->setSpacing(12);
    layout->addLayout(
        StepsOf({u"Drucken Sie das Kalibrierblatt auf dem Papier, auf dem Sie Fotos drucken."_s,
                 u"Messen Sie es mit einem guten Lineal und tragen Sie die Maße ein."_s,
                 u"Übernehmen Sie sie und drucken Sie zur Kontrolle noch einmal."_s}));
    layout->addLayout(BuildPrintRow());
    layout->addLayout(form);
    layout->addWidget(state_);
    layout->addLayout(buttons);
    connect(apply, &QPushButton::clicked, this,
            [this] { controls::Guarded(this, [this] { Apply(); }); });
    connect(close, &QPushButton::clicked, this, &QDialog::accept);
}

QLayout* CalibrationDialog::BuildPrintRow() {
    auto* print = ClickedButton(u"btnPrintSheet"_s, u"&Kalibrierblatt drucken"_s);
    sheet_ = new controls::ElidedLabel;
    sheet_->setObjectName(u"lblSheet"_s);
    auto* row = new QHBoxLayout;
    row->addWidget(print);
    row->addWidget(sheet_, 1);
    connect(print, &QPushButton::clicked, this,
            [this] { controls::Guarded(this, [this] { PrintSheet(); }); });
    return row;
}

QLineEdit* CalibrationDialog::AddReading(QFormLayout& form, const QString& name,
                                         const QString& caption) {
    auto* edit = new QLineEdit;
    edit->setObjectName(name);
    edit->setAlignment(Qt::AlignRight);
    auto* row = new QHBoxLayout;
    row->addWidget(edit);
    row->addWidget(new QLabel(u"mm"_s));
    auto* label = new QLabel(caption);
    label->setBuddy(edit);
    form.addRow(label, row);
    return edit;
}

void CalibrationDialog::PrintSheet() {
    const controls::WaitCursor wait;
    const auto stored = printing::StoredCalibration(data_.DataFolder(), profile_);
    watch_ = data_.Printer().Print(printing::RulerSheet(paper_, stored));
    if (std::exchange(printedWith_, stored) != stored) {
        ShowState(u"Bisher"_s);
    }
    sheet_->setText(u"Druckauftrag gesendet"_s);
    if (watch_) {
        connect(watch_.get(), &printing::JobWatch::Changed, sheet_,
                [this](const printing::JobState& state) { sheet_->setText(state.text); });
    }
}

/// What the fields say calibrates the printer. A field that makes no sense gets the focus.
printing::Calibration CalibrationDialog::Calibrated() const {
    Readings readings{};
    for (const Field& field : readings_) {
        readings.*field.reading = NumberIn(*field.edit);
    }
    try {
        return printing::Calibrated(paper_, printedWith_, readings);
    } catch (const printing::ReadingError& error) {
        for (const Field& field : readings_) {
            if (field.reading == error.Reading()) {
                field.edit->setFocus();
                field.edit->selectAll();
            }
        }
        throw;
    }
}

void CalibrationDialog::Apply() {
    const printing::Calibration calibrated = Calibrated();
    const auto stored = printing::StoredCalibration(data_.DataFolder(), profile_);
    if (stored != printedWith_) {
        throw printing::PrinterError(
            u"Die Kalibrierung wurde inzwischen anderswo geändert (%1). Drucken Sie das "
            u"Kalibrierblatt noch einmal und messen Sie das neue."_s.arg(
                printing::CalibrationText(stored)));
    }
    printing::StoreCalibration(data_.DataFolder(), profile_, calibrated);
    printedWith_ = printing::StoredCalibration(data_.DataFolder(), profile_);
    // Readings hold for the sheet that was printed before.
    for (const Field& field : readings_) {
        field.edit->clear();
    }
    ShowState(u"Übernommen"_s);
}

void CalibrationDialog::ShowState(const QString& what) {
    state_->setText(
        what + u": "_s +
        printing::CalibrationText(printing::StoredCalibration(data_.DataFolder(), profile_)) +
        u'.');
}

}  // namespace kadrona::dialogs
