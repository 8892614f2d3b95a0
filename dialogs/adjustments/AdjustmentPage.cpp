#include "dialogs/adjustments/AdjustmentPage.h"

#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QSlider>
#include <QSpinBox>

using namespace Qt::StringLiterals;

namespace kadrona::dialogs {

AdjustmentPage::AdjustmentPage(const std::vector<AdjustmentSlider>& sliders, QWidget* parent)
    : QWidget(parent) {
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(14, 12, 14, 12);
    grid->setHorizontalSpacing(14);
    grid->setVerticalSpacing(8);
    grid->setColumnStretch(1, 1);
    int row = 0;
    for (const AdjustmentSlider& slider : sliders) {
        AddSlider(*grid, row++, slider);
    }
    auto* reset = new QPushButton(u"Zurück&setzen"_s);
    reset->setObjectName(u"ResetButton"_s);
    reset->setAutoDefault(false);
    connect(reset, &QPushButton::clicked, this, &AdjustmentPage::Reset);
    grid->setRowStretch(row, 1);
    grid->addWidget(reset, row, 1, 1, 2, Qt::AlignRight | Qt::AlignBottom);
}

void AdjustmentPage::AddSlider(QGridLayout& grid, int row, const AdjustmentSlider& slider) {
    auto* box = new QSpinBox;
    box->setObjectName(slider.objectName);
    box->setAccessibleName(slider.label);
    box->setRange(slider.minimum, slider.maximum);
    box->setSuffix(slider.suffix);
    auto* bar = new QSlider(Qt::Horizontal);
    bar->setObjectName(slider.objectName + u"Slider"_s);
    bar->setAccessibleName(slider.label);
    bar->setRange(slider.minimum, slider.maximum);
    bar->setPageStep(10);
    // Nothing is filled up to a middle of 0.
    bar->setProperty("bipolar", slider.minimum < 0);
    connect(box, &QSpinBox::valueChanged, bar, &QSlider::setValue);
    connect(bar, &QSlider::valueChanged, box, &QSpinBox::setValue);
    connect(box, &QSpinBox::valueChanged, this, &AdjustmentPage::Changed);
    auto* label = new QLabel(slider.label);
    label->setBuddy(box);
    grid.addWidget(label, row, 0);
    grid.addWidget(bar, row, 1);
    grid.addWidget(box, row, 2);
    boxes_.push_back(box);
}

int AdjustmentPage::Value(size_t slider) const {
    return boxes_.at(slider)->value();
}

void AdjustmentPage::Reset() {
    for (QSpinBox* box : boxes_) {
        box->setValue(0);
    }
}

}  // namespace kadrona::dialogs
