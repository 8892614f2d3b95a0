#include "controls/commands/CommandArea.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace kadrona::controls {

CommandArea::CommandArea(const QString& keyTip, QWidget* parent) : QWidget(parent) {
    setAttribute(Qt::WA_StyledBackground);
    auto* strip = new QWidget(this);
    strip->setObjectName(u"CommandStrip"_s);
    application_ = new ApplicationButton(keyTip, strip);
    quickAccess_ = new QuickAccessBar(strip);
    auto* stripLayout = new QHBoxLayout(strip);
    stripLayout->setContentsMargins(0, 0, 6, 0);
    stripLayout->setSpacing(6);
    stripLayout->addWidget(application_);
    stripLayout->addWidget(quickAccess_);
    stripLayout->addStretch();

    layout_ = new QVBoxLayout(this);
    layout_->setContentsMargins(0, 0, 0, 0);
    layout_->setSpacing(0);
    layout_->addWidget(strip);
}

CommandBar& CommandArea::AddBar(const QString& title) {
    auto* bar = new CommandBar(title, this);
    layout_->addWidget(bar);
    return *bar;
}

}  // namespace kadrona::controls
