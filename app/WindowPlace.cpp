#include "app/WindowPlace.h"

#include <QApplication>
#include <QEvent>
#include <QScreen>
#include <QStyle>
#include <QWidget>
#include <algorithm>
#include <utility>
#include <vector>

#include "core/templates/LayoutFile.h"
#include "platform/Error.h"
#include "platform/IniFile.h"

using namespace Qt::StringLiterals;

namespace kadrona::app {

namespace {

const QString MaximizedKey = u"Maximized"_s;

/// Until a window that is dragged has come to rest.
constexpr int RestMilliseconds = 1000;

/// The screen on which enough of a window would be to take hold of it; null when there is none.
const QScreen* ScreenOf(const QRect& window) {
    const QRect grip(window.topLeft(), QSize(window.width(), 32));
    for (const QScreen* screen : QGuiApplication::screens()) {
        const QRect visible = screen->availableGeometry().intersected(grip);
        if (visible.width() >= 64 && visible.height() >= 8) {
            return screen;
        }
    }
    return nullptr;
}

/// What a frame takes is known once a window has one; before that it is what the style draws.
QSize FrameSize() {
    const QStyle* style = QApplication::style();
    const int border = style->pixelMetric(QStyle::PM_MdiSubWindowFrameWidth);
    return {2 * border, style->pixelMetric(QStyle::PM_TitleBarHeight) + border};
}

QSize FittingSize(QSize wanted, const QScreen& screen) {
    return wanted.boundedTo(screen.availableSize() - FrameSize());
}

/// Where a window of that size, which the screen has room for, lies wholly on it.
QPoint PlaceWithin(const QRect& window, const QScreen& screen) {
    const QRect room = screen.availableGeometry();
    const QSize whole = window.size() + FrameSize();
    return {std::clamp(window.x(), room.x(), room.x() + room.width() - whole.width()),
            std::clamp(window.y(), room.y(), room.y() + room.height() - whole.height())};
}

/// Beside the windows that stand exactly where that one would; the place itself where the screen
/// has no room beside them.
QPoint FreePlace(const QRect& window, const QScreen& screen, const std::vector<QPoint>& taken) {
    const int step = FrameSize().height();
    QPoint place = window.topLeft();
    while (std::ranges::find(taken, place) != taken.end()) {
        place += QPoint(step, step);
    }
    return place == window.topLeft() ? place : PlaceWithin({place, window.size()}, screen);
}

}  // namespace

WindowPlace::WindowPlace(QWidget& window, QString dataFolder)
    : window_(window), dataFolder_(std::move(dataFolder)) {
    window.installEventFilter(this);
    moved_.setSingleShot(true);
    moved_.setInterval(RestMilliseconds);
    connect(&moved_, &QTimer::timeout, this, &WindowPlace::SaveQuietly);
}

QSize WindowPlace::OnScreen(QSize wanted) {
    return FittingSize(wanted, *QGuiApplication::primaryScreen());
}

void WindowPlace::Restore() {
    const QString section = window_.objectName();
    const QRect saved = core::LayoutFile(dataFolder_).Read(section);
    const QScreen* screen = ScreenOf(saved);
    if (saved.x() != 0 && saved.y() != 0 && screen != nullptr) {
        const QSize size = FittingSize(saved.size(), *screen);
        window_.resize(size);
        const QPoint place =
            size == saved.size() ? saved.topLeft() : PlaceWithin({saved.topLeft(), size}, *screen);
        window_.move(FreePlace({place, size}, *screen, standing_.Others()));
        standing_.Tell(window_.pos());
    }
    if (platform::IniFile(core::LayoutFile::PathIn(dataFolder_))
            .ReadInteger(section, MaximizedKey)) {
        window_.setWindowState(Qt::WindowMaximized);
    }
}

void WindowPlace::Save() const {
    const QString section = window_.objectName();
    const bool normal = !window_.isMaximized() && !window_.isFullScreen();
    const QRect place = normal ? QRect(window_.pos(), window_.size())
                               : window_.normalGeometry().translated(-frame_);
    core::LayoutFile(dataFolder_).Save(section, place);
    platform::IniFile::Change(core::LayoutFile::PathIn(dataFolder_), [&](platform::IniFile& file) {
        if (window_.isMaximized()) {
            file.WriteInteger(section, MaximizedKey, 1);
        } else {
            file.EraseKey(section, MaximizedKey);
        }
    });
}

/// Where that fails it is said when the window is closed.
void WindowPlace::SaveQuietly() {
    standing_.Tell(window_.pos());
    try {
        Save();
    } catch (const platform::Error&) {
    }
}

bool WindowPlace::eventFilter(QObject* watched, QEvent* event) {
    // The frame is there only some time after the window was shown.
    const bool placed = event->type() == QEvent::Move || event->type() == QEvent::Resize ||
                        event->type() == QEvent::Paint;
    if (placed && window_.isVisible() && !window_.isMaximized() && !window_.isFullScreen()) {
        frame_ = window_.geometry().topLeft() - window_.pos();
    }
    if (event->type() == QEvent::Hide || event->type() == QEvent::Close) {
        moved_.stop();
    } else if (window_.isVisible() &&
               (event->type() == QEvent::Move || event->type() == QEvent::Resize ||
                event->type() == QEvent::WindowStateChange)) {
        moved_.start();
    }
    return QObject::eventFilter(watched, event);
}

}  // namespace kadrona::app
