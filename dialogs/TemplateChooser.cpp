#include "dialogs/TemplateChooser.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QPushButton>
#include <QShowEvent>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

#include "controls/fields/SelectionList.h"
#include "controls/messages/ActionGuard.h"
#include "controls/theme/Icons.h"
#include "controls/theme/Theme.h"
#include "core/settings/Settings.h"

using namespace Qt::StringLiterals;

namespace kadrona::dialogs {

namespace {

constexpr QSize ClientArea(272, 263);
constexpr int SelfConfirmationMilliseconds = 500;

/// Tags of the two buttons that turn the photo.
constexpr int TurnLeft = 1;
constexpr int TurnRight = 2;
constexpr const char* TagProperty = "tag";

}  // namespace

TSchabloneFm::TSchabloneFm(const core::Settings& settings, QWidget* parent)
    : QDialog(parent, Qt::Dialog | Qt::FramelessWindowHint), settings_(settings) {
    setObjectName(u"SchabloneFm"_s);
    setWindowTitle(u"Schablonen"_s);
    lbSchablonen_ = new controls::SelectionList(u"lbSchablonen"_s, u"Schablonen"_s);
    connect(lbSchablonen_, &QListWidget::itemSelectionChanged, this,
            [this] { btnOk_->setEnabled(FormCloseQuery()); });
    btnRotateLeft_ =
        RotateButton(u"btnRotateLeft"_s, u"rotate-left"_s, u"Nach Links drehen"_s, TurnLeft);
    btnRotateRight_ =
        RotateButton(u"btnRotateRight"_s, u"rotate-right"_s, u"Nach rechts drehen"_s, TurnRight);
    btnOk_ = new QPushButton(u"Ok"_s);
    btnOk_->setObjectName(u"btnOk"_s);
    btnOk_->setToolTip(u"Schablone übernehmen"_s);
    btnOk_->setDefault(true);
    btnOk_->setEnabled(false);
    connect(btnOk_, &QPushButton::clicked, this, &QDialog::accept);
    timer_ = new QTimer(this);
    timer_->setObjectName(u"Timer"_s);
    timer_->setInterval(SelfConfirmationMilliseconds);
    connect(timer_, &QTimer::timeout, this, &TSchabloneFm::TimerTimer);

    auto* bar = new QHBoxLayout;
    bar->addWidget(btnRotateLeft_);
    bar->addWidget(btnRotateRight_);
    bar->addStretch();
    bar->addWidget(btnOk_);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(8, 8, 8, 8);
    layout->addWidget(lbSchablonen_, 1);
    layout->addLayout(bar);
    resize(ClientArea);
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

void TSchabloneFm::SetTemplates(const QStringList& names) {
    lbSchablonen_->SetTexts(names);
}

int TSchabloneFm::SelectedTemplate() const {
    return lbSchablonen_->SelectedRow();
}

void TSchabloneFm::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (!event->spontaneous()) {
        if (const QWidget* owner = parentWidget()) {
            move(owner->frameGeometry().center() - rect().center());
        }
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
    lbSchablonen_->SelectRow(settings_.SchabloneBox());
    lbSchablonen_->setFocus();
    if (settings_.ImgRotateLeft()) {
        btnRotateLeft_->click();
    }
    if (settings_.ImgRotateRight()) {
        btnRotateRight_->click();
    }
    if (SelectedTemplate() >= 0) {
        timer_->start();
    }
}

bool TSchabloneFm::FormCloseQuery() const {
    return SelectedTemplate() >= 0;
}

/// Every way of closing a dialog ends here.
void TSchabloneFm::done(int result) {
    if (FormCloseQuery()) {
        timer_->stop();
        QDialog::done(result);
    }
}

void TSchabloneFm::RotateClick(const QToolButton& sender) {
    if (rotationHandler_) {
        rotationHandler_(sender.property(TagProperty).toInt() == TurnLeft ? +90 : -90);
    }
}

void TSchabloneFm::TimerTimer() {
    timer_->stop();
    btnOk_->click();
}

}  // namespace kadrona::dialogs
