#include "controls/fields/FindPanel.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>

#include "controls/commands/ScreenTip.h"
#include "controls/fields/ClearButton.h"
#include "controls/theme/Icons.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace kadrona::controls {

FindPanel::FindPanel(QWidget* parent)
    : QWidget(parent), edit_(new QLineEdit(this)), hits_(new QLabel(this)) {
    setAttribute(Qt::WA_StyledBackground);
    edit_->setObjectName(u"FindEdit"_s);
    edit_->setAccessibleName(u"Suche"_s);
    edit_->setPlaceholderText(u"Suchen …"_s);
    edit_->addAction(Icon(u"search"_s), QLineEdit::LeadingPosition)->setText(u"Suchen"_s);
    AddClearButton(*edit_);
    edit_->setMaximumWidth(560);
    edit_->installEventFilter(this);
    hits_->setObjectName(u"FindHits"_s);
    delay_.setSingleShot(true);
    delay_.setInterval(80ms);
    connect(&delay_, &QTimer::timeout, this, &FindPanel::Search);
    connect(edit_, &QLineEdit::textChanged, &delay_, qOverload<>(&QTimer::start));

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(10, 8, 10, 8);
    layout->setSpacing(12);
    layout->addWidget(edit_, 1);
    layout->addWidget(hits_);
    layout->addStretch();
    setFocusProxy(edit_);
}

QString FindPanel::Text() const {
    return edit_->text();
}

void FindPanel::SetText(const QString& text) {
    edit_->setText(text);
    Search();
}

void FindPanel::TakeFocus() {
    edit_->setFocus(Qt::ShortcutFocusReason);
    edit_->selectAll();
}

void FindPanel::SetHits(const QString& text) {
    hits_->setText(text);
}

void FindPanel::SetSyntaxTip(const QString& header, const QString& text) {
    SetScreenTip(edit_, header, text);
}

void FindPanel::Search() {
    if (edit_->text() != searched_) {
        SearchAgain();
    }
}

void FindPanel::SearchAgain() {
    delay_.stop();
    searched_ = edit_->text();
    Q_EMIT Searched(searched_);
}

bool FindPanel::eventFilter(QObject* watched, QEvent* event) {
    if (watched == edit_ && event->type() == QEvent::KeyPress) {
        return HandleKey(static_cast<QKeyEvent*>(event)->key());
    }
    return QWidget::eventFilter(watched, event);
}

bool FindPanel::HandleKey(int key) {
    switch (key) {
        case Qt::Key_Escape:
            if (edit_->text().isEmpty()) {
                return false;
            }
            Clear();
            return true;
        case Qt::Key_Return:
        case Qt::Key_Enter:
            SearchAgain();
            Q_EMIT Left();
            return true;
        case Qt::Key_Down:
            Search();
            Q_EMIT Left();
            return true;
        default:
            return false;
    }
}

}  // namespace kadrona::controls
