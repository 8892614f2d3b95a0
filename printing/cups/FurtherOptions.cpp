#include "printing/cups/FurtherOptions.h"

#include <QFormLayout>
#include <QLabel>
#include <QScrollArea>
#include <QToolButton>
#include <QVBoxLayout>

#include "printing/cups/OptionBox.h"

using namespace Qt::StringLiterals;

namespace kadrona::printing::cups {

FurtherOptions::FurtherOptions(QWidget* parent)
    : QWidget(parent), button_(new QToolButton), area_(new QScrollArea) {
    button_->setObjectName(u"FurtherOptionsButton"_s);
    button_->setCheckable(true);
    button_->setAutoRaise(true);
    button_->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    button_->setArrowType(Qt::RightArrow);
    area_->setObjectName(u"FurtherOptionsArea"_s);
    area_->setWidgetResizable(true);
    area_->setFocusPolicy(Qt::NoFocus);  // it follows the box that has it
    area_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area_->hide();
    connect(button_, &QToolButton::toggled, this, [this](bool open) {
        button_->setArrowType(open ? Qt::DownArrow : Qt::RightArrow);
        area_->setVisible(open);
        Q_EMIT Toggled();
    });

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(button_);
    layout->addWidget(area_);
}

void FurtherOptions::ShowMode(const Driver& driver, DeviceMode& mode,
                              const std::function<bool(const QByteArray&)>& isShownElsewhere) {
    auto* list = new QWidget;
    auto* form = new QFormLayout(list);
    form->setHorizontalSpacing(16);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    for (const DriverOption& option : driver.Options()) {
        if (isShownElsewhere(option.keyword)) {
            continue;
        }
        auto* box = new OptionBox;
        box->setObjectName(QString::fromUtf8(option.keyword));
        box->ShowOption(option, mode);
        auto* caption = new QLabel(option.label);
        caption->setTextFormat(Qt::PlainText);  // whoever wrote the driver wrote this
        caption->setBuddy(box);
        form->addRow(caption, box);
        connect(box, &QComboBox::activated, this, [this, box, &mode] {
            box->Store(mode);
            Q_EMIT ModeChanged();
        });
    }
    constexpr int MostHeight = 190;
    area_->setFixedHeight(qMin(form->sizeHint().height() + 2 * area_->frameWidth(), MostHeight));
    button_->setText(u"&Weitere Einstellungen des Treibers (%1)"_s.arg(form->rowCount()));
    setVisible(form->rowCount() > 0);
    area_->setWidget(list);  // the one before it is deleted
}

}  // namespace kadrona::printing::cups
