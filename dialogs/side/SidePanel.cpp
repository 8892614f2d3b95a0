#include "dialogs/side/SidePanel.h"

#include <QApplication>
#include <QEvent>
#include <QScrollBar>
#include <QTimer>
#include <QVBoxLayout>
#include <algorithm>

using namespace Qt::StringLiterals;

namespace kadrona::dialogs {

namespace {

/// Of a panel that is shown, pixels; large letters may need more.
constexpr int PanelWidth = 330;
constexpr int GreatestWidth = 520;

}  // namespace

SidePanel::SidePanel(QWidget* parent) : QScrollArea(parent) {
    setObjectName(u"SidePanel"_s);
    setAccessibleName(u"Seitenleiste"_s);
    setWidgetResizable(true);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    auto* content = new QWidget;
    column_ = new QVBoxLayout(content);
    column_->addStretch(1);
    setWidget(content);
    hide();
}

void SidePanel::AddSection(QWidget* section) {
    column_->insertWidget(column_->count() - 1, section);
    section->hide();
}

void SidePanel::ShowSection(QWidget* section, bool shown) {
    const bool hadFocus = section->isAncestorOf(QApplication::focusWidget());
    section->setVisible(shown);
    shown_.removeAll(section);
    if (shown) {
        shown_.append(section);
    }
    setVisible(!shown_.isEmpty());
    FitWidth();
    if (!shown && hadFocus) {
        Q_EMIT FocusLeft();
    }
}

void SidePanel::Reveal(const QWidget* section) {
    // Once it has its place.
    QTimer::singleShot(0, section, [this, section] {
        if (section->isVisible()) {
            const int toItsEnd = section->geometry().bottom() + 1 - viewport()->height();
            QScrollBar& bar = *verticalScrollBar();
            bar.setValue(std::min(section->y(), std::max(bar.value(), toItsEnd)));
        }
    });
}

/// What does not wrap must not be cut off.
void SidePanel::FitWidth() {
    const int needed = widget()->minimumSizeHint().width() +
                       verticalScrollBar()->sizeHint().width() + 2 * frameWidth();
    setFixedWidth(std::clamp(needed, PanelWidth, GreatestWidth));
}

bool SidePanel::eventFilter(QObject* watched, QEvent* event) {
    if (watched == widget() && event->type() == QEvent::LayoutRequest) {
        FitWidth();
    }
    return QScrollArea::eventFilter(watched, event);
}

}  // namespace kadrona::dialogs
