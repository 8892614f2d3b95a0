#include "controls/fields/SelectionList.h"

#include <QPainter>
#include <QStyle>
#include <QStyledItemDelegate>
#include <algorithm>

#include "controls/commands/ScreenTip.h"
#include "controls/theme/Theme.h"
#include "platform/HarmlessText.h"

using namespace Qt::StringLiterals;

namespace kadrona::controls {
namespace {

constexpr int DetailRole = Qt::UserRole;

/// Paints the detail of a row at its right end.
class DetailDelegate : public QStyledItemDelegate {
 public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QString displayText(const QVariant& value, const QLocale& locale) const override {
        return platform::HarmlessLine(QStyledItemDelegate::displayText(value, locale));
    }

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        return QStyledItemDelegate::sizeHint(option, index) + QSize(DetailWidth(option, index), 0);
    }

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        QStyledItemDelegate::paint(painter, option, index);
        // By the style once more, which alone knows the line that it gave the name.
        QStyleOptionViewItem detail = option;
        QStyledItemDelegate::initStyleOption(&detail, index);
        detail.palette.setColor(QPalette::Text, option.state.testFlag(QStyle::State_Selected)
                                                    ? Colors().text
                                                    : Colors().mutedText);
        detail.state = QStyle::State_Enabled | QStyle::State_Active;
        detail.text = index.data(DetailRole).toString();
        detail.displayAlignment = Qt::AlignRight | Qt::AlignVCenter;
        option.widget->style()->drawControl(QStyle::CE_ItemViewItem, &detail, painter,
                                            option.widget);
    }

 protected:
    /// Cuts the text off before the detail.
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
        QStyledItemDelegate::initStyleOption(option, index);
        const int room = option->rect.width() - 2 * Margin - DetailWidth(*option, index);
        if (option->rect.isValid() && room > 0) {
            option->text = option->fontMetrics.elidedText(option->text, Qt::ElideRight, room);
        }
    }

 private:
    static constexpr int Margin = 8;
    static constexpr int Gap = 16;

    static int DetailWidth(const QStyleOptionViewItem& option, const QModelIndex& index) {
        const QString detail = index.data(DetailRole).toString();
        return detail.isEmpty() ? 0 : Gap + option.fontMetrics.horizontalAdvance(detail);
    }
};

/// As a user may type it: without case and accents.
QString Folded(const QString& text) {
    QString folded = text.normalized(QString::NormalizationForm_KD).toCaseFolded();
    return folded.removeIf([](QChar c) { return c.category() == QChar::Mark_NonSpacing; });
}

}  // namespace

SelectionList::SelectionList(const QString& name, const QString& accessibleName, QWidget* parent)
    : QListWidget(parent) {
    setObjectName(name);
    setAccessibleName(accessibleName);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setItemDelegate(new DetailDelegate(this));
    connect(
        this, &QListWidget::currentRowChanged, this,
        [this] {
            if (SelectedRow() < 0) {
                selectionModel()->clearCurrentIndex();
            }
        },
        Qt::QueuedConnection);
}

void SelectionList::SetTexts(const QStringList& texts) {
    clear();
    for (const QString& text : texts) {
        AddText(text);
    }
}

void SelectionList::AddText(const QString& text) {
    auto* item = new QListWidgetItem(text, this);
    item->setToolTip(PlainTip(text));
}

void SelectionList::SetDetail(int row, const QString& detail) {
    item(row)->setData(DetailRole, detail);
    item(row)->setData(Qt::AccessibleDescriptionRole, detail);
}

void SelectionList::Filter(const QString& words) {
    const QStringList wanted = Folded(words).split(u' ', Qt::SkipEmptyParts);
    int first = -1;
    for (int row = 0; row < count(); ++row) {
        const QString text = Folded(item(row)->text());
        const bool shown =
            std::ranges::all_of(wanted, [&](const QString& word) { return text.contains(word); });
        item(row)->setHidden(!shown);
        first = shown && first < 0 ? row : first;
    }
    const int selected = SelectedRow();
    if (selected >= 0 ? item(selected)->isHidden() : !wanted.isEmpty()) {
        SelectRow(first);
    }
}

void SelectionList::paintEvent(QPaintEvent* event) {
    QListWidget::paintEvent(event);
    for (int row = 0; row < count(); ++row) {
        if (!item(row)->isHidden()) {
            return;
        }
    }
    constexpr int Margin = 16;
    QPainter painter(viewport());
    painter.setPen(Colors().mutedText);
    painter.drawText(viewport()->rect().adjusted(Margin, Margin, -Margin, -Margin),
                     Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap, emptyText_);
}

int SelectionList::SelectedRow() const {
    const auto selected = selectedItems();
    return selected.isEmpty() ? -1 : row(selected.first());
}

void SelectionList::SelectRow(int row) {
    setCurrentRow(row < count() ? row : -1);
}

QString SelectionList::SelectedText() const {
    const auto selected = selectedItems();
    return selected.isEmpty() ? QString() : selected.first()->text();
}

}  // namespace kadrona::controls
