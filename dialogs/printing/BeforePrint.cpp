#include "dialogs/printing/BeforePrint.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QShowEvent>
#include <QSpinBox>
#include <QTimer>
#include <QVBoxLayout>

#include "controls/fields/SelectionList.h"
#include "controls/messages/MessageBoxes.h"
#include "controls/theme/Tone.h"
#include "core/Data.h"
#include "core/settings/Settings.h"
#include "dialogs/base/SelfConfirmation.h"
#include "dialogs/base/WindowPlacement.h"
#include "dialogs/printing/PaperView.h"
#include "platform/UserRegistry.h"
#include "printing/Calibration.h"
#include "printing/PrinterSettingsFile.h"
#include "printing/SheetOnPaper.h"

using namespace Qt::StringLiterals;

namespace kadrona::dialogs {

using controls::ModalResult;

namespace {

constexpr QSize SmallestProfileList(220, 120);
constexpr int SettlingMilliseconds = 60;
const QString LastUsedKey = u"PrinterProfile"_s;

/// None where the user's values cannot be read.
QString StoredLastUsed() {
    try {
        return platform::ReadRegistryText(LastUsedKey);
    } catch (const platform::Error&) {
        return {};
    }
}

/// Printing does not wait for it to be kept.
void StoreLastUsed(const QString& chosen) {
    try {
        platform::WriteRegistryText(LastUsedKey, chosen);
    } catch (const platform::Error&) {
        return;
    }
}

/// A stored choice has only the beginning of a long name.
QByteArray KeyOf(const printing::PrinterChoice& printer) {
    return printing::StoredName(printer.device).toUtf8() + '\n' + printer.deviceMode;
}

QLabel* WrappedLabel(const QString& name) {
    auto* label = new QLabel;
    label->setObjectName(name);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    return label;
}

}  // namespace

TBeforPrintDlgFm::TBeforPrintDlgFm(const core::TData& data, const core::Settings& settings,
                                   QWidget* parent)
    : QDialog(parent), data_(data), settings_(settings), lastUsed_(StoredLastUsed()) {
    setObjectName(u"BeforPrintDlgFm"_s);
    setWindowTitle(u"Print Profiles"_s);
    settled_ = new QTimer(this);
    settled_->setSingleShot(true);
    settled_->setInterval(SettlingMilliseconds);
    connect(settled_, &QTimer::timeout, this, &TBeforPrintDlgFm::AskForPaper);

    auto* columns = new QHBoxLayout;
    columns->setSpacing(14);
    columns->addLayout(BuildChoice());
    columns->addLayout(BuildPreview());
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(16, 14, 16, 14);
    layout->addLayout(columns);
    layout->addSpacing(6);
    layout->addWidget(BuildButtons());
    confirmation_ = new SelfConfirmation(*this, *btnProfile_);
    connect(confirmation_, &SelfConfirmation::Interrupted, settled_, qOverload<>(&QTimer::start));
}

QLayout* TBeforPrintDlgFm::BuildChoice() {
    lbProfiles_ = new controls::SelectionList(u"lbProfiles"_s, u"Profile"_s);
    lbProfiles_->setMinimumSize(SmallestProfileList);
    lbProfiles_->SetEmptyText(u"Noch kein Profil. „Datei“, „Druck Profile“ legt eines an."_s);
    copiesBox_ = new QSpinBox;
    copiesBox_->setObjectName(u"CopiesBox"_s);
    copiesBox_->setRange(1, printing::MostCopies);
    auto* caption = new QLabel(u"&Exemplare"_s);
    caption->setBuddy(copiesBox_);
    auto* copies = new QHBoxLayout;
    copies->addWidget(caption);
    copies->addStretch();
    copies->addWidget(copiesBox_);
    auto* column = new QVBoxLayout;
    column->addWidget(lbProfiles_, 1);
    column->addLayout(copies);
    connect(lbProfiles_, &QListWidget::itemSelectionChanged, settled_, qOverload<>(&QTimer::start));
    connect(copiesBox_, &QSpinBox::valueChanged, this, [this](int copies) { copies_ = copies; });
    return column;
}

QLayout* TBeforPrintDlgFm::BuildPreview() {
    view_ = new PaperView;
    view_->setObjectName(u"PaperView"_s);
    paperLabel_ = WrappedLabel(u"PaperLabel"_s);
    warningLabel_ = WrappedLabel(u"WarningLabel"_s);
    controls::SetTone(*warningLabel_, controls::Tone::Bad);
    // Room for what is usually said, so that the dialog keeps its size.
    paperLabel_->setMinimumHeight(2 * paperLabel_->fontMetrics().lineSpacing());
    warningLabel_->setMinimumHeight(warningLabel_->fontMetrics().lineSpacing());
    auto* column = new QVBoxLayout;
    column->setSpacing(4);
    column->addWidget(view_);
    column->addWidget(paperLabel_);
    column->addWidget(warningLabel_);
    return column;
}

QWidget* TBeforPrintDlgFm::BuildButtons() {
    auto* buttons = new QDialogButtonBox;
    btnProfile_ = buttons->addButton(u"&Mit Profil drucken"_s, QDialogButtonBox::ActionRole);
    btnProfile_->setObjectName(u"btnProfile"_s);
    btnProfile_->setDefault(true);
    btnNoProfile_ = buttons->addButton(u"&Ohne Profil drucken"_s, QDialogButtonBox::ActionRole);
    btnNoProfile_->setObjectName(u"btnNoProfile"_s);
    buttons->addButton(u"&Abbrechen"_s, QDialogButtonBox::RejectRole)
        ->setObjectName(u"btnCancel"_s);
    // A double-click on a profile prints with it.
    connect(lbProfiles_, &QListWidget::itemDoubleClicked, btnProfile_, &QPushButton::click);
    connect(btnProfile_, &QPushButton::clicked, this, &TBeforPrintDlgFm::btnProfileClick);
    connect(btnNoProfile_, &QPushButton::clicked, this,
            [this] { done(static_cast<int>(ModalResult::No)); });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    return buttons;
}

ModalResult TBeforPrintDlgFm::ShowEx() {
    lbProfiles_->SetTexts(data_.GetPrinterProfileList());
    ensurePolished();
    setFixedSize(WithinScreen(*this, sizeHint()));
    // Over the main window again, wherever it was moved to last time.
    setAttribute(Qt::WA_Moved, false);
    return controls::ShowModal(*this);
}

QString TBeforPrintDlgFm::SelectedProfile() const {
    return lbProfiles_->SelectedText();
}

void TBeforPrintDlgFm::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (!event->spontaneous()) {
        FormShow();
    }
}

