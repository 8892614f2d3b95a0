#include "controls/fields/MissingFolder.h"

#include <QDir>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QTimer>

#include "controls/fields/PathEdit.h"
#include "controls/messages/ActionGuard.h"
#include "controls/theme/Tone.h"
#include "platform/Error.h"
#include "platform/Paths.h"

using namespace Qt::StringLiterals;

namespace kadrona::controls {

MissingFolder::MissingFolder(const PathEdit& field) : field_(field), delay_(new QTimer(this)) {
    constexpr int TypingMilliseconds = 400;
    setObjectName(field.objectName() + u"Missing"_s);
    auto* text = new QLabel(u"Diesen Ordner gibt es nicht."_s);
    SetTone(*text, Tone::Warning);
    auto* create = new QPushButton(u"Anlegen"_s);
    create->setObjectName(objectName() + u"Create"_s);
    create->setAutoDefault(false);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins({});
    row->addWidget(text, 1);
    row->addWidget(create);
    delay_->setSingleShot(true);
    delay_->setInterval(TypingMilliseconds);
    connect(delay_, &QTimer::timeout, this, &MissingFolder::Look);
    connect(&field, &QLineEdit::textChanged, delay_, qOverload<>(&QTimer::start));
    connect(create, &QPushButton::clicked, this,
            [this] { Guarded(window(), [this] { Create(); }); });
    hide();
}

void MissingFolder::Look() {
    setVisible(!field_.text().isEmpty() && !QDir(field_.text()).exists());
}

void MissingFolder::Create() {
    const QString path = field_.text();
    if (!QDir::isAbsolutePath(path) || !platform::CreateFolder(path)) {
        throw platform::Error(u"Der Ordner „%1“ konnte nicht angelegt werden."_s.arg(path));
    }
    Look();
}

}  // namespace kadrona::controls
