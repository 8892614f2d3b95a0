#include "dialogs/BeforePrint.h"

#include <QDialogButtonBox>
#include <QPushButton>
#include <QShowEvent>
#include <QTimer>
#include <QVBoxLayout>

#include "controls/fields/SelectionList.h"
#include "controls/messages/MessageBoxes.h"
#include "core/Data.h"
#include "core/settings/Settings.h"

using namespace Qt::StringLiterals;

namespace kadrona::dialogs {

using controls::ModalResult;

namespace {

constexpr int SelfConfirmationMilliseconds = 500;
constexpr QSize SmallestList(260, 200);

}  // namespace

TBeforPrintDlgFm::TBeforPrintDlgFm(const core::TData& data, const core::Settings& settings,
                                   QWidget* parent)
    : QDialog(parent), data_(data), settings_(settings) {
    setObjectName(u"BeforPrintDlgFm"_s);
    setWindowTitle(u"Print Profiles"_s);
    lbProfiles_ = new controls::SelectionList(u"lbProfiles"_s, u"Profile"_s);
    lbProfiles_->setMinimumSize(SmallestList);
    timer_ = new QTimer(this);
    timer_->setObjectName(u"Timer"_s);
    timer_->setInterval(SelfConfirmationMilliseconds);

    auto* buttons = new QDialogButtonBox(this);
    btnProfile_ = buttons->addButton(u"&Mit Profil drucken"_s, QDialogButtonBox::ActionRole);
    btnProfile_->setObjectName(u"btnProfile"_s);
    btnProfile_->setDefault(true);
    auto* noProfile = buttons->addButton(u"&Ohne Profil drucken"_s, QDialogButtonBox::ActionRole);
    noProfile->setObjectName(u"btnNoProfile"_s);
    buttons->addButton(u"&Abbrechen"_s, QDialogButtonBox::RejectRole)
        ->setObjectName(u"btnCancel"_s);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(16, 14, 16, 14);
    layout->addWidget(lbProfiles_);
    layout->addSpacing(6);
    layout->addWidget(buttons);
    layout->setSizeConstraint(QLayout::SetFixedSize);

    // A double-click on a profile prints with it.
    connect(lbProfiles_, &QListWidget::itemDoubleClicked, btnProfile_, &QPushButton::click);
    connect(btnProfile_, &QPushButton::clicked, this, &TBeforPrintDlgFm::btnProfileClick);
    connect(noProfile, &QPushButton::clicked, this,
            [this] { done(static_cast<int>(ModalResult::No)); });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(timer_, &QTimer::timeout, this, &TBeforPrintDlgFm::TimerTimer);
    lbProfiles_->installEventFilter(this);
    lbProfiles_->viewport()->installEventFilter(this);
}

ModalResult TBeforPrintDlgFm::ShowEx() {
    lbProfiles_->SetTexts(data_.GetPrinterProfileList());
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
    lbProfiles_->setFocus();
    // Else Return would press the button that was pressed last time.
    btnProfile_->setDefault(true);
    if (settings_.PrintAfterCrop()) {
        // By name: the profiles may have changed since their places were stored.
        SelectProfile(settings_.PrintProfileBoxText());
        if (lbProfiles_->SelectedRow() >= 0) {
            timer_->start();
        }
    } else {
        SelectProfile(lastUsed_);
    }
}

/// Nothing where there is no profile of that name.
void TBeforPrintDlgFm::SelectProfile(const QString& name) {
    const QList<QListWidgetItem*> found = lbProfiles_->findItems(name, Qt::MatchCaseSensitive);
    lbProfiles_->SelectRow(found.isEmpty() ? -1 : lbProfiles_->row(found.first()));
}

/// Whoever begins to choose is not hurried.
bool TBeforPrintDlgFm::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress || event->type() == QEvent::MouseButtonPress ||
        event->type() == QEvent::Wheel) {
        timer_->stop();
    }
    return QDialog::eventFilter(watched, event);
}

/// Every way of closing a dialog ends here.
void TBeforPrintDlgFm::done(int result) {
    timer_->stop();
    QDialog::done(result);
}

void TBeforPrintDlgFm::btnProfileClick() {
    if (lbProfiles_->SelectedRow() < 0) {
        controls::ShowInformation(this, u"Please select a Profile"_s);
        return;
    }
    lastUsed_ = SelectedProfile();
    done(static_cast<int>(ModalResult::Yes));
}

void TBeforPrintDlgFm::TimerTimer() {
    timer_->stop();
    btnProfile_->click();
}

}  // namespace kadrona::dialogs
