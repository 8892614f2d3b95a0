#include "dialogs/side/TraySection.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSpinBox>
#include <QStringList>
#include <QStyledItemDelegate>
#include <QTextDocument>
#include <QToolButton>
#include <QVBoxLayout>

#include "core/sheet/PaperLayout.h"
#include "platform/HarmlessText.h"

using namespace Qt::StringLiterals;

namespace kadrona::dialogs {

namespace {

constexpr int ListHeight = 170;
constexpr QSize IconSize(36, 44);

QPushButton* Button(const QString& text, const QString& name, const QString& hint) {
    auto* button = new QPushButton(text);
    button->setObjectName(name);
    button->setToolTip(hint);
    button->setAccessibleName(hint);
    return button;
}

QToolButton* ArrowButton(Qt::ArrowType arrow, const QString& name, const QString& hint) {
    auto* button = new QToolButton;
    button->setObjectName(name);
    button->setArrowType(arrow);
    button->setToolTip(hint);
    button->setAccessibleName(hint);
    return button;
}

/// Lines that do not wrap; what does not fit is elided.
class LinesDelegate : public QStyledItemDelegate {
 public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        // The list makes its items no narrower than the widest asks to be.
        return {1, QStyledItemDelegate::sizeHint(option, index).height()};
    }
};

QString TextOf(const TraySection::Row& row) {
    QStringList lines{u"%1 × %2"_s.arg(row.count).arg(platform::HarmlessLine(row.title))};
    if (!row.detail.isEmpty()) {
        lines.append(platform::HarmlessLine(row.detail));
    }
    if (row.missing > 0) {
        lines.append(u"! %1 ohne Platz"_s.arg(row.missing));
    }
    return lines.join(u'\n');
}

/// The same while its row is selected, which would else tint it.
QIcon IconOf(const QImage& picture) {
    const QPixmap pixmap = QPixmap::fromImage(picture);
    QIcon icon(pixmap);
    icon.addPixmap(pixmap, QIcon::Selected);
    return icon;
}

}  // namespace

TraySection::TraySection(QWidget* parent) : QWidget(parent) {
    setObjectName(u"TraySection"_s);
    BuildControls();
    auto* title = new QLabel(u"Sammelblatt"_s);
    QFont bold = title->font();
    bold.setBold(true);
    title->setFont(bold);
    auto* row = new QHBoxLayout;
    row->addWidget(count_, 1);
    row->addWidget(up_);
    row->addWidget(down_);
    auto* foot = new QHBoxLayout;
    foot->addWidget(remove_, 1);
    foot->addWidget(empty_, 1);
    auto* column = new QVBoxLayout(this);
    column->addWidget(title);
    column->addWidget(list_);
    column->addLayout(row);
    column->addLayout(foot);
    column->addWidget(summary_);
    column->addWidget(make_);
    Connect();
}

void TraySection::BuildControls() {
    list_ = new QListWidget;
    list_->setObjectName(u"TrayList"_s);
    list_->setAccessibleName(u"Bilder des Sammelblatts"_s);
    list_->setIconSize(IconSize);
    list_->setFixedHeight(ListHeight);
    list_->setItemDelegate(new LinesDelegate(list_));
    list_->setResizeMode(QListView::Adjust);
    list_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list_->setMinimumWidth(1);
    count_ = new QSpinBox;
    count_->setObjectName(u"TrayCount"_s);
    count_->setAccessibleName(u"Anzahl des gewählten Bildes"_s);
    count_->setRange(1, core::MostCopies);
    count_->setSuffix(u" Stück"_s);
    up_ = ArrowButton(Qt::UpArrow, u"TrayUp"_s, u"Nach oben"_s);
    down_ = ArrowButton(Qt::DownArrow, u"TrayDown"_s, u"Nach unten"_s);
    remove_ = Button(u"Entfernen"_s, u"TrayRemove"_s, u"Aus dem Sammelblatt nehmen"_s);
    empty_ = Button(u"Leeren"_s, u"TrayEmpty"_s, u"Alle Bilder aus dem Sammelblatt nehmen"_s);
    make_ = Button(u"Sammelblatt erstellen"_s, u"TrayMake"_s, u"Sammelblatt erstellen"_s);
    summary_ = new QLabel;
    summary_->setObjectName(u"TraySummary"_s);
    summary_->setWordWrap(true);
}

void TraySection::Connect() {
    connect(list_, &QListWidget::currentRowChanged, this, &TraySection::ShowSelected);
    connect(count_, &QSpinBox::valueChanged, this,
            [this](int count) { Q_EMIT CountChosen(list_->currentRow(), count); });
    const auto move = [this](int by) {
        const int row = list_->currentRow();
        Q_EMIT MoveAsked(row, row + by);
    };
    connect(up_, &QToolButton::clicked, this, [move] { move(-1); });
    connect(down_, &QToolButton::clicked, this, [move] { move(1); });
    connect(remove_, &QPushButton::clicked, this,
            [this] { Q_EMIT RemoveAsked(list_->currentRow()); });
    connect(empty_, &QPushButton::clicked, this, &TraySection::EmptyAsked);
    connect(make_, &QPushButton::clicked, this, &TraySection::SheetAsked);
}

void TraySection::SetRows(const std::vector<Row>& rows, const QString& summary) {
    const QSignalBlocker quiet(list_);
    const int selected = list_->currentRow();
    while (list_->count() > static_cast<int>(rows.size())) {
        delete list_->takeItem(list_->count() - 1);
    }
    for (size_t i = 0; i < rows.size(); ++i) {
        const auto index = static_cast<int>(i);
        if (index == list_->count()) {
            list_->addItem(new QListWidgetItem);
        }
        QListWidgetItem& item = *list_->item(index);
        const QString text = TextOf(rows[i]);
        item.setText(text);
        item.setToolTip(Qt::convertFromPlainText(text));
        item.setIcon(IconOf(rows[i].picture));
        item.setData(Qt::UserRole, rows[i].count);
    }
    // A size in one piece.
    summary_->setText(
        QString(summary).replace(u" x "_s, u"\u00a0x\u00a0"_s).replace(u" mm"_s, u"\u00a0mm"_s));
    list_->setCurrentRow(std::min(std::max(selected, 0), list_->count() - 1));
    ShowSelected();
}

void TraySection::Select(int row) {
    list_->setCurrentRow(row);
}

void TraySection::ShowSelected() {
    const QSignalBlocker quiet(count_);
    const int row = list_->currentRow();
    const bool isSelected = row >= 0;
    if (isSelected) {
        count_->setValue(list_->item(row)->data(Qt::UserRole).toInt());
    }
    count_->setEnabled(isSelected);
    remove_->setEnabled(isSelected);
    up_->setEnabled(row > 0);
    down_->setEnabled(isSelected && row + 1 < list_->count());
    empty_->setEnabled(list_->count() > 0);
    make_->setEnabled(list_->count() > 0);
}

}  // namespace kadrona::dialogs
