#include "app/face/FaceOverlay.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>

#include "imaging/view/ImageView.h"

using namespace Qt::StringLiterals;

namespace kadrona::app {

namespace {

const QColor Accent(0x1a, 0x6f, 0xb5);

}  // namespace

FaceOverlay::FaceOverlay(imaging::view::ImageView& view) : QWidget(&view), view_(view) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setObjectName(u"FaceOverlay"_s);
    // A child of the view itself, so that its buttons get the mouse.
    line_ = new QWidget(&view);
    line_->setObjectName(u"FaceProposal"_s);
    line_->setAutoFillBackground(true);
    text_ = new QLabel(line_);
    text_->setObjectName(u"ProposalText"_s);
    text_->setWordWrap(true);
    auto* accept = new QPushButton(u"Übernehmen (Strg+E)"_s, line_);
    accept->setObjectName(u"AcceptProposal"_s);
    auto* refuse = new QPushButton(u"Nein"_s, line_);
    refuse->setObjectName(u"RefuseProposal"_s);
    buttons_ = {accept, refuse};
    for (QPushButton* button : buttons_) {
        button->setFocusPolicy(Qt::TabFocus);  // a click leaves the keys to the view
        button->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    }
    choice_ = new QHBoxLayout;
    choice_->addStretch();
    choice_->addWidget(accept, 0, Qt::AlignRight);
    choice_->addWidget(refuse, 0, Qt::AlignRight);
    row_ = new QHBoxLayout(line_);
    row_->setContentsMargins(8, 3, 8, 3);
    row_->addWidget(text_, 1);
    row_->addLayout(choice_);
    line_->hide();
    connect(accept, &QPushButton::clicked, this, &FaceOverlay::Accepted);
    connect(refuse, &QPushButton::clicked, this, &FaceOverlay::Refused);
    connect(&view, &imaging::view::ImageView::PartChanged, this, [this] { update(); });
    connect(&view, &imaging::view::ImageView::ZoomChanged, this, [this] { update(); });
    view.installEventFilter(this);
    Follow();
    hide();
}

void FaceOverlay::Propose(const std::optional<QRect>& rectangle, const QString& text) {
    proposed_ = rectangle;
    isRemark_ = false;
    text_->setText(text);
    // Whoever answered by the keyboard goes on at the photo.
    if (std::any_of(buttons_.begin(), buttons_.end(), std::mem_fn(&QWidget::hasFocus))) {
        view_.setFocus();
    }
    for (QPushButton* button : buttons_) {
        button->setVisible(proposed_.has_value());
    }
    line_->setVisible(!text.isEmpty());
    ShowAgain();
}

void FaceOverlay::ShowHint(const QString& text) {
    Propose(std::nullopt, text);
}

void FaceOverlay::ShowRemark(const QString& text) {
    ShowHint(text);
    isRemark_ = true;
}

void FaceOverlay::EndRemark() {
    if (isRemark_) {
        ShowHint({});
    }
}

void FaceOverlay::ShowLine(const std::optional<QLineF>& line) {
    drawn_ = line;
    ShowAgain();
}

void FaceOverlay::ShowAgain() {
    setVisible(proposed_ || !points_.empty() || drawn_);
    Follow();
    update();
}

void FaceOverlay::ShowPoints(std::vector<imaging::FacePoint> points) {
    points_ = std::move(points);
    ShowAgain();
}

void FaceOverlay::Follow() {
    setGeometry(view_.rect());
    const QMargins margins = row_->contentsMargins();
    const int room = view_.width() - margins.left() - margins.right();
    int needed = 0;
    for (const QPushButton* button : buttons_) {
        needed += button->sizeHint().width() + choice_->spacing();
    }
    // Large letters in a narrow view: the buttons have room below each other only.
    choice_->setDirection(needed <= room ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
    // A text of more lines than the buttons are high covers less of the photo above them.
    const int beside = room - needed - row_->spacing();
    const bool fits =
        beside > 0 && text_->heightForWidth(beside) <= 2 * text_->fontMetrics().lineSpacing();
    row_->setDirection(fits ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
    const int height = line_->layout()->totalHeightForWidth(view_.width());
    line_->setGeometry(0, view_.height() - height, view_.width(), height);
    line_->raise();
}

bool FaceOverlay::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Resize) {
        Follow();
    }
    return QWidget::eventFilter(watched, event);
}

/// Everything once broad and white, then thin and blue, so that it shows on any photo.
void FaceOverlay::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (proposed_) {
        painter.setPen(QPen(Qt::white, 3));
        DrawProposal(painter);
        painter.setPen(QPen(Accent, 2, Qt::DashLine));
        DrawProposal(painter);
    }
    DrawFace(painter, QPen(Qt::white, 4));
    DrawFace(painter, QPen(Accent, 2));
}

void FaceOverlay::DrawProposal(QPainter& painter) const {
    const QRectF outline(*proposed_);
    painter.drawRect(
        QRectF(view_.ToWidget(outline.topLeft()), view_.ToWidget(outline.bottomRight())));
}

void FaceOverlay::DrawFace(QPainter& painter, QPen pen) const {
    constexpr double Radius = 5;
    painter.setPen(pen);
    if (drawn_) {
        painter.drawLine(view_.ToWidget(drawn_->p1()), view_.ToWidget(drawn_->p2()));
    }
    for (const imaging::FacePoint& point : points_) {
        pen.setStyle(point.confidence > 0 ? Qt::SolidLine : Qt::DotLine);
        painter.setPen(pen);
        painter.drawEllipse(view_.ToWidget(point.position + QPointF(0.5, 0.5)), Radius, Radius);
    }
}

}  // namespace kadrona::app
