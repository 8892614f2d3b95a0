#include "dialogs/curves/CurveEditor.h"

#include <QFocusEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <algorithm>
#include <cmath>

#include "imaging/tone/CurveFile.h"

using namespace Qt::StringLiterals;

namespace kadrona::dialogs {

namespace {

constexpr size_t FewestPoints = 2;
// In logical pixels.
constexpr double HitDistance = 9;
constexpr double DragOutDistance = 24;
constexpr int FieldSide = 320;
constexpr int SmallestFieldSide = 160;
constexpr QMarginsF FieldMargins(26, 8, 10, 24);

}  // namespace

CurveEditor::CurveEditor(QWidget* parent) : QWidget(parent) {
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setAccessibleName(u"Gradationskurve"_s);
    Describe();
}

QSize CurveEditor::SizeWithField(int side) const {
    return (QSizeF(side, side).grownBy(FieldMargins) + QSizeF(0, fontMetrics().height() + 4))
        .toSize();
}

QSize CurveEditor::minimumSizeHint() const {
    return SizeWithField(SmallestFieldSide);
}

QSize CurveEditor::sizeHint() const {
    return SizeWithField(FieldSide);
}

void CurveEditor::SetCurves(const imaging::CurveSet& curves) {
    drag_.reset();
    curves_ = curves;
    Select(-1);
    Q_EMIT CurvesChanged();
}

void CurveEditor::ResetChannel() {
    SetPoints(imaging::Curve().Points(), -1);
}

void CurveEditor::SetChannel(imaging::CurveChannel channel) {
    drag_.reset();
    channel_ = channel;
    Select(-1);
}

void CurveEditor::SetHistogram(const imaging::Histogram& histogram) {
    histogram_ = histogram;
    update();
}

void CurveEditor::SetPoints(Points points, int selected) {
    curves_[channel_] = imaging::Curve(std::move(points));
    Select(selected);
    Q_EMIT CurvesChanged();
}

void CurveEditor::Select(int index) {
    selected_ = index;
    Describe();
    update();
}

/// For whoever hears the curve instead of seeing it.
void CurveEditor::Describe() {
    const Points& points = ChannelPoints();
    if (selected_ < 0) {
        setAccessibleDescription(u"%1 Punkte"_s.arg(points.size()));
        return;
    }
    const imaging::CurvePoint& point = points[static_cast<size_t>(selected_)];
    setAccessibleDescription(u"Punkt %1 von %2: Eingabe %3, Ausgabe %4"_s.arg(selected_ + 1)
                                 .arg(points.size())
                                 .arg(point.input)
                                 .arg(point.output));
}

imaging::CurvePoint CurveEditor::KeptInOrder(const Points& others, size_t index,
                                             imaging::CurvePoint point) {
    const int lowest = index > 0 ? others[index - 1].input + 1 : 0;
    const int highest =
        index < others.size() ? others[index].input - 1 : imaging::HighestCurveLevel;
    return {std::clamp(point.input, lowest, highest),
            std::clamp(point.output, 0, imaging::HighestCurveLevel)};
}

/// False where the set is full. A point over another's input takes that one's place.
bool CurveEditor::AddPoint(imaging::CurvePoint point) {
    Points points = ChannelPoints();
    const auto place =
        std::ranges::lower_bound(points, point.input, {}, &imaging::CurvePoint::input);
    const auto index = static_cast<int>(place - points.begin());
    if (place != points.end() && place->input == point.input) {
        *place = point;
    } else if (curves_.PointCount() >= imaging::MaximumCurvePoints) {
        Q_EMIT PointRefused();
        return false;
    } else {
        points.insert(place, point);
    }
    SetPoints(std::move(points), index);
    return true;
}

void CurveEditor::MoveSelected(QPoint by) {
    Points points = ChannelPoints();
    const auto index = static_cast<size_t>(selected_);
    const imaging::CurvePoint moved{points[index].input + by.x(), points[index].output + by.y()};
    points.erase(points.begin() + selected_);
    points.insert(points.begin() + selected_, KeptInOrder(points, index, moved));
    SetPoints(std::move(points), selected_);
}

void CurveEditor::RemovePoint(int index) {
    Points points = ChannelPoints();
    if (index < 0 || points.size() <= FewestPoints) {
        return;
    }
    points.erase(points.begin() + index);
    const int last = static_cast<int>(points.size()) - 1;
    SetPoints(std::move(points), std::min(index, last));
}

/// Halfway to the next point, or to the one before where that is the last; on the curve, so that
/// it changes little.
void CurveEditor::InsertBehindSelected() {
    const Points& points = ChannelPoints();
    const size_t behind = std::min(static_cast<size_t>(std::max(selected_, 0)), points.size() - 2);
    const int input = (points[behind].input + points[behind + 1].input) / 2;
    if (input > points[behind].input) {
        AddPoint({input, curves_[channel_].Table().at(static_cast<size_t>(input))});
    }
}

QRectF CurveEditor::Field() const {
    const QRectF available =
        QRectF(rect()).adjusted(0, 0, 0, -fontMetrics().height() - 4).marginsRemoved(FieldMargins);
    const double side = std::min(available.width(), available.height());
    return {available.topLeft(), QSizeF(side, side)};
}

QPointF CurveEditor::ToWidget(imaging::CurvePoint point) const {
    const QRectF field = Field();
    return {field.left() + field.width() * point.input / imaging::HighestCurveLevel,
            field.bottom() - field.height() * point.output / imaging::HighestCurveLevel};
}

imaging::CurvePoint CurveEditor::FromWidget(QPointF position) const {
    const QRectF field = Field();
    const auto level = [](double share) {
        return static_cast<int>(
            std::lround(std::clamp(share, 0.0, 1.0) * imaging::HighestCurveLevel));
    };
    return {level((position.x() - field.left()) / field.width()),
            level((field.bottom() - position.y()) / field.height())};
}

int CurveEditor::PointAt(QPointF position) const {
    int nearest = -1;
    double nearestDistance = HitDistance;
    const Points& points = ChannelPoints();
    for (size_t i = 0; i < points.size(); ++i) {
        const QPointF way = ToWidget(points[i]) - position;
        const double distance = std::hypot(way.x(), way.y());
        if (distance <= nearestDistance) {
            nearest = static_cast<int>(i);
            nearestDistance = distance;
        }
    }
    return nearest;
}

void CurveEditor::StartDrag(int index) {
    Points others = ChannelPoints();
    others.erase(others.begin() + index);
    drag_ = Drag{std::move(others), static_cast<size_t>(index)};
    Select(index);
}

void CurveEditor::mousePressEvent(QMouseEvent* event) {
    const int hit = PointAt(event->position());
    pointer_ = event->position();
    if (event->button() == Qt::RightButton) {
        if (!drag_) {
            RemovePoint(hit);
        }
    } else if (event->button() == Qt::LeftButton) {
        if (hit >= 0) {
            StartDrag(hit);
        } else if (Field().contains(event->position()) && AddPoint(FromWidget(event->position()))) {
            StartDrag(selected_);
        }
    }
    update();
}

void CurveEditor::mouseMoveEvent(QMouseEvent* event) {
    const QPointF position = event->position();
    if (drag_ && !event->buttons().testFlag(Qt::LeftButton)) {
        drag_.reset();
    }
    if (drag_) {
        const bool isOut =
            !Field()
                 .adjusted(-DragOutDistance, -DragOutDistance, DragOutDistance, DragOutDistance)
                 .contains(position);
        Points points = drag_->others;
        if (isOut && points.size() >= FewestPoints) {
            SetPoints(std::move(points), -1);
        } else {
            const imaging::CurvePoint kept =
                KeptInOrder(points, drag_->index, FromWidget(position));
            points.insert(points.begin() + static_cast<ptrdiff_t>(drag_->index), kept);
            SetPoints(std::move(points), static_cast<int>(drag_->index));
        }
    }
    const bool isOverField = drag_ || Field().contains(position);
    pointer_ = isOverField ? std::optional(position) : std::nullopt;
    setCursor(!drag_ && PointAt(position) >= 0 ? Qt::SizeAllCursor : Qt::CrossCursor);
    update();
}

void CurveEditor::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) {
        drag_.reset();
    }
}

