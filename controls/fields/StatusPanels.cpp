#include "controls/fields/StatusPanels.h"

#include <QLabel>
#include <QToolButton>
#include <algorithm>

#include "controls/fields/PathLabel.h"

using namespace Qt::StringLiterals;

namespace kadrona::controls {

StatusPanels::StatusPanels(QWidget* parent)
    : QStatusBar(parent),
      caption_(new QLabel(this)),
      path_(new PathLabel(this)),
      link_(new QToolButton(this)) {
    caption_->setObjectName(u"StatusPanel0"_s);
    path_->setObjectName(u"StatusPanel1"_s);
    link_->setObjectName(u"StatusPanel2"_s);
    link_->setAutoRaise(true);
    link_->setCursor(Qt::PointingHandCursor);
    link_->setFocusPolicy(Qt::TabFocus);
    addWidget(caption_);
    addWidget(path_, 1);
    addPermanentWidget(link_);
    connect(link_, &QToolButton::clicked, this, &StatusPanels::LinkClicked);
}

void StatusPanels::SetCaption(const QString& text, int width) {
    caption_->setText(text);
    caption_->ensurePolished();
    caption_->setFixedWidth(std::max(width, caption_->sizeHint().width()));
}

void StatusPanels::SetLink(const QString& text, int width) {
    link_->setText(text);
    link_->ensurePolished();
    link_->setFixedWidth(std::max(width, link_->sizeHint().width()));
}

void StatusPanels::SetPath(const QString& path) {
    path_->SetPath(path);
}

QString StatusPanels::Path() const {
    return path_->Path();
}

}  // namespace kadrona::controls
