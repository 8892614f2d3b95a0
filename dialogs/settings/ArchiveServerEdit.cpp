#include "dialogs/settings/ArchiveServerEdit.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

#include "controls/fields/WrappingCheckBox.h"
#include "controls/messages/WaitCursor.h"
#include "dialogs/base/Buttons.h"
#include "store/StoreError.h"

using namespace Qt::StringLiterals;

namespace kadrona::dialogs {

namespace {

constexpr int HighestPort = 65535;
constexpr int GroupGap = 8;

template <typename Field>
Field* NamedField(const QString& name) {
    auto* field = new Field;
    field->setObjectName(name);
    return field;
}

QLabel* WrappedText(const QString& text) {
    auto* label = new QLabel(text);
    label->setWordWrap(true);
    label->setTextFormat(Qt::PlainText);
    return label;
}

/// A label over a field; the label's mnemonic leads to the field.
void AddCaptioned(QGridLayout& grid, int row, int column, int columns, const QString& caption,
                  QWidget* field) {
    auto* label = new QLabel(caption);
    label->setBuddy(field);
    field->setAccessibleName(QString(caption).remove(u'&'));
    grid.addWidget(label, row, column, 1, columns);
    grid.addWidget(field, row + 1, column, 1, columns);
}

}  // namespace

ArchiveServerEdit::ArchiveServerEdit(QWidget* parent)
    : QWidget(parent),
      used_(NamedField<controls::WrappingCheckBox>(u"ArchiveOnServer"_s)),
      host_(NamedField<QLineEdit>(u"ServerHost"_s)),
      port_(NamedField<QSpinBox>(u"ServerPort"_s)),
      database_(NamedField<QLineEdit>(u"ServerDatabase"_s)),
      user_(NamedField<QLineEdit>(u"ServerUser"_s)),
      password_(NamedField<QLineEdit>(u"ServerPassword"_s)),
      verified_(NamedField<controls::WrappingCheckBox>(u"ServerVerified"_s)),
      try_(ClickedButton(u"btnTryServer"_s, u"&Prüfen"_s)),
      transfer_(ClickedButton(u"btnTransferArchive"_s, u"Archiv über&tragen …"_s)),
      result_(WrappedText({})) {
    used_->setText(u"Datenbank des Archivs auf einem Ser&ver (mehrere Arbeitsplätze)"_s);
    port_->setRange(1, HighestPort);
    port_->setValue(store::ServerAddress::UsualPort);
    password_->setEchoMode(QLineEdit::Password);
    verified_->setText(u"&Zertifikat des Servers prüfen (Verschlüsselung verlangen)"_s);
    verified_->setToolTip(
        u"Das Zertifikat, mit dem das des Servers geprüft wird, muss unter "
        u"~/.postgresql/root.crt liegen."_s);
    result_->setObjectName(u"ServerResult"_s);
    result_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    BuildLayout();
    for (const QLineEdit* field : {host_, database_, user_, password_}) {
        connect(field, &QLineEdit::textChanged, this, &ArchiveServerEdit::EnableFields);
    }
    connect(verified_, &QCheckBox::toggled, this, &ArchiveServerEdit::EnableFields);
    connect(used_, &QCheckBox::toggled, this, &ArchiveServerEdit::EnableFields);
    connect(try_, &QPushButton::clicked, this, &ArchiveServerEdit::Try);
    connect(transfer_, &QPushButton::clicked, this, [this] {
        ShowResult({});  // what was tried before does not hold afterwards
        Q_EMIT TransferRequested();
    });
    EnableFields();
}

void ArchiveServerEdit::BuildLayout() {
    auto* grid = new QGridLayout;
    grid->setHorizontalSpacing(12);
    grid->setVerticalSpacing(4);
    AddCaptioned(*grid, 0, 0, 2, u"Se&rver (Name oder Adresse)"_s, host_);
    AddCaptioned(*grid, 0, 2, 1, u"Ans&chluss"_s, port_);
    AddCaptioned(*grid, 2, 0, 1, u"&Datenbank"_s, database_);
    AddCaptioned(*grid, 2, 1, 1, u"&Benutzer"_s, user_);
    AddCaptioned(*grid, 2, 2, 1, u"&Kennwort"_s, password_);
    grid->addWidget(verified_, 4, 0, 1, 3);
    for (const int column : {0, 1, 2}) {
        grid->setColumnStretch(column, 1);
    }
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(try_);
    buttons->addWidget(transfer_);
    buttons->addStretch();
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(used_);
    layout->addWidget(WrappedText(
        core::CanUseServers()
            ? u"Gilt für alle Profile. Alle Arbeitsplätze benutzen dann dieselbe Datenbank "
              u"(PostgreSQL); ihr Bildarchiv Verzeichnis (Seite „Allgemein“) muss derselbe "
              u"gemeinsame Ordner sein."_s
            : u"Dieses Programm wurde ohne die Bibliothek für PostgreSQL-Server gebaut; das Archiv "
              u"bleibt auf diesem Rechner."_s));
    layout->addSpacing(GroupGap);
    layout->addLayout(grid);
    layout->addSpacing(GroupGap);
    layout->addLayout(buttons);
    layout->addWidget(result_);
}

core::ArchiveServer ArchiveServerEdit::Server() const {
    return {.used = used_->isChecked(),
            .address = {.host = host_->text().trimmed(),
                        .port = port_->value(),
                        .database = database_->text().trimmed(),
                        .user = user_->text().trimmed(),
                        .password = password_->text(),
                        .verified = verified_->isChecked()}};
}

void ArchiveServerEdit::SetServer(const core::ArchiveServer& server) {
    host_->setText(server.address.host);
    port_->setValue(server.address.port);
    database_->setText(server.address.database);
    user_->setText(server.address.user);
    password_->setText(server.address.password);
    verified_->setChecked(server.address.verified);
    used_->setChecked(server.used);
    ShowResult({});
}

/// Passwords of servers may be empty, all else not.
void ArchiveServerEdit::EnableFields() {
    used_->setEnabled(core::CanUseServers());
    const bool used = used_->isEnabled() && used_->isChecked();
    for (QWidget* field :
         std::initializer_list<QWidget*>{host_, port_, database_, user_, password_, verified_}) {
        field->setEnabled(used);
    }
    const store::ServerAddress address = Server().address;
    const bool complete =
        !address.host.isEmpty() && !address.database.isEmpty() && !address.user.isEmpty();
    try_->setEnabled(used && complete);
    transfer_->setEnabled(used && complete);
    ShowResult({});
}

void ArchiveServerEdit::ShowResult(const QString& text) {
    result_->setText(text);
    result_->setVisible(!text.isEmpty());  // else it would take the focus
}

void ArchiveServerEdit::Try() {
    const controls::WaitCursor wait;
    try {
        ShowResult(core::TryServer(Server().address));
    } catch (const platform::Error& error) {
        ShowResult(error.Text());
    }
}

}  // namespace kadrona::dialogs
