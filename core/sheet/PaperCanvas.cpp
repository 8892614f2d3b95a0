#include "core/sheet/PaperCanvas.h"

#include <QFontMetrics>
#include <QGuiApplication>
#include <QPainter>
#include <algorithm>
#include <functional>
#include <numeric>

#include "core/sheet/PaperSize.h"
#include "imaging/pixels/LaidOverWhite.h"
#include "imaging/pixels/NewImage.h"
#include "imaging/pixels/QuarterTurn.h"
#include "imaging/pixels/Resampling.h"
#include "platform/Error.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

namespace {

constexpr int FromPhotos = 300;
constexpr int FromPaperEdge = 1'000;

constexpr QRgb ColourOf(CuttingMarks marks) {
    switch (marks) {
        case CuttingMarks::Lines:
            return qRgb(128, 128, 128);
        case CuttingMarks::Outline:
            return qRgb(200, 200, 200);
        case CuttingMarks::None:
        case CuttingMarks::Corners:
            break;
    }
    return qRgb(0, 0, 0);
}

/// How far from the photos a line stands in a strip that is `free` wide; nothing where it is too
/// narrow.
std::optional<int> DistanceIn(int free) {
    const int most = free - TextHeight - FromPaperEdge;
    return most < FromPhotos ? std::nullopt
                             : std::optional(std::min(MarksOnPaper.length + FromPhotos, most));
}

/// Letters need a font, which only a program with a display has.
bool CanWrite(const QString& text) {
    return !text.isEmpty() &&
           qobject_cast<QGuiApplication*>(QCoreApplication::instance()) != nullptr;
}

QImage UprightText(const QString& text, QSize room) {
    QFont font;
    font.setPixelSize(std::max(1, room.height() * 4 / 5));
    const QFontMetrics metrics(font);
    const QString shown = metrics.elidedText(text, Qt::ElideRight, room.width());
    const int width = std::clamp(metrics.horizontalAdvance(shown), 1, std::max(1, room.width()));
    QImage image = imaging::NewImage({width, std::max(1, room.height())}, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setFont(font);
    painter.setPen(Qt::black);
    painter.drawText(image.rect(), Qt::AlignCenter | Qt::TextSingleLine, shown);
    return image;
}

/// As long as the text needs within its room, pixels.
QImage TextPicture(const QString& text, QSize room, bool turned) {
    const QImage upright = UprightText(text, turned ? room.transposed() : room);
    return turned
               ? imaging::Turned(imaging::Pixels(upright), imaging::QuarterTurn::CounterClockwise)
                     .ToImage()
               : upright;
}

}  // namespace

std::optional<TextRoom> RoomForText(const std::vector<QRect>& photos, QSize paper) {
    QRect block;
    for (const QRect& photo : photos) {
        block |= photo;
    }
    const int bottom = block.bottom() + 1;
    const int right = block.right() + 1;
    const int across = paper.width() - 2 * FromPaperEdge;
    const int along = paper.height() - 2 * FromPaperEdge;
    if (const auto distance = DistanceIn(paper.height() - bottom)) {
        return TextRoom{{FromPaperEdge, bottom + *distance, across, TextHeight}};
    }
    if (const auto distance = DistanceIn(paper.width() - right)) {
        return TextRoom{{right + *distance, FromPaperEdge, TextHeight, along}, true};
    }
    return std::nullopt;
}

std::optional<TextOnPaper> TextBeside(const std::vector<QRect>& photos, QSize paper,
                                      const QString& text, imaging::DotsPerInch resolution) {
    const auto room = RoomForText(photos, paper);
    if (!room || !CanWrite(text)) {
        return std::nullopt;
    }
    const QRect& place = room->place;
    const QSize pixels(PixelsOf(place.width(), resolution.value),
                       PixelsOf(place.height(), resolution.value));
    TextOnPaper line{TextPicture(text, pixels, room->turned), {}};
    line.place = QRect(QPoint(), line.picture.size() * MicrometresPerInch / resolution.value);
    line.place.moveCenter(place.center());
    return line;
}

PaperCanvas::PaperCanvas(QSize paper, imaging::DotsPerInch resolution) : resolution_(resolution) {
    if (paper.isEmpty() || resolution.value < 1) {
        throw platform::Error(u"Ein Blatt braucht eine Größe und eine Auflösung."_s);
    }
    const double inches = 1.0 / MicrometresPerInch;
    const double pixels =
        paper.width() * inches * resolution.value * (paper.height() * inches * resolution.value);
    if (pixels > static_cast<double>(MostSheetPixels)) {
        throw platform::Error(
            u"Ein Blatt von %1 mit %2 dpi hätte %3 Millionen Pixel; höchstens %4 Millionen gehen."_s
                .arg(SizeText(paper))
                .arg(resolution.value)
                .arg(qRound64(pixels / 1e6))
                .arg(MostSheetPixels / 1'000'000));
    }
    sheet_.size = QSize(std::max(1, Pixels(paper.width())), std::max(1, Pixels(paper.height())));
}

int PaperCanvas::Pixels(int micrometres) const {
    return PixelsOf(micrometres, resolution_.value);
}

/// Two roundings may add up to one pixel beyond the paper.
QPoint PaperCanvas::Inside(QPoint at, QSize picture) const {
    return {std::clamp(at.x(), 0, std::max(0, sheet_.size.width() - picture.width())),
            std::clamp(at.y(), 0, std::max(0, sheet_.size.height() - picture.height()))};
}

size_t PaperCanvas::AddPhoto(const imaging::Pixels& photo, QSize size, bool turned) {
    const imaging::Pixels laid =
        turned ? imaging::Turned(photo, imaging::QuarterTurn::CounterClockwise) : photo;
    const QSize pixels(std::max(1, Pixels(size.width())), std::max(1, Pixels(size.height())));
    sheet_.pictures.push_back(imaging::LaidOverWhite(imaging::Resampled(laid, pixels).ToImage()));
    return sheet_.pictures.size() - 1;
}

void PaperCanvas::Place(size_t picture, QPoint topLeft) {
    const QSize size = sheet_.pictures.at(picture).size();
    QRect place(QPoint(Pixels(topLeft.x()), Pixels(topLeft.y())), size);
    for (const imaging::Arrangement::Placed& before : sheet_.placed) {
        const QRect other = sheet_.RectangleOf(before);
        if (other.intersects(place)) {
            place.moveLeft(other.right() + 1);
        }
    }
    sheet_.placed.push_back({picture, Inside(place.topLeft(), size)});
}

void PaperCanvas::PlaceTouching(size_t picture, const std::vector<QRect>& places) {
    const QSize size = sheet_.pictures.at(picture).size();
    const QRect block = std::accumulate(places.begin(), places.end(), QRect(), std::bit_or());
    const QSize copy = places.front().size();
    const QSize free = sheet_.size - QSize(block.width() / copy.width() * size.width(),
                                           block.height() / copy.height() * size.height());
    for (const QRect& place : places) {
        QPoint at(Pixels(place.left()), Pixels(place.top()));
        const QPoint before = place.topLeft() - block.topLeft();
        if (free.width() >= 0) {
            at.setX(free.width() / 2 + before.x() / copy.width() * size.width());
        }
        if (free.height() >= 0) {
            at.setY(free.height() / 2 + before.y() / copy.height() * size.height());
        }
        sheet_.placed.push_back({picture, Inside(at, size)});
    }
}

void PaperCanvas::PlaceText(const QString& text, const TextRoom& room) {
    if (!CanWrite(text)) {
        return;
    }
    const QSize pixels(Pixels(room.place.width()), Pixels(room.place.height()));
    const auto [known, isNew] = textPictures_.try_emplace(
        {text, pixels.width(), pixels.height(), room.turned}, sheet_.pictures.size());
    const size_t picture = known->second;
    if (isNew) {
        sheet_.pictures.push_back(TextPicture(text, pixels, room.turned));
    }
    const QSize line = sheet_.pictures.at(picture).size();
    const QPoint corner(Pixels(room.place.left()), Pixels(room.place.top()));
    const QSize free = pixels - line;
    texts_.push_back({picture, Inside(corner + QPoint(free.width() / 2, free.height() / 2), line)});
}

imaging::Pixels PaperCanvas::Finished(CuttingMarks marks) const {
    const auto rectangles = [&](const auto& placed) {
        std::vector<QRect> result;
        std::ranges::transform(placed, std::back_inserter(result),
                               [&](const auto& one) { return sheet_.RectangleOf(one); });
        return result;
    };
    imaging::Arrangement sheet = sheet_;
    sheet.photos = static_cast<int>(sheet.placed.size());
    sheet.placed.insert(sheet.placed.end(), texts_.begin(), texts_.end());
    const MarkMeasures measures{std::max(1, Pixels(MarksOnPaper.width)),
                                std::max(1, Pixels(MarksOnPaper.length))};
    for (const QRect& mark :
         MarksAround(rectangles(sheet_.placed), rectangles(texts_), sheet_.size, marks, measures)) {
        sheet.marks.push_back({mark, ColourOf(marks)});
    }
    return imaging::Pixels(std::move(sheet));
}

}  // namespace kadrona::core
