#include "dialogs/printing/PaperView.h"

#include <QKeyEvent>
#include <QLocale>
#include <QPainter>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

#include "controls/theme/Theme.h"

using namespace Qt::StringLiterals;

namespace kadrona::dialogs {

namespace {

/// Room for the paper's measures, pixels.
constexpr double Border = 30;
/// Longest side of the tile that is kept for painting, pixels.
constexpr int LongestTile = 900;
constexpr int ShortestTile = 40;
constexpr double WheelStep = 1.2;
constexpr double KeyStep = 40;

const QColor LostColour(196, 30, 30);
const QColor MarkColour(60, 60, 60);

std::vector<QImage> EverSmaller(const QImage& picture) {
    const bool isLarge = std::max(picture.width(), picture.height()) > LongestTile;
    std::vector<QImage> sizes{isLarge
                                  ? picture.scaled(LongestTile, LongestTile, Qt::KeepAspectRatio,
                                                   Qt::SmoothTransformation)
                                  : picture};
    while (std::min(sizes.back().width(), sizes.back().height()) > ShortestTile) {
        const QImage& larger = sizes.back();
        sizes.push_back(
            larger.scaled(larger.size() / 2, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
    }
    return sizes;
}

QString Number(double millimetres) {
    return QLocale(QLocale::German).toString(millimetres, 'f', 1);
}

/// The paper with what of the photos lies beyond it, at most half of its length at each side.
QRectF WholeOf(const printing::SheetOnPaper& sheet) {
    QRectF whole = sheet.paper;
    for (const printing::SheetOnPaper::Copy& copy : sheet.copies) {
        whole |= copy.photo;
    }
    const QSizeF most = sheet.paper.size() / 2;
    return whole.intersected(
        sheet.paper.adjusted(-most.width(), -most.height(), most.width(), most.height()));
}

/// A text on a light plate, so that it can be read on any photo.
void PaintPlate(QPainter& painter, QPointF middle, const QString& text) {
    const QFontMetricsF metrics(painter.font());
    QRectF plate(0, 0, metrics.horizontalAdvance(text) + 8, metrics.height() + 2);
    plate.moveCenter(middle);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(255, 255, 255, 215));
    painter.drawRoundedRect(plate, 3, 3);
    painter.setPen(controls::PaperInk);
    painter.drawText(plate, Qt::AlignCenter, text);
}

/// The photo's millimetres on its lower part, where there is room.
void PaintCopySize(QPainter& painter, const QRectF& photo, QSizeF millimetres) {
    const QString text =
        u"%1 × %2"_s.arg(Number(millimetres.width()), Number(millimetres.height()));
    const QFontMetricsF metrics(painter.font());
    if (metrics.horizontalAdvance(text) + 12 <= photo.width() &&
        metrics.height() * 2 <= photo.height()) {
        PaintPlate(painter, {photo.center().x(), photo.bottom() - metrics.height() * 0.8}, text);
    }
}

}  // namespace

PaperView::PaperView(QWidget* parent) : QWidget(parent) {
    setFocusPolicy(Qt::StrongFocus);
    setMinimumSize(200, 120);
    setCursor(Qt::OpenHandCursor);
    setAccessibleName(u"Vorschau auf dem Papier"_s);
    setToolTip(u"Mausrad: vergrößern, Ziehen: verschieben, Doppelklick: ganzes Blatt"_s);
}

void PaperView::ShowSheet(const printing::SheetOnPaper& sheet,
                          const std::vector<QImage>& pictures) {
    if (!sheet_ || sheet_->paper != sheet.paper) {
        zoom_ = 1;
        middle_ = WholeOf(sheet).center();
    }
    sheet_ = sheet;
    whole_ = WholeOf(sheet);
    keys_.resize(pictures.size());
    pictures_.resize(pictures.size());
    for (size_t i = 0; i < pictures.size(); ++i) {
        const qint64 key = pictures[i].cacheKey();
        if (keys_[i] != key || pictures_[i].empty()) {
            keys_[i] = key;
            pictures_[i] = EverSmaller(pictures[i]);
        }
    }
    text_.clear();
    update();
}

void PaperView::ShowText(const QString& text) {
    sheet_.reset();
    text_ = text;
    update();
}

double PaperView::PixelsPerMillimetre() const {
    const QSizeF room = QSizeF(size()) - QSizeF(2 * Border, 2 * Border);
    const double fitting = std::min(room.width() / whole_.width(), room.height() / whole_.height());
    return std::max(fitting, 0.01) * zoom_;
}

QPointF PaperView::ToWidget(QPointF millimetres) const {
    return QRectF(rect()).center() + (millimetres - middle_) * PixelsPerMillimetre();
}

QRectF PaperView::ToWidget(const QRectF& millimetres) const {
    return {ToWidget(millimetres.topLeft()), ToWidget(millimetres.bottomRight())};
}

void PaperView::ZoomAt(QPointF widgetPlace, double zoom) {
    if (!sheet_) {
        return;
    }
    // What lies under the pointer stays there.
    const QPointF fromCenter = widgetPlace - QRectF(rect()).center();
    const QPointF under = middle_ + fromCenter / PixelsPerMillimetre();
    zoom_ = std::clamp(zoom, 1.0, MostZoom);
    middle_ = under - fromCenter / PixelsPerMillimetre();
    KeepInSight();
}

void PaperView::MoveBy(QPointF pixels) {
    if (sheet_) {
        middle_ -= pixels / PixelsPerMillimetre();
        KeepInSight();
    }
}

void PaperView::KeepInSight() {
    const QSizeF seen = QSizeF(size()) / PixelsPerMillimetre();
    const double free = 2 * Border / PixelsPerMillimetre();
    const auto kept = [&](double at, double center, double length, double sight) {
        const double play = std::max((length + free - sight) / 2, 0.0);
        return std::clamp(at, center - play, center + play);
    };
    middle_ = {kept(middle_.x(), whole_.center().x(), whole_.width(), seen.width()),
               kept(middle_.y(), whole_.center().y(), whole_.height(), seen.height())};
    update();
}

void PaperView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.fillRect(rect(), controls::Colors().desk);
    QFont small = font();
    small.setPointSizeF(small.pointSizeF() * 0.9);
    painter.setFont(small);
    if (!sheet_) {
        painter.setPen(controls::Colors().mutedText);
        painter.drawText(rect().adjusted(24, 24, -24, -24), Qt::AlignCenter | Qt::TextWordWrap,
                         text_);
        return;
    }
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    PaintPaper(painter);
    PaintCopies(painter);
    PaintEdgeOverCopies(painter);
    if (sheet_->told) {
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(controls::Colors().accent, 1, Qt::DashLine));
        painter.drawRect(ToWidget(*sheet_->told));
    }
    PaintPaperSize(painter);
}

