#include "app/FaceOverlay.h"

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
    text_->setWordWrap(true);
    auto* accept = new QPushButton(u"Übernehmen (Strg+E)"_s, line_);
    accept->setObjectName(u"AcceptProposal"_s);
    auto* refuse = new QPushButton(u"Nein"_s, line_);
    refuse->setObjectName(u"RefuseProposal"_s);
    for (QPushButton* button : {accept, refuse}) {
        button->setFocusPolicy(Qt::NoFocus);
        button->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    }
    auto* row = new QHBoxLayout(line_);
    row->setContentsMargins(8, 3, 8, 3);
    row->addWidget(text_, 1);
    row->addWidget(accept);
    row->addWidget(refuse);
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
    text_->setText(text);
    line_->setVisible(proposed_.has_value());
    setVisible(proposed_ || face_);
    Follow();
    update();
}

void FaceOverlay::ShowPoints(const std::optional<imaging::Face>& face) {
    face_ = face;
    setVisible(proposed_ || face_);
    update();
}

void FaceOverlay::Follow() {
    setGeometry(view_.rect());
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

void FaceOverlay::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (proposed_) {
        const QRectF outline(view_.ToWidget(QRectF(*proposed_).topLeft()),
                             view_.ToWidget(QRectF(*proposed_).bottomRight()));
        painter.setPen(QPen(Qt::white, 3));
        painter.drawRect(outline);
        painter.setPen(QPen(Accent, 2, Qt::DashLine));
        painter.drawRect(outline);
    }
    if (face_) {
        constexpr double Radius = 5;
        for (const imaging::FacePoint& point :
             {face_->leftEye, face_->rightEye, face_->chin, face_->crown}) {
            const QPointF at = view_.ToWidget(point.position + QPointF(0.5, 0.5));
            painter.setPen(QPen(Qt::white, 4));
            painter.drawEllipse(at, Radius, Radius);
            painter.setPen(QPen(Accent, 2));
            painter.drawEllipse(at, Radius, Radius);
        }
    }
}

}  // namespace kadrona::app
