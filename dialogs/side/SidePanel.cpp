#include "dialogs/side/SidePanel.h"

#include <QScrollBar>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace kadrona::dialogs {

namespace {

/// Of a panel that is shown, pixels.
constexpr int PanelWidth = 330;

}  // namespace

SidePanel::SidePanel(QWidget* parent) : QScrollArea(parent) {
    setObjectName(u"SidePanel"_s);
    setWidgetResizable(true);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFixedWidth(PanelWidth);
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
    section->setVisible(shown);
    shown_.removeAll(section);
    if (shown) {
        shown_.append(section);
    }
    setVisible(!shown_.isEmpty());
}

}  // namespace kadrona::dialogs