void PaperView::PaintPaper(QPainter& painter) const {
    const QRectF paper = ToWidget(sheet_->paper);
    painter.fillRect(paper.translated(2, 3), QColor(0, 0, 0, 40));
    painter.fillRect(paper, Qt::white);
    const QRectF reached = ToWidget(sheet_->reached.intersected(sheet_->paper));
    if (sheet_->reached.contains(sheet_->paper)) {
        painter.setPen(controls::Colors().strongBorder);
        painter.setBrush(Qt::NoBrush);
        painter.drawRect(paper);
        return;
    }
    const QRegion border = QRegion(paper.toRect()) - QRegion(reached.toRect());
    painter.save();
    painter.setClipRegion(border);
    painter.fillRect(paper, QColor(244, 245, 246));
    painter.fillRect(paper, QBrush(QColor(190, 195, 201), Qt::BDiagPattern));
    painter.restore();
    painter.setBrush(Qt::NoBrush);
    painter.setPen(controls::Colors().strongBorder);
    painter.drawRect(paper);
    painter.setPen(QPen(controls::Colors().strongBorder, 1, Qt::DotLine));
    painter.drawRect(reached);
}

/// Photos larger than the paper would hide where it ends.
void PaperView::PaintEdgeOverCopies(QPainter& painter) const {
    if (whole_ == sheet_->paper) {
        return;
    }
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(Qt::white, 3));
    painter.drawRect(ToWidget(sheet_->paper));
    painter.setPen(controls::PaperInk);
    painter.drawRect(ToWidget(sheet_->paper));
}

