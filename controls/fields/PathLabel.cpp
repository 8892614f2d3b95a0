#include "controls/fields/PathLabel.h"

#include <QClipboard>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QMenu>
#include <QPainter>
#include <algorithm>

#include "controls/commands/ScreenTip.h"
#include "controls/fields/PathShortening.h"
#include "platform/HarmlessText.h"

using namespace Qt::StringLiterals;

namespace kadrona::controls {

PathLabel::PathLabel(QWidget* parent) : QWidget(parent) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
}

void PathLabel::SetPath(const QString& path) {
    path_ = path;
    setToolTip(PlainTip(path));
    setAccessibleName(platform::HarmlessLine(path));
    setAccessibleDescription(accessibleName());
    updateGeometry();
    update();
}

QSize PathLabel::sizeHint() const {
    return {fontMetrics().horizontalAdvance(path_), fontMetrics().height()};
}

/// The file's name is what says most; a long one is shortened.
QSize PathLabel::minimumSizeHint() const {
    constexpr int MostLetters = 14;
    const QFontMetrics metrics = fontMetrics();
    const int name = metrics.horizontalAdvance(path_.section(u'/', -1));
    return {std::min(name, MostLetters * metrics.averageCharWidth()), metrics.height()};
}

void PathLabel::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    const QFontMetrics metrics = fontMetrics();
    const QString text =
        ShortenPath(platform::HarmlessLine(path_), width(),
                    [&metrics](const QString& t) { return metrics.horizontalAdvance(t); });
    painter.setPen(palette().color(QPalette::WindowText));
    painter.drawText(rect(), Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, text);
}

void PathLabel::contextMenuEvent(QContextMenuEvent* event) {
    QMenu menu(this);
    QAction* copy = menu.addAction(u"Pfad kopieren"_s);
    copy->setEnabled(!path_.isEmpty());
    if (menu.exec(event->globalPos()) == copy) {
        CopyPath();
    }
}

void PathLabel::CopyPath() const {
    QGuiApplication::clipboard()->setText(path_);
}

}  // namespace kadrona::controls