void TBeforPrintDlgFm::FormShow() {
    copies_.reset();
    lbProfiles_->setFocus();
    // Else Return would press the button that was pressed last time.
    (lbProfiles_->count() > 0 ? btnProfile_ : btnNoProfile_)->setDefault(true);
    if (settings_.PrintAfterCrop()) {
        // By name: the profiles may have changed since their places were stored.
        SelectProfile(settings_.PrintProfileBoxText());
        if (lbProfiles_->SelectedRow() >= 0) {
            confirmation_->Start();
        }
    } else {
        SelectProfile(lastUsed_);
        if (lbProfiles_->SelectedRow() < 0 && lbProfiles_->count() == 1) {
            lbProfiles_->SelectRow(0);
        }
    }
    ShowAtOnce();
    settled_->start();
}

void TBeforPrintDlgFm::RememberPaper(const printing::PrinterChoice& printer,
                                     const printing::PrinterPaper& paper) {
    papers_[KeyOf(printer)] = paper;
}

/// What can be shown without asking the print service: the sheet on the paper that the profile had
/// when it was asked last, else alone.
void TBeforPrintDlgFm::ShowAtOnce() {
    view_->ShowText({});
    paperLabel_->clear();
    warningLabel_->clear();
    if (!HasSheet()) {
        return;
    }
    try {
        const std::optional<printing::PrinterChoice> stored =
            data_.PrintProfiles().Stored(SelectedProfile());
        const auto known = stored ? papers_.find(KeyOf(*stored)) : papers_.end();
        if (known != papers_.end()) {
            ShowSheet(known->second);
        } else {
            Draw(SheetOfProfile(), {});
        }
    } catch (const platform::Error& error) {
        view_->ShowText(error.Text());
    }
}

