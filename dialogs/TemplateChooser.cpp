#include "dialogs/TemplateChooser.h"

#include <QCoreApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPainter>
#include <QPushButton>
#include <QScrollBar>
#include <QShowEvent>
#include <QToolButton>
#include <QVBoxLayout>

#include "controls/fields/ClearButton.h"
#include "controls/fields/RememberedChoice.h"
#include "controls/fields/SelectionList.h"
#include "controls/messages/ActionGuard.h"
#include "controls/theme/Icons.h"
#include "controls/theme/Theme.h"
#include "core/settings/Settings.h"
#include "dialogs/base/SelfConfirmation.h"
#include "dialogs/base/WindowPlacement.h"

using namespace Qt::StringLiterals;

namespace kadrona::dialogs {

namespace {

constexpr QSize ClientArea(272, 263);

/// Tags of the two buttons that turn the photo.
constexpr int TurnLeft = 1;
constexpr int TurnRight = 2;
constexpr const char* TagProperty = "tag";

/// "35 x 45 mm"; empty for an empty size.
QString SizeText(QSizeF millimetres) {
    const auto number = [](double value) {
        QLocale german(QLocale::German);
        german.setNumberOptions(QLocale::OmitGroupSeparator);
        return german.toString(value, 'g', 4);
    };
    return millimetres.isEmpty()
               ? QString()
               : u"%1 x %2 mm"_s.arg(number(millimetres.width()), number(millimetres.height()));
}

}  // namespace

TSchabloneFm::TSchabloneFm(const core::Settings& settings, QWidget* parent)
    : QDialog(parent, Qt::Dialog | Qt::FramelessWindowHint), settings_(settings) {
    setObjectName(u"SchabloneFm"_s);
    setWindowTitle(u"Schablonen"_s);
    lbSchablonen_ = new controls::SelectionList(u"lbSchablonen"_s, u"Schablonen"_s);
    connect(lbSchablonen_, &QListWidget::itemSelectionChanged, this, [this] {
        btnOk_->setEnabled(FormCloseQuery());
        ShowNotice();
    });
    notice_ = new QLabel;
    notice_->setObjectName(u"TemplateNotice"_s);
    notice_->setWordWrap(true);
    notice_->hide();
    btnRotateLeft_ =
        RotateButton(u"btnRotateLeft"_s, u"rotate-left"_s, u"Nach Links drehen"_s, TurnLeft);
    btnRotateRight_ =
        RotateButton(u"btnRotateRight"_s, u"rotate-right"_s, u"Nach rechts drehen"_s, TurnRight);
    btnOk_ = new QPushButton(u"&Ok"_s);
    btnOk_->setObjectName(u"btnOk"_s);
    btnOk_->setToolTip(u"Schablone übernehmen"_s);
    btnOk_->setDefault(true);
    btnOk_->setEnabled(false);
    connect(btnOk_, &QPushButton::clicked, this, &QDialog::accept);
    filterEdit_ = new QLineEdit;
    filterEdit_->setObjectName(u"FilterEdit"_s);
    filterEdit_->setAccessibleName(u"Schablonen filtern"_s);
    filterEdit_->setPlaceholderText(u"Filtern …"_s);
    controls::AddClearButton(*filterEdit_);
    connect(filterEdit_, &QLineEdit::textChanged, lbSchablonen_, &controls::SelectionList::Filter);
    BuildLayout();
    filterEdit_->installEventFilter(this);
    lbSchablonen_->installEventFilter(this);
    confirmation_ = new SelfConfirmation(*this, *btnOk_);
}

void TSchabloneFm::BuildLayout() {
    auto* bar = new QHBoxLayout;
    bar->addWidget(btnRotateLeft_);
    bar->addWidget(btnRotateRight_);
    bar->addStretch();
    bar->addWidget(btnOk_);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(8, 8, 8, 8);
    layout->addWidget(filterEdit_);
    layout->addWidget(lbSchablonen_, 1);
    layout->addWidget(notice_);
    layout->addLayout(bar);
}

QToolButton* TSchabloneFm::RotateButton(const QString& name, const QString& icon,
                                        const QString& hint, int tag) {
    auto* button = new QToolButton;
    button->setObjectName(name);
    button->setIcon(controls::Icon(icon));
    button->setToolTip(hint);
    button->setAccessibleName(hint);
    button->setProperty(TagProperty, tag);
    connect(button, &QToolButton::clicked, this,
            [this, button] { controls::Guarded(this, [&] { RotateClick(*button); }); });
    return button;
}

void TSchabloneFm::SetTemplates(const QStringList& names, std::function<QSizeF(int index)> sizeOf) {
    lbSchablonen_->SetTexts(names);
    lbSchablonen_->SetEmptyText(names.isEmpty() ? u"Es sind keine Schablonen installiert."_s
                                                : u"Keine Schablone heißt so."_s);
    sizeOf_ = std::move(sizeOf);
}

/// As wide as the names need; the line to filter comes on top of the designed size.
void TSchabloneFm::ShowSizes() {
    for (int row = 0; sizeOf_ && row < lbSchablonen_->count(); ++row) {
        lbSchablonen_->SetDetail(row, SizeText(sizeOf_(row)));
    }
    sizeOf_ = {};
    ensurePolished();
    const QMargins margins = layout()->contentsMargins();
    const int rows = lbSchablonen_->sizeHintForColumn(0) + 2 * lbSchablonen_->frameWidth() +
                     lbSchablonen_->verticalScrollBar()->sizeHint().width();
    const QSize needed(rows + margins.left() + margins.right(),
                       ClientArea.height() + filterEdit_->sizeHint().height());
    resize(WithinScreen(*this, ClientArea.expandedTo(needed)));
}

void TSchabloneFm::ShowNotice() {
    const int selected = SelectedTemplate();
    notice_->setText(noticeOf_ && selected >= 0 ? noticeOf_(selected) : QString());
    notice_->setVisible(!notice_->text().isEmpty());
}

int TSchabloneFm::SelectedTemplate() const {
    return lbSchablonen_->SelectedRow();
}

void TSchabloneFm::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (!event->spontaneous()) {
        ShowSizes();
        CentreOnParent(*this);
        FormShow();
    }
}

