#include "dialogs/adjustments/RotationPreview.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>
#include <QtMath>
#include <cmath>
#include <vector>

using namespace Qt::StringLiterals;

namespace kadrona::dialogs {

namespace {

constexpr int GuideTop = 120;  // picture pixels below the top
constexpr double PictureOpacity = 230 / 255.0;
/// Up to this angle the whole picture stays in sight.
constexpr double AngleInSight = 15;
constexpr double FineStep = 0.1;
constexpr double CoarseStep = 1.0;
constexpr double WheelNotch = 120.0;
constexpr int GridSpacing = 30;  // picture pixels
constexpr QColor GridLight(255, 255, 255, 70);
constexpr QColor GridDark(0, 0, 0, 38);
constexpr int GuideAlpha = 190;

double Normalized(double degrees) {
    const double turned = std::remainder(degrees, 360.0);
    return turned <= -180.0 ? 180.0 : turned;
}

/// Where lines `spacing` apart, one of them at `through`, lie between 0 and `end`: whole pixels.
std::vector<double> LinePlaces(double through, double spacing, double end) {
    std::vector<double> places;
    const double first = std::fmod(through, spacing);
    for (int i = 0; first + i * spacing < end; ++i) {
        places.push_back(std::floor(first + i * spacing));
    }
    return places;
}

}  // namespace

RotationPreview::RotationPreview(QWidget* parent) : QWidget(parent) {
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName(u"Vorschau der Drehung"_s);
    SetSide(LargestSide);
    UpdateCursor();
}

void RotationPreview::SetSide(int side) {
    setFixedSize(side, side);
}

void RotationPreview::SetPicture(const QImage& picture) {
    picture_ = QPixmap::fromImage(picture);
    dragging_ = Qt::NoButton;
    shift_ = {};
    degrees_ = 0;
    Q_EMIT DegreesChanged(degrees_);
    UpdateCursor();
    update();
}

void RotationPreview::SetDegrees(double degrees) {
    degrees = Normalized(degrees);
    if (degrees != degrees_) {
        degrees_ = degrees;
        Q_EMIT DegreesChanged(degrees_);
        update();
    }
}

double RotationPreview::Scale() const {
    if (picture_.isNull()) {
        return 1.0;
    }
    const QSize turned =
        QTransform().rotate(AngleInSight).mapRect(QRect(QPoint(), picture_.size())).size();
    return std::min(width(), height()) /
           static_cast<double>(std::max(turned.width(), turned.height()));
}

QTransform RotationPreview::ToWidget() const {
    const QPointF middle(picture_.width() / 2.0, picture_.height() / 2.0);
    return QTransform::fromTranslate(-middle.x(), -middle.y()) *
           QTransform::fromScale(Scale(), Scale()) *
           QTransform::fromTranslate(width() / 2.0, height() / 2.0);
}

QPointF RotationPreview::Middle() const {
    return ToWidget().map(QPointF(picture_.width() / 2.0, picture_.height() / 2.0) + shift_);
}

double RotationPreview::DirectionOf(QPointF position) const {
    const QPointF way = position - Middle();
    return qRadiansToDegrees(std::atan2(-way.y(), way.x()));
}

void RotationPreview::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.fillRect(rect(), palette().button());
    if (picture_.isNull()) {
        return;
    }
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    const QTransform upright = ToWidget();
    const double guide = std::floor(upright.map(QPointF(0, GuideTop)).y());
    const double left = upright.map(QPointF(0, 0)).x();
    const double right = upright.map(QPointF(picture_.width(), 0)).x();
    painter.fillRect(QRectF(left, guide, right - left, 1), Qt::black);

    painter.save();
    painter.translate(Middle());
    painter.rotate(-degrees_);
    painter.scale(Scale(), Scale());
    painter.setOpacity(PictureOpacity);
    painter.drawPixmap(QPointF(-picture_.width() / 2.0, -picture_.height() / 2.0), picture_);
    painter.restore();
    PaintGrid(painter);
    if (hasFocus()) {
        painter.setRenderHint(QPainter::Antialiasing, false);
        painter.setPen(palette().color(QPalette::Highlight));
        painter.drawRect(rect().adjusted(0, 0, -1, -1));
    }
}

/// Upright and level lines, each a light beside a dark one, so that they show on every photo, and
/// the guide line once more, over the picture.
void RotationPreview::PaintGrid(QPainter& painter) const {
    const double guide = ToWidget().map(QPointF(0, GuideTop)).y();
    const double spacing = GridSpacing * Scale();
    for (const double y : LinePlaces(guide, spacing, height())) {
        painter.fillRect(QRectF(0, y, width(), 1), GridDark);
        painter.fillRect(QRectF(0, y + 1, width(), 1), GridLight);
    }
    for (const double x : LinePlaces(width() / 2.0, spacing, width())) {
        painter.fillRect(QRectF(x, 0, 1, height()), GridDark);
        painter.fillRect(QRectF(x + 1, 0, 1, height()), GridLight);
    }
    QColor guideColour = palette().color(QPalette::Highlight);
    guideColour.setAlpha(GuideAlpha);
    painter.fillRect(QRectF(0, std::floor(guide), width(), 1), guideColour);
}

void RotationPreview::mousePressEvent(QMouseEvent* event) {
    if (dragging_ == Qt::NoButton && !picture_.isNull() &&
        (event->button() == Qt::LeftButton || event->button() == Qt::RightButton)) {
        dragging_ = event->button();
        lastPosition_ = event->position();
        UpdateCursor();
    }
}

void RotationPreview::mouseMoveEvent(QMouseEvent* event) {
    const QPointF position = event->position();
    if (dragging_ == Qt::LeftButton && position != Middle() && lastPosition_ != Middle()) {
        SetDegrees(degrees_ + DirectionOf(position) - DirectionOf(lastPosition_));
    } else if (dragging_ == Qt::RightButton) {
        shift_ += (position - lastPosition_) / Scale();
        update();
    }
    lastPosition_ = position;
}

void RotationPreview::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == dragging_) {
        dragging_ = Qt::NoButton;
        UpdateCursor();
    }
}

void RotationPreview::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) {
        shift_ = {};
        SetDegrees(0);
        update();
    }
}

void RotationPreview::wheelEvent(QWheelEvent* event) {
    const bool isCoarse = event->modifiers().testFlag(Qt::ShiftModifier);
    const double notches = event->angleDelta().y() / WheelNotch;
    SetDegrees(degrees_ + notches * (isCoarse ? CoarseStep : FineStep));
    event->accept();
}

void RotationPreview::keyPressEvent(QKeyEvent* event) {
    const bool isCoarse = event->modifiers().testFlag(Qt::ShiftModifier);
    const double step = isCoarse ? CoarseStep : FineStep;
    switch (event->key()) {
        case Qt::Key_Left:
        case Qt::Key_Up:
            return SetDegrees(degrees_ + step);
        case Qt::Key_Right:
        case Qt::Key_Down:
            return SetDegrees(degrees_ - step);
        case Qt::Key_Home:
            return SetDegrees(0);
        default:
            QWidget::keyPressEvent(event);
    }
}

void RotationPreview::UpdateCursor() {
    setCursor(picture_.isNull()              ? Qt::ArrowCursor
              : dragging_ == Qt::NoButton    ? Qt::OpenHandCursor
              : dragging_ == Qt::RightButton ? Qt::SizeAllCursor
                                             : Qt::ClosedHandCursor);
}

}  // namespace kadrona::dialogs
