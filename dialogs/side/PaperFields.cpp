#include "dialogs/side/PaperFields.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QLabel>
#include <QScopeGuard>

#include "core/sheet/PaperLayout.h"
#include "core/sheet/PaperSize.h"

using namespace Qt::StringLiterals;

namespace kadrona::dialogs {

namespace {

/// In the order of core::CuttingMarks.
const QStringList MarkNames{u"keine"_s, u"Ecken"_s, u"Linien"_s, u"Rahmen"_s};

/// Each at the number by which profiles keep it.
QStringList PaperNames() {
    QStringList names{u"wie Anzahl"_s};
    for (const core::NamedPaper& paper : core::NamedPapers) {
        names.append(paper.title);
    }
    names.insert(core::OwnPaper, u"Eigene Größe"_s);
    return names;
}

}  // namespace

PaperFields::PaperFields(QWidget* parent) : QWidget(parent), form_(new QFormLayout(this)) {
    form_->setContentsMargins({});
    form_->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    paper_ = Choice("SheetPaper", u"Pap&ier"_s, PaperNames());
    width_ = Millimetres("SheetPaperWidth", u"Brei&te"_s, 10, 2000);
    height_ = Millimetres("SheetPaperHeight", u"&Höhe"_s, 10, 2000);
    fill_ = Switch("SheetFill", u"Blatt &füllen"_s);
    constexpr int MostMillimetres = core::WidestGap / core::MicrometresPerMillimetre;
    gap_ = Millimetres("SheetGap", u"&Abstand"_s, 0, MostMillimetres);
    edge_ = Millimetres("SheetEdge", u"&Rand"_s, 0, 50);
    marks_ = Choice("SheetMarks", u"S&chneidemarken"_s, MarkNames);
    text_ = Switch("SheetText", u"Name, Dat&um und Dokument am Rand"_s);
    gridGapInMillimetres_ = Switch("GridGapInMillimetres", u"Bildabstand in &Millimetern"_s);
    gridGap_ = Millimetres("GridGap", u"Bildabs&tand"_s, 0, MostMillimetres);
    ShowWhatCounts();
}

QDoubleSpinBox* PaperFields::Millimetres(const char* name, const QString& label, double least,
                                         double most) {
    auto* field = new QDoubleSpinBox;
    field->setObjectName(QString::fromLatin1(name));
    field->setAccessibleName(QString(label).remove(u'&'));
    field->setDecimals(1);
    field->setSingleStep(0.1);
    field->setRange(least, most);
    field->setSuffix(u" mm"_s);
    field->setAlignment(Qt::AlignRight);
    form_->addRow(label, field);
    connect(field, &QDoubleSpinBox::valueChanged, this, &PaperFields::Follow);
    return field;
}

QCheckBox* PaperFields::Switch(const char* name, const QString& text) {
    auto* box = new QCheckBox(text);
    box->setObjectName(QString::fromLatin1(name));
    form_->addRow(box);
    connect(box, &QCheckBox::toggled, this, &PaperFields::Follow);
    return box;
}

QComboBox* PaperFields::Choice(const char* name, const QString& label, const QStringList& items) {
    auto* box = new QComboBox;
    box->setObjectName(QString::fromLatin1(name));
    box->setAccessibleName(QString(label).remove(u'&'));
    box->addItems(items);
    form_->addRow(label, box);
    connect(box, &QComboBox::currentIndexChanged, this, &PaperFields::Follow);
    return box;
}

void PaperFields::ShowWhatCounts() {
    const bool onPaper = paper_->currentIndex() > core::NoPaper;
    const bool ownSize = paper_->currentIndex() == core::OwnPaper;
    for (QDoubleSpinBox* side : {width_, height_}) {
        form_->setRowVisible(side, ownSize);
    }
    const std::initializer_list<QWidget*> ofPaper{fill_, gap_, edge_, marks_, text_};
    for (QWidget* field : ofPaper) {
        form_->setRowVisible(field, onPaper);
    }
    form_->setRowVisible(gridGapInMillimetres_, !onPaper);
    form_->setRowVisible(gridGap_, !onPaper && gridGapInMillimetres_->isChecked());
}

void PaperFields::Follow() {
    ShowWhatCounts();
    if (!copying_) {
        Q_EMIT Changed();
    }
}

void PaperFields::CopyFrom(const PaperFields& other) {
    bool differs = false;
    copying_ = true;
    const auto done = qScopeGuard([&] { copying_ = false; });
    const auto copyNumber = [&](QDoubleSpinBox* field, const QDoubleSpinBox* from) {
        // Setting the same value again would rewrite what the user is typing: "2," becomes "2,0",
        // which takes no further decimal.
        if (field->value() != from->value()) {
            differs = true;
            field->setValue(from->value());
        }
    };
    const auto copySwitch = [&](QCheckBox* box, const QCheckBox* from) {
        differs = differs || box->isChecked() != from->isChecked();
        box->setChecked(from->isChecked());
    };
    const auto copyChoice = [&](QComboBox* box, const QComboBox* from) {
        differs = differs || box->currentIndex() != from->currentIndex();
        box->setCurrentIndex(from->currentIndex());
    };
    copyChoice(paper_, other.paper_);
    copyNumber(width_, other.width_);
    copyNumber(height_, other.height_);
    copySwitch(fill_, other.fill_);
    copyNumber(gap_, other.gap_);
    copyNumber(edge_, other.edge_);
    copyChoice(marks_, other.marks_);
    copySwitch(text_, other.text_);
    copySwitch(gridGapInMillimetres_, other.gridGapInMillimetres_);
    copyNumber(gridGap_, other.gridGap_);
    if (differs) {
        Q_EMIT Changed();
    }
}

}  // namespace kadrona::dialogs
