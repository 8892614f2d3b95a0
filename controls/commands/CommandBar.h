#pragma once

#include <QWidget>
#include <vector>

#include "controls/commands/BarArrangement.h"
#include "controls/commands/CommandButton.h"

class QComboBox;

namespace kadrona::controls {

/// A row of commands in groups, or two rows where they do not fit into one: the groups at the end
/// then stand below. What does not fit there either goes from the end into a menu behind a "»"
/// button; labelled widgets stay, and the bar never gets narrower than they are. Hidden actions
/// leave no gap and no separator without neighbours.
///
///     Anzahl [2 x 4 v]  [create] [save]
///     [undo] [..] | [fit] | »
///
/// The shortcuts of all its actions work as long as the bar itself is visible.
class CommandBar : public QWidget {
    Q_OBJECT

 public:
    /// `title` names the bar for assistive technology.
    explicit CommandBar(const QString& title, QWidget* parent = nullptr);
    ~CommandBar() override;

    /// The action must live as long as the bar, and its object name must be set.
    CommandButton* AddAction(QAction* action, Caption caption = Caption::Hidden);

    /// Takes ownership of the widget; the label is its buddy.
    void AddLabelled(const QString& label, QWidget* widget);

    /// As AddLabelled, with the box as wide as its longest item needs, its text area no narrower
    /// than `textWidth` pixels.
    void AddChoice(const QString& label, QComboBox* box, int textWidth);

    void AddSeparator();

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;

 protected:
    bool event(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

 private:
    struct Entry;

    void Arrange();
    bool ArrangeRow(const std::vector<BarItem>& items, std::size_t begin, std::size_t end, int y);
    void FillExtensionMenu();
    std::vector<BarItem> Items() const;
    int RowHeight() const;

    std::vector<Entry> entries_;
    std::vector<bool> shown_;
    QToolButton* extension_;
    QMenu* extensionMenu_;
};

}  // namespace kadrona::controls
