#include "dialogs/adjustments/ColourAdjustment.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QScopeGuard>
#include <QScreen>
#include <QShowEvent>
#include <QTabWidget>
#include <QVBoxLayout>

#include "dialogs/adjustments/AdjustmentPage.h"
#include "dialogs/adjustments/BeforeAfterView.h"
#include "dialogs/base/Buttons.h"
#include "dialogs/base/PageKeys.h"
#include "dialogs/base/WindowPlacement.h"
#include "imaging/tone/HueFilter.h"

using namespace Qt::StringLiterals;

namespace kadrona::dialogs {

namespace {

constexpr QSize DesignedColourSize(800, 800);

/// Null where nothing is adjusted, so that it costs nothing.
template <typename Adjustment>
imaging::PixelFilterPointer FilterUnlessNeutral(
    imaging::PixelFilterPointer (*make)(const Adjustment&), const Adjustment& adjustment) {
    return adjustment == Adjustment() ? nullptr : make(adjustment);
}

}  // namespace

ColourAdjustment::ColourAdjustment(QWidget* parent) : QDialog(parent) {
    setObjectName(u"ColourAdjustment"_s);
    setWindowTitle(u"Farben anpassen"_s);
    pages_ = new QTabWidget;
    pages_->setObjectName(u"Pages"_s);
    pages_->setAccessibleName(u"Art der Anpassung"_s);
    // On a small screen a shorter name says more than arrows that hide the last page.
    pages_->setElideMode(Qt::ElideRight);
    pages_->setUsesScrollButtons(false);
    TurnPagesByKeys(*pages_, *this);
    AddPages();
    column_ = new QVBoxLayout(this);
    column_->setContentsMargins(16, 14, 16, 14);
    column_->setSpacing(12);
    column_->addWidget(pages_);
    column_->addLayout(Buttons());
    resize(WithinScreen(*this, DesignedColourSize));
}

void ColourAdjustment::AddPages() {
    contrast_ = AddPage(
        u"ContrastPage"_s,
        new AdjustmentPage({{u"Kontrast"_s, u"Contrast"_s}, {u"Helligkeit"_s, u"Brightness"_s}}),
        u"Kontrast und Helligkeit"_s);
    hue_ = AddPage(u"HuePage"_s,
                   new AdjustmentPage({{u"Farbton"_s, u"Hue"_s, -180, 180, u"°"_s},
                                       {u"Sättigung"_s, u"Saturation"_s},
                                       {u"Helligkeit"_s, u"Lightness"_s}}),
                   u"Farbton, Sättigung, Helligkeit"_s);
    balance_ = AddPage(
        u"BalancePage"_s,
        new AdjustmentPage({{u"Rot"_s, u"Red"_s}, {u"Grün"_s, u"Green"_s}, {u"Blau"_s, u"Blue"_s}}),
        u"RGB-Balance"_s);
    equalisation_ = AddPage(u"EqualisationPage"_s,
                            new AdjustmentPage({{u"Stärke"_s, u"Equalisation"_s, 0, 100, u" %"_s}}),
                            u"Histogrammausgleich"_s);
}

QLayout* ColourAdjustment::Buttons() {
    auto* resetAll = new QPushButton(u"Alles &zurücksetzen"_s);
    resetAll->setObjectName(u"btnResetAll"_s);
    resetAll->setAutoDefault(false);
    connect(resetAll, &QPushButton::clicked, this, &ColourAdjustment::ResetAll);
    const auto [ok, cancel] = MakeAnswerButtons(*this, u"&Übernehmen"_s, u"&Abbrechen"_s);
    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(8);
    buttons->addWidget(resetAll);
    buttons->addStretch();
    buttons->addWidget(ok);
    buttons->addWidget(cancel);
    return buttons;
}

AdjustmentPage* ColourAdjustment::AddPage(const QString& name, AdjustmentPage* page,
                                          const QString& title) {
    page->setObjectName(name);
    pages_->addTab(page, title);
    connect(page, &AdjustmentPage::Changed, this, [this] {
        if (preview_ != nullptr) {
            preview_->SetFilter(Filter());
        }
    });
    return page;
}

controls::ModalResult ColourAdjustment::ShowEx(const imaging::Pixels& photo) {
    histogram_ = imaging::HistogramOf(photo);
    ResetAll();
    pages_->setCurrentIndex(0);
    BeforeAfterView preview;
    preview.SetPhoto(photo);
    column_->insertWidget(0, &preview, 1);
    preview_ = &preview;
    const auto release = qScopeGuard([this] { preview_ = nullptr; });
    return controls::ShowModal(*this);
}

void ColourAdjustment::ResetAll() {
    for (AdjustmentPage* page : {contrast_, hue_, balance_, equalisation_}) {
        page->Reset();
    }
}

imaging::PixelFilterPointer ColourAdjustment::Filter() const {
    using namespace imaging;
    const int equalisation = equalisation_->Value(0);
    return Sequence(
        {equalisation == 0 ? nullptr : EqualisationFilter(histogram_, equalisation),
         FilterUnlessNeutral<ContrastAdjustment>(
             ContrastFilter, {.contrast = contrast_->Value(0), .brightness = contrast_->Value(1)}),
         FilterUnlessNeutral<HueAdjustment>(HueFilter, {.hueDegrees = hue_->Value(0),
                                                        .saturation = hue_->Value(1),
                                                        .lightness = hue_->Value(2)}),
         FilterUnlessNeutral<BalanceAdjustment>(BalanceFilter, {.red = balance_->Value(0),
                                                                .green = balance_->Value(1),
                                                                .blue = balance_->Value(2)})});
}

void ColourAdjustment::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (!event->spontaneous()) {
        StandClearOfPhoto(*this);
    }
}

}  // namespace kadrona::dialogs
