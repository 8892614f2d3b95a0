#include "core/sheet/CuttingMarks.h"

#include <QRegion>
#include <algorithm>
#include <array>

namespace kadrona::core {

namespace {

enum class Way { Left, Up, Right, Down };

/// Shortens a strip that goes from its photo towards `way` where it meets `obstacle`.
void StopAt(QRect& strip, Way way, const QRect& obstacle) {
    if (!strip.intersects(obstacle)) {
        return;
    }
    switch (way) {
        case Way::Left:
            strip.setLeft(obstacle.right() + 1);
            break;
        case Way::Up:
            strip.setTop(obstacle.bottom() + 1);
            break;
        case Way::Right:
            strip.setRight(obstacle.left() - 1);
            break;
        case Way::Down:
            strip.setBottom(obstacle.top() - 1);
            break;
    }
}

struct Ray {
    Way way;
    QRect strip;
};

/// The eight strips that go on from a photo's edges, just outside of them.
std::array<Ray, 8> RaysFrom(const QRect& photo, int width, int length) {
    const int left = photo.left() - width;
    const int right = photo.right() + 1;
    const int top = photo.top() - width;
    const int bottom = photo.bottom() + 1;
    return {{{Way::Up, {left, photo.top() - length, width, length}},
             {Way::Up, {right, photo.top() - length, width, length}},
             {Way::Down, {left, bottom, width, length}},
             {Way::Down, {right, bottom, width, length}},
             {Way::Left, {photo.left() - length, top, length, width}},
             {Way::Left, {photo.left() - length, bottom, length, width}},
             {Way::Right, {right, top, length, width}},
             {Way::Right, {right, bottom, length, width}}}};
}

}  // namespace

std::vector<QRect> MarksAround(const std::vector<QRect>& photos, const std::vector<QRect>& texts,
                               QSize paper, CuttingMarks kind, MarkMeasures measures) {
    if (kind == CuttingMarks::None) {
        return {};
    }
    QRegion covered;
    for (const auto* rectangles : {&photos, &texts}) {
        for (const QRect& rectangle : *rectangles) {
            covered += rectangle;
        }
    }
    const int length =
        kind == CuttingMarks::Lines ? std::max(paper.width(), paper.height()) : measures.length;
    QRegion marks;
    for (const QRect& photo : photos) {
        if (kind != CuttingMarks::Corners) {
            const QMargins around(measures.width, measures.width, measures.width, measures.width);
            marks += QRegion(photo.marginsAdded(around)) - photo;
        }
        if (kind == CuttingMarks::Outline) {
            continue;
        }
        for (Ray ray : RaysFrom(photo, measures.width, length)) {
            for (const QRect& obstacle : covered) {
                StopAt(ray.strip, ray.way, obstacle);
            }
            marks += ray.strip;
        }
    }
    marks = (marks - covered) & QRect(QPoint(), paper);
    return {marks.begin(), marks.end()};
}

}  // namespace kadrona::core
