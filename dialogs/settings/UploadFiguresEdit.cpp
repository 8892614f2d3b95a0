#include "dialogs/settings/UploadFiguresEdit.h"

#include <QDoubleSpinBox>
#include <QGridLayout>
#include <QLabel>

using namespace Qt::StringLiterals;

namespace kadrona::dialogs {

namespace {

QDoubleSpinBox* NumberField(const QString& name, const QString& caption, int largest) {
    auto* field = new QDoubleSpinBox;
    field->setObjectName(name);
    field->setAccessibleName(caption);
    field->setDecimals(0);
    field->setRange(0, largest);
    field->setSpecialValueText(u"beliebig"_s);
    field->setAlignment(Qt::AlignRight);
    field->setKeyboardTracking(false);
    return field;
}

std::optional<int> End(const QDoubleSpinBox* field) {
    const int value = static_cast<int>(field->value());
    return value > 0 ? std::optional(value) : std::nullopt;
}

}  // namespace

UploadFiguresEdit::UploadFiguresEdit(QWidget* parent) : QWidget(parent) {
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins({});
    grid->addWidget(new QLabel(u"von"_s), 0, 1);
    grid->addWidget(new QLabel(u"bis"_s), 0, 2);
    width_ = AddRange(*grid, u"&Breite in Pixeln"_s, u"UploadWidth"_s, core::LongestUploadSide);
    height_ = AddRange(*grid, u"&Höhe in Pixeln"_s, u"UploadHeight"_s, core::LongestUploadSide);
    kilobytes_ = AddRange(*grid, u"&Größe in kB (1000 B)"_s, u"UploadKilobytes"_s,
                          core::MostUploadKilobytes);
    grid->setColumnStretch(1, 1);
    grid->setColumnStretch(2, 1);
}

UploadFiguresEdit::Range UploadFiguresEdit::AddRange(QGridLayout& grid, const QString& caption,
                                                     const QString& name, int largest) const {
    const QString plain = QString(caption).remove(u'&');
    const Range range{NumberField(name + u"From"_s, plain + u", von"_s, largest),
                      NumberField(name + u"To"_s, plain + u", bis"_s, largest)};
    auto* label = new QLabel(caption);
    label->setBuddy(range.least);
    const int row = grid.rowCount();
    grid.addWidget(label, row, 0);
    grid.addWidget(range.least, row, 1);
    grid.addWidget(range.most, row, 2);
    for (QDoubleSpinBox* field : {range.least, range.most}) {
        connect(field, &QDoubleSpinBox::valueChanged, this, &UploadFiguresEdit::Changed);
    }
    return range;
}

core::UploadFigures UploadFiguresEdit::Figures() const {
    const std::optional<int> least = End(kilobytes_.least);
    const std::optional<int> most = End(kilobytes_.most);
    return {{End(width_.least), End(width_.most)},
            {End(height_.least), End(height_.most)},
            core::KilobyteRange(least.value_or(0), most.value_or(0)),
            {}};
}

void UploadFiguresEdit::SetFigures(const core::UploadFigures& figures) {
    const QSignalBlocker quiet(this);
    const auto show = [](const Range& range, const core::PixelRange& pixels) {
        range.least->setValue(pixels.least.value_or(0));
        range.most->setValue(pixels.most.value_or(0));
    };
    show(width_, figures.width);
    show(height_, figures.height);
    const imaging::ByteRange& bytes = figures.bytes;
    kilobytes_.least->setValue(double(bytes.least) / core::BytesPerKilobyte);
    kilobytes_.most->setValue(
        bytes.most == imaging::ByteRange::NoEnd ? 0 : double(bytes.most) / core::BytesPerKilobyte);
}

}  // namespace kadrona::dialogs
