#include "app/face/FaceLine.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QResizeEvent>
#include <algorithm>

using namespace Qt::StringLiterals;

namespace kadrona::app {

namespace {

void KeepRoomWhileHidden(QWidget& widget) {
    QSizePolicy policy = widget.sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    widget.setSizePolicy(policy);
}

}  // namespace

FaceLine::FaceLine() {
    setObjectName(u"FaceLine"_s);
    // Empty it is a part of the photo's surroundings.
    setBackgroundRole(QPalette::Base);
    setAutoFillBackground(true);
    content_ = new QWidget;
    content_->setObjectName(u"FaceProposal"_s);
    text_ = new QLabel;
    text_->setObjectName(u"ProposalText"_s);
    text_->setWordWrap(true);
    auto* accept = new QPushButton(u"Übernehmen (Strg+E)"_s);
    accept->setObjectName(u"AcceptProposal"_s);
    auto* refuse = new QPushButton(u"Nein"_s);
    refuse->setObjectName(u"RefuseProposal"_s);
    buttons_ = {accept, refuse};
    choice_ = new QHBoxLayout;
    choice_->addStretch();
    for (QPushButton* button : buttons_) {
        button->setFocusPolicy(Qt::TabFocus);  // a click leaves the keys to the view
        button->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
        KeepRoomWhileHidden(*button);
        choice_->addWidget(button, 0, Qt::AlignRight);
    }
    row_ = new QHBoxLayout(content_);
    row_->setContentsMargins(8, 3, 8, 3);
    row_->addWidget(text_, 1);
    row_->addLayout(choice_);
    auto* whole = new QVBoxLayout(this);
    whole->setContentsMargins({});
    whole->addWidget(content_);
    KeepRoomWhileHidden(*content_);
    connect(accept, &QPushButton::clicked, this, &FaceLine::Accepted);
    connect(refuse, &QPushButton::clicked, this, &FaceLine::Refused);
    Say({});
}

void FaceLine::Say(const QString& text) {
    Show(text, false);
}

void FaceLine::Ask(const QString& text) {
    Show(text, true);
}

/// While nothing is said the usual offer keeps its room.
void FaceLine::Show(const QString& text, bool asks) {
    text_->setText(text.isEmpty() ? u"Gesicht gefunden. "_s + OfferQuestion : text);
    for (QPushButton* button : buttons_) {
        button->setVisible(asks);
    }
    content_->setVisible(!text.isEmpty());
    LayOut();
}

bool FaceLine::HasFocus() const {
    return std::ranges::any_of(buttons_, &QWidget::hasFocus);
}

QSize FaceLine::minimumSizeHint() const {
    const QMargins margins = row_->contentsMargins();
    int widest = 0;
    for (const QPushButton* button : buttons_) {
        widest = std::max(widest, button->sizeHint().width());
    }
    return {widest + margins.left() + margins.right(), QWidget::minimumSizeHint().height()};
}

void FaceLine::LayOut() {
    const QMargins margins = row_->contentsMargins();
    const int room = width() - margins.left() - margins.right();
    int needed = 0;
    for (const QPushButton* button : buttons_) {
        needed += button->sizeHint().width() + choice_->spacing();
    }
    // Large letters in a narrow view: the buttons have room below each other only.
    choice_->setDirection(needed <= room ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
    // A text of more lines than the buttons are high takes less height above them.
    const int beside = room - needed - row_->spacing();
    const bool fits =
        beside > 0 && text_->heightForWidth(beside) <= 2 * text_->fontMetrics().lineSpacing();
    row_->setDirection(fits ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
    setFixedHeight(row_->totalHeightForWidth(width()));
}

void FaceLine::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    if (event->size().width() != event->oldSize().width()) {
        LayOut();
    }
}

void FaceLine::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
        LayOut();
    }
}

}  // namespace kadrona::app