/// A window without a frame of the system's needs a line around it.
void TSchabloneFm::paintEvent(QPaintEvent* event) {
    QDialog::paintEvent(event);
    QPainter painter(this);
    painter.setPen(controls::Colors().strongBorder);
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

void TSchabloneFm::FormShow() {
    filterEdit_->clear();
    QStringList names;
    for (int row = 0; row < lbSchablonen_->count(); ++row) {
        names.append(lbSchablonen_->item(row)->text());
    }
    lbSchablonen_->SelectRow(
        controls::RememberedChoice(names, settings_.SchabloneBoxText(), settings_.SchabloneBox()));
    lbSchablonen_->setFocus();
    if (settings_.ImgRotateLeft()) {
        btnRotateLeft_->click();
    }
    if (settings_.ImgRotateRight()) {
        btnRotateRight_->click();
    }
    if (SelectedTemplate() >= 0) {
        confirmation_->Start();
    }
}

bool TSchabloneFm::FormCloseQuery() const {
    return SelectedTemplate() >= 0;
}

/// Every way of closing a dialog ends here.
void TSchabloneFm::done(int result) {
    if (FormCloseQuery()) {
        confirmation_->Stop();
        QDialog::done(result);
    }
}

void TSchabloneFm::RotateClick(const QToolButton& sender) {
    if (rotationHandler_) {
        rotationHandler_(sender.property(TagProperty).toInt() == TurnLeft ? +90 : -90);
    }
}

/// The letters that are typed in the list filter it, and the arrow keys in the line move in the
/// list.
bool TSchabloneFm::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress) {
        return QDialog::eventFilter(watched, event);
    }
    const auto& key = static_cast<QKeyEvent&>(*event);
    if (watched == lbSchablonen_) {
        return FilterByKey(key);
    }
    const bool moves = key.key() == Qt::Key_Up || key.key() == Qt::Key_Down ||
                       key.key() == Qt::Key_PageUp || key.key() == Qt::Key_PageDown;
    if (moves) {
        QCoreApplication::sendEvent(lbSchablonen_, event);
    }
    return moves;
}

bool TSchabloneFm::FilterByKey(const QKeyEvent& event) {
    const QString text = event.text();
    const bool types = !text.isEmpty() && text.front().isPrint() && text != u" " &&
                       !event.modifiers().testAnyFlags(Qt::ControlModifier | Qt::AltModifier);
    if (types) {
        filterEdit_->setFocus(Qt::OtherFocusReason);
        filterEdit_->insert(text);
    }
    return types;
}

}  // namespace kadrona::dialogs