void CurveEditor::leaveEvent(QEvent* /*event*/) {
    pointer_.reset();
    update();
}

void CurveEditor::keyPressEvent(QKeyEvent* event) {
    const int step = event->modifiers().testFlag(Qt::ShiftModifier) ? 10 : 1;
    const auto move = [&](QPoint direction) {
        selected_ < 0 ? Select(0) : MoveSelected(direction * step);
    };
    if (drag_) {
        return;
    }
    pointer_.reset();
    switch (event->key()) {
        case Qt::Key_Left:
            return move({-1, 0});
        case Qt::Key_Right:
            return move({1, 0});
        case Qt::Key_Up:
            return move({0, 1});
        case Qt::Key_Down:
            return move({0, -1});
        case Qt::Key_Delete:
        case Qt::Key_Backspace:
            return RemovePoint(selected_);
        case Qt::Key_Insert:
            return InsertBehindSelected();
        default:
            QWidget::keyPressEvent(event);
    }
}

void CurveEditor::focusInEvent(QFocusEvent* event) {
    if (event->reason() == Qt::TabFocusReason) {
        Select(0);
    } else if (event->reason() == Qt::BacktabFocusReason) {
        Select(static_cast<int>(ChannelPoints().size()) - 1);
    }
    update();
}

void CurveEditor::focusOutEvent(QFocusEvent* /*event*/) {
    update();
}

/// From point to point, and on to the next control behind the last one.
bool CurveEditor::focusNextPrevChild(bool next) {
    const int index = selected_ + (next ? 1 : -1);
    if (selected_ < 0 || index < 0 || index >= static_cast<int>(ChannelPoints().size())) {
        return QWidget::focusNextPrevChild(next);
    }
    Select(index);
    return true;
}

}  // namespace kadrona::dialogs
