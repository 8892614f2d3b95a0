#include "app/face/FaceOverlay.h"

#include <QKeyEvent>
#include <QPainter>

#include "app/face/FaceLine.h"
#include "imaging/view/ImageView.h"

using namespace Qt::StringLiterals;

namespace kadrona::app {

namespace {

const QColor Accent(0x1a, 0x6f, 0xb5);

}  // namespace

FaceOverlay::FaceOverlay(imaging::view::ImageView& view, FaceLine& line)
    : QWidget(&view), view_(view), line_(line) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setObjectName(u"FaceOverlay"_s);
    connect(&line, &FaceLine::Accepted, this, &FaceOverlay::Accepted);
    connect(&line, &FaceLine::Refused, this, &FaceOverlay::Refused);
    connect(&view, &imaging::view::ImageView::PartChanged, this, [this] { update(); });
    connect(&view, &imaging::view::ImageView::ZoomChanged, this, [this] { update(); });
    view.installEventFilter(this);
    view.window()->installEventFilter(this);
    hide();
}

void FaceOverlay::Propose(const std::optional<QRect>& rectangle, const QString& text) {
    proposed_ = rectangle;
    isRemark_ = false;
    // Whoever answered by the keyboard goes on at the photo.
    if (line_.HasFocus()) {
        view_.setFocus();
    }
    if (proposed_) {
        line_.Ask(text);
    } else {
        line_.Say(text);
    }
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
}

/// A key comes to the window where nothing else in it took it.
bool FaceOverlay::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Resize) {
        Follow();
    } else if (event->type() == QEvent::KeyPress && watched == view_.window() && proposed_ &&
               static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
        Q_EMIT Refused();
        return true;
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
