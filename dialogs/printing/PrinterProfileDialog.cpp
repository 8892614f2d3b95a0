#include "dialogs/printing/PrinterProfileDialog.h"

#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QScopeGuard>
#include <QVBoxLayout>

#include "controls/fields/SelectionList.h"
#include "controls/messages/ActionGuard.h"
#include "controls/messages/MessageBoxes.h"
#include "controls/messages/WaitCursor.h"
#include "core/Data.h"
#include "dialogs/base/Buttons.h"
#include "dialogs/printing/CalibrationDialog.h"
#include "dialogs/settings/SettingsDialog.h"
#include "platform/Error.h"
#include "printing/Calibration.h"
#include "printing/PrinterLayer.h"

using namespace Qt::StringLiterals;

namespace kadrona::dialogs {

namespace {

constexpr QSize SmallestList(260, 180);

}  // namespace

TPrintProfilDlg::TPrintProfilDlg(core::TData& data, TEinstellungenFm& settings, QWidget* parent)
    : QDialog(parent), data_(data), settings_(settings) {
    setObjectName(u"PrintProfilDlg"_s);
    setWindowTitle(u"Druck Profile"_s);
    lbProfiles_ = new controls::SelectionList(u"lbProfiles"_s, u"Profile"_s);
    lbProfiles_->setMinimumSize(SmallestList);
    lbProfiles_->SetEmptyText(u"Noch kein Profil. „Neues Profil“ fragt nach dem Drucker."_s);
    auto* explanation = new QLabel(
        u"Hier können Sie beliebige Druckereinstellungen speichern und bei Bedarf anwenden."_s);
    explanation->setWordWrap(true);
    explanation->setContentsMargins(0, 0, 0, 6);
    auto* caption = new QLabel(u"&Profile"_s);
    caption->setBuddy(lbProfiles_);
    auto* layout = new QGridLayout(this);
    layout->setContentsMargins(16, 14, 16, 14);
    layout->addWidget(explanation, 0, 0, 1, 2);
    layout->addWidget(caption, 1, 0);
    layout->addWidget(lbProfiles_, 2, 0);
    layout->addLayout(BuildButtons(), 2, 1);
    layout->setHorizontalSpacing(10);
    layout->setColumnStretch(0, 1);
    layout->setRowStretch(2, 1);
    ConnectControls();
    // An index that cannot be read must not keep the program from starting.
    controls::Guarded(parent, [this] { FormCreate(); });
}

QLayout* TPrintProfilDlg::BuildButtons() {
    btnNewProfile_ = NamedButton(u"btnNewProfile"_s, u"&Neues Profil"_s);
    btnDelProfile_ = NamedButton(u"btnDelProfile"_s, u"Profil &löschen"_s);
    btnChangeProfile_ = NamedButton(u"btnChangeProfile"_s, u"Profil ände&rn …"_s);
    btnCalibrate_ = NamedButton(u"btnCalibrate"_s, u"&Kalibrieren …"_s);
    btnClose_ = NamedButton(u"btnClose"_s, u"&Schließen"_s);
    btnDelProfile_->setEnabled(false);
    btnChangeProfile_->setEnabled(false);
    btnCalibrate_->setEnabled(false);
    auto* buttons = new QVBoxLayout;
    buttons->setSpacing(6);
    buttons->addWidget(btnNewProfile_);
    buttons->addWidget(btnDelProfile_);
    buttons->addWidget(btnChangeProfile_);
    buttons->addWidget(btnCalibrate_);
    buttons->addStretch();
    buttons->addWidget(btnClose_);
    return buttons;
}

void TPrintProfilDlg::ConnectControls() {
    connect(lbProfiles_, &QListWidget::itemSelectionChanged, this, [this] {
        btnDelProfile_->setEnabled(lbProfiles_->SelectedRow() >= 0);
        btnChangeProfile_->setEnabled(lbProfiles_->SelectedRow() >= 0);
        btnCalibrate_->setEnabled(lbProfiles_->SelectedRow() >= 0);
    });
    connect(btnChangeProfile_, &QPushButton::clicked, this,
            [this] { controls::Guarded(this, [this] { btnChangeProfileClick(); }); });
    connect(btnCalibrate_, &QPushButton::clicked, this,
            [this] { controls::Guarded(this, [this] { btnCalibrateClick(); }); });
    connect(btnNewProfile_, &QPushButton::clicked, this,
            [this] { controls::Guarded(this, [this] { btnNewProfileClick(); }); });
    connect(btnDelProfile_, &QPushButton::clicked, this,
            [this] { controls::Guarded(this, [this] { btnDelProfileClick(); }); });
    connect(btnClose_, &QPushButton::clicked, this, &QDialog::accept);
}

controls::ModalResult TPrintProfilDlg::ShowEx() {
    // Else both would be with the button that was pressed last time.
    lbProfiles_->setFocus();
    btnClose_->setDefault(true);
    return controls::ShowModal(*this);
}

void TPrintProfilDlg::FormCreate() {
    lbProfiles_->SetTexts(data_.GetPrinterProfileList());
}

void TPrintProfilDlg::btnNewProfileClick() {
    if (!data_.Printer().ShowSetupDialog(windowHandle())) {
        return;
    }
    const auto name = AskForName(u"New Profile"_s, {});
    if (!name || IsKnown(*name)) {
        return;
    }
    data_.SavePrintProfile(*name);
    lbProfiles_->AddText(*name);
    lbProfiles_->SelectRow(lbProfiles_->count() - 1);
    settings_.RefreshPrinterProfiles();
}

/// Asks again after a name that no profile can bear, so that the set-up before is not lost; nothing
/// where the user gives none.
std::optional<QString> TPrintProfilDlg::AskForName(const QString& title, const QString& name) {
    QString text = name;
    while (const auto answer = controls::AskForLine(this, title, u"Name"_s, text)) {
        text = answer->trimmed();
        if (text.isEmpty()) {
            break;
        }
        if (controls::Guarded(this, [&] { core::ProfileIndex::Check(text); })) {
            return text;
        }
    }
    return std::nullopt;
}

/// The name comes first: under another one the profile is kept as a second. The printer that was
/// current before is so again afterwards.
void TPrintProfilDlg::btnChangeProfileClick() {
    const QString profile = lbProfiles_->SelectedText();
    const auto name = AskForName(u"Profil ändern"_s, profile);
    const bool isSame = name && name->compare(profile, Qt::CaseInsensitive) == 0;
    if (!name ||
        (!isSame && IsKnown(*name) &&
         !controls::AskYesNo(
             this, u"Das Profil „%1“ gibt es schon.\n\nMöchten Sie es ersetzen?"_s.arg(*name),
             controls::Severity::Warning))) {
        return;
    }
    printing::PrinterLayer& printer = data_.Printer();
    const printing::PrinterChoice before = printer.CurrentPrinter();
    const auto restore =
        qScopeGuard([&] { controls::Guarded(this, [&] { printer.SetCurrentPrinter(before); }); });
    // A printer that is gone is said; the profile can be given another.
    controls::Guarded(this, [&] {
        const controls::WaitCursor wait;
        data_.LoadPrintProfile(profile);
    });
    if (printer.ShowSetupDialog(windowHandle())) {
        KeepChanged(profile, isSame ? profile : *name);
    }
}

/// The calibration is the printer's: it goes with the profile as long as that stays.
void TPrintProfilDlg::KeepChanged(const QString& profile, const QString& name) {
    const auto stored = data_.PrintProfiles().Stored(profile);
    const bool isSamePrinter = stored && stored->device == data_.Printer().CurrentPrinter().device;
    const printing::Calibration calibration =
        isSamePrinter ? printing::StoredCalibration(data_.DataFolder(), profile)
                      : printing::Calibration();
    const QString left = data_.PrintProfiles().Replace(name);
    printing::StoreCalibration(data_.DataFolder(), name, calibration);
    if (!IsKnown(name)) {
        lbProfiles_->AddText(name);
        settings_.RefreshPrinterProfiles();
    }
    lbProfiles_->SelectRow(lbProfiles_->row(lbProfiles_->findItems(name, Qt::MatchFixedString)[0]));
    if (!left.isEmpty()) {
        throw platform::FileError(left);
    }
}

/// Names that differ in case or in blanks at their ends are one section of the index: making the
/// second would take the first one's settings.
bool TPrintProfilDlg::IsKnown(const QString& name) const {
    return !lbProfiles_->findItems(name.trimmed(), Qt::MatchFixedString).isEmpty();
}

/// The printer that was current before is so again afterwards.
void TPrintProfilDlg::btnCalibrateClick() {
    printing::PrinterLayer& printer = data_.Printer();
    const printing::PrinterChoice before = printer.CurrentPrinter();
    {
        const controls::WaitCursor wait;
        data_.LoadPrintProfile(lbProfiles_->SelectedText());
    }
    const auto restore =
        qScopeGuard([&] { controls::Guarded(this, [&] { printer.SetCurrentPrinter(before); }); });
    CalibrationDialog(data_, lbProfiles_->SelectedText(), this).exec();
}

void TPrintProfilDlg::btnDelProfileClick() {
    const int row = lbProfiles_->SelectedRow();
    if (row < 0 ||
        !controls::AskYesNo(this, u"Druck Profil löschen?"_s, controls::Severity::Warning)) {
        return;
    }
    const QString name = lbProfiles_->SelectedText();
    data_.DeletePrinterProfile(name);
    const auto eraseCalibration = qScopeGuard([&] {
        controls::Guarded(this, [&] { printing::EraseCalibration(data_.DataFolder(), name); });
    });
    delete lbProfiles_->takeItem(row);
    lbProfiles_->SelectRow(-1);
    settings_.ResetPrintDefaults();
    controls::ShowInformation(
        this,
        u"Das Profil wurde gelöscht und die Einstellungen zurückgesetzt.\r\n"
        u"Wechseln Sie zu den Einstellungen und konfigurieren die Druckausgabe erneut!"_s);
}

}  // namespace kadrona::dialogs
