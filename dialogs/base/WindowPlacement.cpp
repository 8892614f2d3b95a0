#include "dialogs/base/WindowPlacement.h"

#include <QScreen>
#include <QWidget>
#include <algorithm>
#include <climits>
#include <tuple>
#include <utility>
#include <vector>

#include "imaging/view/ImageView.h"

namespace kadrona::dialogs {

namespace {

/// Room for the system's frame, which is known only once a window is shown.
constexpr QSize Frame(16, 48);

/// The corner, or as near to it as a window of that size with its frame lies in `room`.
QPoint Within(const QRect& room, QSize window, QPoint corner) {
    const auto within = [](int place, int first, int last) {
        return std::max(first, std::min(place, last));
    };
    return {within(corner.x(), room.left(), room.right() - window.width() - Frame.width()),
            within(corner.y(), room.top(), room.bottom() - window.height() - Frame.height())};
}

/// What the system draws around a window. It is not known of a window before that is shown, but of
/// its parent, around which the system draws the same.
QMargins FrameOf(const QWidget& window) {
    const QWidget* parent = window.parentWidget();
    if (parent == nullptr || window.windowFlags().testFlag(Qt::FramelessWindowHint)) {
        return {};
    }
    const QRect inner = parent->window()->geometry();
    const QRect outer = parent->window()->frameGeometry();
    return {inner.left() - outer.left(), inner.top() - outer.top(), outer.right() - inner.right(),
            outer.bottom() - inner.bottom()};
}

/// Puts the corner of the frame there. The toolkit's own move takes the corner for the window's
/// before the window was ever shown, and for the frame's afterwards.
void PutFrame(QWidget& window, QPoint corner) {
    const QMargins frame = FrameOf(window);
    window.setGeometry(QRect(corner + QPoint(frame.left(), frame.top()), window.size()));
}

/// Both lengths lie in one direction; `first` and `last` are the edges of what is shown there.
std::vector<int> Places(int least, int most, int middle, int length,
                        const std::vector<std::pair<int, int>>& shown) {
    std::vector<int> places{least, most, middle};
    for (const auto& [first, last] : shown) {
        places.insert(places.end(), {first - length, last + 1});
    }
    for (int& place : places) {
        place = std::max(least, std::min(place, most));
    }
    return places;
}

int Area(const QRect& rectangle) {
    return rectangle.isEmpty() ? 0 : rectangle.width() * rectangle.height();
}

/// The photo that a window shows, and what of it the template marks; on the screen.
QList<QRect> PhotoInSight(const QWidget& window) {
    const auto views = window.findChildren<imaging::view::ImageView*>();
    for (imaging::view::ImageView* view : views) {
        if (view->window() != &window || !view->isVisible() || view->Image().IsEmpty()) {
            continue;
        }
        QList<QRect> areas{QRect(QPoint(), view->Image().Photo().Size())};
        if (view->Image().LayerCount() >= 2) {
            areas.append(view->Image().LayerAt(1).rectangle);
        }
        for (QRect& area : areas) {
            const QRect shown = QRectF(view->ToWidget(area.topLeft()),
                                       view->ToWidget(area.bottomRight() + QPoint(1, 1)))
                                    .toAlignedRect();
            area = (shown & view->rect()).translated(view->mapToGlobal(QPoint()));
        }
        return areas;
    }
    return {};
}

}  // namespace

QPoint ClearPlace(const QRect& room, const QRect& owner, const QList<QRect>& inSight, QSize size) {
    const QPoint middle = owner.center() - QRect(QPoint(), size).center();
    std::vector<std::pair<int, int>> columns{{owner.left(), owner.right()}};
    std::vector<std::pair<int, int>> rows{{owner.top(), owner.bottom()}};
    for (const QRect& area : inSight) {
        columns.emplace_back(area.left(), area.right());
        rows.emplace_back(area.top(), area.bottom());
    }
    const QPoint last = room.bottomRight() - QPoint(size.width(), size.height()) + QPoint(1, 1);
    QPoint best;
    std::tuple<int, bool, int> least{INT_MAX, true, 0};
    for (const int x : Places(room.left(), last.x(), middle.x(), size.width(), columns)) {
        for (const int y : Places(room.top(), last.y(), middle.y(), size.height(), rows)) {
            const QRect place(QPoint(x, y), size);
            int covered = 0;
            for (const QRect& area : inSight) {
                covered += Area(place & area);
            }
            const std::tuple cost{covered, place.intersects(owner),
                                  (place.topLeft() - middle).manhattanLength()};
            if (cost < least) {
                least = cost;
                best = place.topLeft();
            }
        }
    }
    return best;
}

void CentreOnParent(QWidget& window) {
    const QWidget* parent = window.parentWidget();
    const QScreen* screen = (parent != nullptr ? *parent : window).screen();
    const QRect room = screen->availableGeometry();
    const QRect owner = parent != nullptr ? parent->window()->frameGeometry() : room;
    const QRect whole = window.rect().marginsAdded(FrameOf(window));
    PutFrame(window,
             Within(room, window.size(), owner.center() - QRect(QPoint(), whole.size()).center()));
}

void StandClearOfPhoto(QWidget& window) {
    const QWidget* parent = window.parentWidget();
    const QList<QRect> photo = parent != nullptr ? PhotoInSight(*parent->window()) : QList<QRect>();
    if (parent == nullptr || photo.isEmpty()) {
        CentreOnParent(window);
        return;
    }
    const QRect whole = window.rect().marginsAdded(FrameOf(window));
    PutFrame(window, ClearPlace(parent->screen()->availableGeometry(),
                                parent->window()->frameGeometry(), photo, whole.size()));
}

void MoveOntoScreen(QWidget& window) {
    window.move(Within(window.screen()->availableGeometry(), window.size(), window.pos()));
}

QSize WithinScreen(const QWidget& window, QSize wanted) {
    return wanted.boundedTo(window.screen()->availableSize() - Frame);
}

void FitToScreen(QWidget& window) {
    window.ensurePolished();
    window.resize(WithinScreen(window, window.sizeHint()));
}

}  // namespace kadrona::dialogs