/// Nothing where there is no profile of that name.
void TBeforPrintDlgFm::SelectProfile(const QString& name) {
    const QList<QListWidgetItem*> found = lbProfiles_->findItems(name, Qt::MatchCaseSensitive);
    lbProfiles_->SelectRow(found.isEmpty() ? -1 : lbProfiles_->row(found.first()));
}

/// The sheet as it is printed with the selected profile.
printing::PrintImage TBeforPrintDlgFm::SheetOfProfile() const {
    printing::PrintImage sheet = sheet_;
    sheet.calibration = ProfileCalibration();
    return sheet;
}

printing::Calibration TBeforPrintDlgFm::ProfileCalibration() const {
    const QString profile = SelectedProfile();
    return data_.PrintProfiles().Stored(profile)
               ? printing::StoredCalibration(data_.DataFolder(), profile)
               : printing::Calibration();
}

bool TBeforPrintDlgFm::HasSheet() const {
    return !sheet_.tile.isNull() || sheet_.arrangement.has_value();
}

/// While the dialog is about to print by itself the print service is not asked, for whoever waits
/// for its answer waits longer for the print.
void TBeforPrintDlgFm::AskForPaper() {
    if (!isVisible() || isAsking_ || !HasSheet() || confirmation_->IsRunning()) {
        return;
    }
    isAsking_ = true;
    try {
        ShowPaper();
    } catch (const platform::Error& error) {
        view_->ShowText(error.Text());
        paperLabel_->clear();
        warningLabel_->clear();
    }
    isAsking_ = false;
}

void TBeforPrintDlgFm::ShowPaper() {
    printing::PrinterLayer& printer = data_.Printer();
    const std::optional<printing::PrinterChoice> stored =
        data_.PrintProfiles().Stored(SelectedProfile());
    const printing::PrinterChoice choice = stored ? *stored : printer.CurrentPrinter();
    const printing::PrinterPaper paper = printer.PaperOf(choice);
    RememberPaper(choice, paper);
    ShowSheet(paper);
}

void TBeforPrintDlgFm::Draw(const printing::PrintImage& sheet,
                            const printing::PrinterPaper& paper) {
    view_->ShowSheet(printing::LaidOnPaper(sheet, paper),
                     sheet.arrangement ? sheet.arrangement->pictures : std::vector{sheet.tile});
}

void TBeforPrintDlgFm::ShowSheet(const printing::PrinterPaper& paper) {
    const printing::PrintImage sheet = SheetOfProfile();
    Draw(sheet, paper);
    if (!copies_) {
        const QSignalBlocker blocker(copiesBox_);
        copiesBox_->setValue(paper.copies);
    }
    const QString name = printing::PaperText(sheet, paper);
    QStringList lines{name.isEmpty() ? u"Das Papier des Druckers ist nicht bekannt."_s
                                     : u"Papier: "_s + name};
    if (sheet.calibration != printing::Calibration()) {
        lines.append(u"Kalibriert (gestrichelt, was der Drucker bekommt): "_s +
                     printing::CalibrationText(sheet.calibration));
    }
    paperLabel_->setText(lines.join(u'\n'));
    QStringList warnings = printing::RemarksOf(sheet, paper);
    if (const QString lost = printing::LossText(sheet, paper); !lost.isEmpty()) {
        warnings.prepend(u"Abgeschnitten (rot): "_s + lost);
    }
    warningLabel_->setText(warnings.join(u'\n'));
}

/// Every way of closing a dialog ends here.
void TBeforPrintDlgFm::done(int result) {
    confirmation_->Stop();
    QDialog::done(result);
}

void TBeforPrintDlgFm::btnProfileClick() {
    if (lbProfiles_->SelectedRow() < 0) {
        controls::ShowInformation(this, u"Please select a Profile"_s);
        return;
    }
    if (lastUsed_ != SelectedProfile()) {
        lastUsed_ = SelectedProfile();
        StoreLastUsed(lastUsed_);
    }
    done(static_cast<int>(ModalResult::Yes));
}

}  // namespace kadrona::dialogs
