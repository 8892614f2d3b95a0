#include "controls/fields/MissingFolder.h"

#include <QDir>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QTimer>

#include "controls/fields/PathEdit.h"
#include "controls/messages/ActionGuard.h"
#include "controls/theme/Tone.h"
#include "platform/Error.h"
#include "platform/FolderProbe.h"
#include "platform/Paths.h"

using namespace Qt::StringLiterals;

namespace kadrona::controls {

MissingFolder::MissingFolder(PathEdit& field, Creation creation)
    : field_(field), delay_(new QTimer(this)) {
    constexpr int TypingMilliseconds = 400;
    setObjectName(field.objectName() + u"Missing"_s);
    auto* text = new QLabel(u"Diesen Ordner gibt es nicht."_s);
    SetTone(*text, Tone::Warning);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins({});
    row->addWidget(text, 1);
    if (creation == Creation::Offered) {
        AddCreateButton();
    }
    delay_->setSingleShot(true);
    delay_->setInterval(TypingMilliseconds);
    connect(delay_, &QTimer::timeout, this, &MissingFolder::Look);
    connect(&field, &QLineEdit::textChanged, delay_, qOverload<>(&QTimer::start));
    field.installEventFilter(this);
    hide();
}

void MissingFolder::AddCreateButton() {
    auto* create = new QPushButton(u"Anlegen"_s);
    create->setObjectName(objectName() + u"Create"_s);
    create->setAutoDefault(false);
    connect(create, &QPushButton::clicked, this,
            [this] { Guarded(window(), [this] { Create(); }); });
    layout()->addWidget(create);
}

bool MissingFolder::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Show) {
        delay_->start();
    }
    return QWidget::eventFilter(watched, event);
}

void MissingFolder::Look() {
    if (field_.isVisible()) {
        setVisible(!field_.text().isEmpty() &&
                   platform::LookAtFolder(field_.text()) == platform::FolderState::Missing);
    }
}

void MissingFolder::Create() {
    const QString path = field_.text();
    if (!QDir::isAbsolutePath(path) || !platform::CreateFolder(path)) {
        throw platform::Error(u"Der Ordner „%1“ konnte nicht angelegt werden."_s.arg(path));
    }
    Look();
}

}  // namespace kadrona::controls
