#include "dialogs/settings/ProfileChooser.h"

#include <QDialogButtonBox>
#include <QGroupBox>
#include <QListWidget>
#include <QPushButton>
#include <QShowEvent>
#include <QVBoxLayout>

#include "controls/fields/KeptSelection.h"
#include "platform/Error.h"

using namespace Qt::StringLiterals;

namespace kadrona::dialogs {

TProfileDlgFM::TProfileDlgFM(QWidget* parent) : QDialog(parent) {
    setObjectName(u"ProfileDlgFM"_s);
    setWindowTitle(u"Profile"_s);
    profileListBox_ = new QListWidget;
    profileListBox_->setObjectName(u"ProfileListBox"_s);
    profileListBox_->setAccessibleName(u"Profil Auswahl"_s);
    controls::KeepSelection(*profileListBox_);
    // A double-click or Enter on an entry chooses it.
    connect(profileListBox_, &QListWidget::itemDoubleClicked, this, &QDialog::accept);

    auto* group = new QGroupBox(u"Profil Auswahl"_s);
    auto* groupLayout = new QVBoxLayout(group);
    groupLayout->addWidget(profileListBox_);

    auto* buttons = new QDialogButtonBox(this);
    auto* ok = buttons->addButton(u"&Profil beim öffnen anwenden"_s, QDialogButtonBox::AcceptRole);
    ok->setObjectName(u"btnOK"_s);
    ok->setDefault(true);
    auto* cancel = buttons->addButton(u"&Abbrechen"_s, QDialogButtonBox::RejectRole);
    cancel->setObjectName(u"btnCancel"_s);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(group);
    layout->addWidget(buttons);
    setFixedSize(sizeHint().expandedTo(QSize(380, 340)));
}

void TProfileDlgFM::SetProfiles(const QStringList& names) {
    profileListBox_->clear();
    profileListBox_->addItems(names);
}

QString TProfileDlgFM::SelectedProfile() const {
    const QListWidgetItem* item = profileListBox_->currentItem();
    if (item == nullptr) {
        throw platform::Error(u"Der Listenindex (-1) ist außerhalb des gültigen Bereichs."_s);
    }
    return item->text();
}

void TProfileDlgFM::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (!event->spontaneous()) {
        FormShow();
    }
}

void TProfileDlgFM::FormShow() {
    if (profileListBox_->count() > 0) {
        profileListBox_->setCurrentRow(0);
    }
    profileListBox_->setFocus();
}

}  // namespace kadrona::dialogs
