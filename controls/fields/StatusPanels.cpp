#include "controls/fields/StatusPanels.h"

#include <QLabel>
#include <QTimer>
#include <QToolButton>
#include <algorithm>

#include "controls/fields/ElidedLabel.h"
#include "controls/fields/PathLabel.h"
#include "platform/HarmlessText.h"

using namespace Qt::StringLiterals;

namespace kadrona::controls {

StatusPanels::StatusPanels(QWidget* parent)
    : QStatusBar(parent),
      caption_(new QLabel(this)),
      path_(new PathLabel(this)),
      notice_(new ElidedLabel(this)),
      noticeEnd_(new QTimer(this)),
      link_(new QToolButton(this)) {
    constexpr int NoticeMilliseconds = 8000;
    caption_->setObjectName(u"StatusPanel0"_s);
    path_->setObjectName(u"StatusPanel1"_s);
    notice_->setObjectName(u"StatusNotice"_s);
    link_->setObjectName(u"StatusPanel2"_s);
    link_->setAutoRaise(true);
    link_->setCursor(Qt::PointingHandCursor);
    link_->setFocusPolicy(Qt::TabFocus);
    addWidget(caption_);
    addWidget(path_, 1);
    addPermanentWidget(notice_);
    addPermanentWidget(link_);
    noticeEnd_->setSingleShot(true);
    noticeEnd_->setInterval(NoticeMilliseconds);
    connect(noticeEnd_, &QTimer::timeout, notice_, [this] {
        notice_->clear();
        notice_->setMinimumWidth(0);
    });
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

void StatusPanels::ShowNotice(const QString& text) {
    notice_->setText(platform::HarmlessLine(text));
    notice_->setMinimumWidth(std::min(notice_->sizeHint().width(), width() * 2 / 5));
    noticeEnd_->start();
}

}  // namespace kadrona::controls
