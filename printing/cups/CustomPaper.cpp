#include "printing/cups/CustomPaper.h"

#include <QDoubleSpinBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QSignalBlocker>

using namespace Qt::StringLiterals;

namespace kadrona::printing::cups {

CustomPaper::CustomPaper(QWidget* parent)
    : QWidget(parent), width_(new QDoubleSpinBox), height_(new QDoubleSpinBox) {
    width_->setObjectName(u"CustomWidthBox"_s);
    width_->setAccessibleName(u"Breite"_s);
    height_->setObjectName(u"CustomHeightBox"_s);
    height_->setAccessibleName(u"Höhe"_s);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins({});
    row->addWidget(width_, 1);
    row->addWidget(new QLabel(u"×"_s));
    row->addWidget(height_, 1);
    for (QDoubleSpinBox* box : {width_, height_}) {
        box->setDecimals(1);
        box->setSuffix(u" mm"_s);
        connect(box, &QDoubleSpinBox::valueChanged, this, &CustomPaper::Changed);
    }
}

void CustomPaper::Show(const CustomSizes& limits, QSizeF millimetres) {
    const auto show = [](QDoubleSpinBox& box, double least, double most, double value) {
        const QSignalBlocker blocker(box);
        box.setRange(least, most);
        box.setValue(value);
    };
    show(*width_, limits.least.width(), limits.most.width(), millimetres.width());
    show(*height_, limits.least.height(), limits.most.height(), millimetres.height());
}

QByteArray CustomPaper::PaperName() const {
    return "Custom." + QByteArray::number(width_->value(), 'f', 1) + 'x' +
           QByteArray::number(height_->value(), 'f', 1) + "mm";
}

}  // namespace kadrona::printing::cups