/// From the smallest that need not be enlarged.
void PaperView::PaintPicture(QPainter& painter, const QRectF& millimetres, size_t picture) const {
    const QRectF place = ToWidget(millimetres);
    if (!place.intersects(rect()) || picture >= pictures_.size()) {
        return;
    }
    const std::vector<QImage>& sizes = pictures_[picture];
    const double wide = place.width() * devicePixelRatioF();
    const auto tooSmall = std::find_if(sizes.begin() + 1, sizes.end(),
                                       [&](const QImage& size) { return size.width() < wide; });
    painter.drawImage(place, *(tooSmall - 1));
}

void PaperView::PaintCopies(QPainter& painter) const {
    for (const printing::SheetOnPaper::Copy& copy : sheet_->copies) {
        PaintPicture(painter, copy.place, copy.picture);
    }
    for (const printing::SheetOnPaper::Text& text : sheet_->texts) {
        PaintPicture(painter, text.place, text.picture);
    }
    for (const QRectF& mark : sheet_->marks) {
        const QRectF shown = ToWidget(mark);
        painter.fillRect(QRectF(shown.topLeft(), shown.size().expandedTo({1, 1})), MarkColour);
    }
    for (const printing::SheetOnPaper::Copy& copy : sheet_->copies) {
        const QRectF photo = ToWidget(copy.photo);
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QColor(0, 0, 0, 90));
        painter.drawRect(photo);
        for (const QRectF& part : copy.LostParts()) {
            const QRectF lost = ToWidget(part);
            painter.fillRect(lost, QColor(LostColour.red(), 0, 0, 110));
            painter.fillRect(lost, QBrush(QColor(255, 255, 255, 150), Qt::FDiagPattern));
            painter.setPen(QPen(LostColour, 1));
            painter.drawRect(lost);
        }
        PaintCopySize(painter, photo, copy.photo.size());
    }
}

void PaperView::PaintPaperSize(QPainter& painter) const {
    const QRectF paper = ToWidget(sheet_->paper);
    const QFontMetricsF metrics(painter.font());
    const double gap = metrics.height() * 0.75;
    const QRectF seen = QRectF(rect()).adjusted(gap, gap, -gap, -gap);
    const QPointF above(std::clamp(paper.center().x(), seen.left(), seen.right()),
                        std::max(paper.top() - gap, seen.top()));
    PaintPlate(painter, above, Number(sheet_->paper.width()) + u" mm"_s);
    painter.save();
    painter.translate(std::max(paper.left() - gap, seen.left()),
                      std::clamp(paper.center().y(), seen.top(), seen.bottom()));
    painter.rotate(-90);
    PaintPlate(painter, {0, 0}, Number(sheet_->paper.height()) + u" mm"_s);
    painter.restore();
}

void PaperView::wheelEvent(QWheelEvent* event) {
    constexpr double DegreesPerStep = 120;
    ZoomAt(event->position(),
           zoom_ * std::pow(WheelStep, event->angleDelta().y() / DegreesPerStep));
    event->accept();
}

void PaperView::mousePressEvent(QMouseEvent* event) {
    dragged_ = event->position();
    setCursor(Qt::ClosedHandCursor);
}

void PaperView::mouseMoveEvent(QMouseEvent* event) {
    if (event->buttons().testFlag(Qt::LeftButton)) {
        MoveBy(event->position() - dragged_);
        dragged_ = event->position();
    }
}

void PaperView::mouseReleaseEvent(QMouseEvent* /*event*/) {
    setCursor(Qt::OpenHandCursor);
}

void PaperView::mouseDoubleClickEvent(QMouseEvent* /*event*/) {
    ZoomAt(QRectF(rect()).center(), 1);
}

void PaperView::keyPressEvent(QKeyEvent* event) {
    const QPointF center = QRectF(rect()).center();
    switch (event->key()) {
        case Qt::Key_Plus:
            return ZoomAt(center, zoom_ * WheelStep);
        case Qt::Key_Minus:
            return ZoomAt(center, zoom_ / WheelStep);
        case Qt::Key_0:
            return ZoomAt(center, 1);
        case Qt::Key_Left:
            return MoveBy({KeyStep, 0});
        case Qt::Key_Right:
            return MoveBy({-KeyStep, 0});
        case Qt::Key_Up:
            return MoveBy({0, KeyStep});
        case Qt::Key_Down:
            return MoveBy({0, -KeyStep});
        default:
            QWidget::keyPressEvent(event);
    }
}

}  // namespace kadrona::dialogs
