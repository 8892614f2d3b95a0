#include "controls/theme/Cursors.h"

#include <QGuiApplication>
#include <QIcon>
#include <QPixmap>

using namespace Qt::StringLiterals;

namespace kadrona::controls {

namespace {

constexpr QSize CursorSize(32, 32);

/// `hotSpot` in the drawing's own measure of 32 by 32.
QCursor Drawn(const QString& name, QPoint hotSpot) {
    const QIcon drawing(u":/kadrona/icons/%1.svg"_s.arg(name));
    return QCursor(drawing.pixmap(CursorSize, qGuiApp->devicePixelRatio()), hotSpot.x(),
                   hotSpot.y());
}

}  // namespace

QCursor PipetteCursor() {
    return Drawn(u"cursor-pipette"_s, {3, 28});
}

QCursor StampCursor() {
    return Drawn(u"cursor-stamp"_s, {8, 8});
}

}  // namespace kadrona::controls
