#include "controls/commands/CommandBar.h"

#include <QAction>
#include <QActionEvent>
#include <QComboBox>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <algorithm>

#include "controls/commands/Separator.h"

using namespace Qt::StringLiterals;

namespace kadrona::controls {
namespace {

constexpr int Margin = 6;
constexpr int Spacing = 3;
constexpr int RowSpacing = 4;

}  // namespace

struct CommandBar::Entry {
    BarItem::Kind kind;
    QWidget* widget;
    QAction* action = nullptr;

    BarItem Item() const {
        return {kind, widget->sizeHint().width(), action == nullptr || action->isVisible()};
    }
};

CommandBar::CommandBar(const QString& title, QWidget* parent)
    : QWidget(parent), extension_(new QToolButton(this)), extensionMenu_(new QMenu(this)) {
    setAccessibleName(title);
    setAttribute(Qt::WA_StyledBackground);
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Minimum);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    extension_->setObjectName(u"ExtensionButton"_s);
    extension_->setText(u"»"_s);
    extension_->setToolTip(u"Weitere Befehle"_s);
    extension_->setAccessibleName(extension_->toolTip());
    extension_->setAutoRaise(true);
    extension_->setFocusPolicy(Qt::TabFocus);
    extension_->setPopupMode(QToolButton::InstantPopup);
    extension_->setMenu(extensionMenu_);
    extension_->hide();
    extensionMenu_->setObjectName(u"ExtensionMenu"_s);
    connect(extensionMenu_, &QMenu::aboutToShow, this, &CommandBar::FillExtensionMenu);
}

CommandBar::~CommandBar() = default;

CommandButton* CommandBar::AddAction(QAction* action, Caption caption) {
    auto* button = new CommandButton(action, caption, this);
    entries_.push_back({BarItem::Kind::Command, button, action});
    // A button that went into the extension menu is hidden, and so would be its shortcut.
    addAction(action);
    connect(action, &QAction::changed, this, &CommandBar::Arrange);
    Arrange();
    return button;
}

void CommandBar::AddLabelled(const QString& label, QWidget* widget) {
    auto* group = new QWidget(this);
    auto* layout = new QHBoxLayout(group);
    layout->setContentsMargins(4, 0, 4, 0);
    layout->setSpacing(6);
    auto* caption = new QLabel(label, group);
    caption->setBuddy(widget);
    layout->addWidget(caption);
    layout->addWidget(widget);
    if (widget->accessibleName().isEmpty()) {
        widget->setAccessibleName(QString(label).remove(u'&'));
    }
    entries_.push_back({BarItem::Kind::Pinned, group});
    Arrange();
}

void CommandBar::AddChoice(const QString& label, QComboBox* box, int textWidth) {
    box->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    box->ensurePolished();
    int longest = 0;
    for (int i = 0; i < box->count(); ++i) {
        longest = std::max(longest, box->fontMetrics().horizontalAdvance(box->itemText(i)));
    }
    const int frameAndArrow = box->sizeHint().width() - longest;
    box->setMinimumWidth(frameAndArrow + std::max(longest, textWidth));
    AddLabelled(label, box);
}

void CommandBar::AddSeparator() {
    entries_.push_back({BarItem::Kind::Separator, new Separator(Qt::Vertical, this)});
    Arrange();
}

std::vector<BarItem> CommandBar::Items() const {
    std::vector<BarItem> items;
    for (const Entry& entry : entries_) {
        items.push_back(entry.Item());
    }
    return items;
}

int CommandBar::RowHeight() const {
    int height = 0;
    for (const Entry& entry : entries_) {
        height = std::max(height, entry.widget->sizeHint().height());
    }
    return height;
}

int CommandBar::heightForWidth(int width) const {
    const std::vector<BarItem> items = Items();
    const bool twoRows = SecondRowBegin(items, width - 2 * Margin, Spacing) < items.size();
    return 2 * Margin + RowHeight() + (twoRows ? RowSpacing + RowHeight() : 0);
}

/// All in one row.
QSize CommandBar::sizeHint() const {
    const std::vector<BarItem> items = Items();
    constexpr int Unlimited = 1 << 20;
    const std::vector<bool> shown = ArrangeBar(items, Unlimited, Spacing, 0).shown;
    return {BarWidth(items, shown, Spacing) + 2 * Margin, RowHeight() + 2 * Margin};
}

QSize CommandBar::minimumSizeHint() const {
    const std::vector<BarItem> items = Items();
    const std::vector<bool> shown = ArrangeBar(items, 0, Spacing, 0).shown;
    return {BarWidth(items, shown, Spacing) + Spacing + extension_->sizeHint().width() + 2 * Margin,
            RowHeight() + 2 * Margin};
}

bool CommandBar::event(QEvent* event) {
    const bool handled = QWidget::event(event);
    switch (event->type()) {
        case QEvent::LayoutRequest:
        case QEvent::FontChange:
        case QEvent::StyleChange:
        case QEvent::Polish:
            Arrange();
            break;
        default:
            break;
    }
    return handled;
}

void CommandBar::resizeEvent(QResizeEvent* /*event*/) {
    Arrange();
}

void CommandBar::Arrange() {
    const std::vector<BarItem> items = Items();
    const std::size_t secondRow = SecondRowBegin(items, width() - 2 * Margin, Spacing);
    shown_.assign(items.size(), false);
    bool extensionNeeded = ArrangeRow(items, 0, secondRow, Margin);
    if (secondRow < items.size()) {
        const int y = Margin + RowHeight() + RowSpacing;
        extensionNeeded = ArrangeRow(items, secondRow + 1, items.size(), y);
    }
    for (std::size_t i = 0; i < entries_.size(); ++i) {
        entries_[i].widget->setVisible(shown_[i]);
    }
    extension_->setVisible(extensionNeeded);
    updateGeometry();
}

/// Places one row; true when it needs the extension button, which is then at its end.
bool CommandBar::ArrangeRow(const std::vector<BarItem>& items, std::size_t begin, std::size_t end,
                            int y) {
    const auto at = [&](std::size_t i) { return items.begin() + static_cast<std::ptrdiff_t>(i); };
    const std::vector<BarItem> row(at(begin), at(end));
    const int extensionWidth = extension_->sizeHint().width();
    const BarArrangement arrangement =
        ArrangeBar(row, width() - 2 * Margin, Spacing, extensionWidth);
    int x = Margin;
    for (std::size_t i = 0; i < row.size(); ++i) {
        if (arrangement.shown[i]) {
            shown_[begin + i] = true;
            entries_[begin + i].widget->setGeometry(x, y, row[i].width, RowHeight());
            x += row[i].width + Spacing;
        }
    }
    extension_->setGeometry(width() - Margin - extensionWidth, y, extensionWidth, RowHeight());
    return arrangement.extensionNeeded;
}

void CommandBar::FillExtensionMenu() {
    extensionMenu_->clear();
    for (std::size_t i = 0; i < entries_.size(); ++i) {
        if (entries_[i].kind == BarItem::Kind::Separator) {
            extensionMenu_->addSeparator();  // the menu itself leaves out those without neighbours
        } else if (entries_[i].action != nullptr && !shown_[i]) {
            extensionMenu_->addAction(entries_[i].action);
        }
    }
}

}  // namespace kadrona::controls
