#include "dialogs/adjustments/RotateDialog.h"

#include <QDoubleSpinBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScopeGuard>
#include <QShowEvent>
#include <QSignalBlocker>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>

#include "dialogs/adjustments/RotationPreview.h"
#include "dialogs/base/Buttons.h"
#include "dialogs/base/WindowPlacement.h"

using namespace Qt::StringLiterals;

namespace kadrona::dialogs {

namespace {

/// Takes a comma and a point as the decimal sign, whatever the locale.
class AngleBox : public QDoubleSpinBox {
 public:
    using QDoubleSpinBox::QDoubleSpinBox;

    QValidator::State validate(QString& text, int& position) const override {
        QString local = InLocale(text);
        return QDoubleSpinBox::validate(local, position);
    }
    double valueFromText(const QString& text) const override {
        return QDoubleSpinBox::valueFromText(InLocale(text));
    }

 private:
    QString InLocale(QString text) const {
        const QString sign = locale().decimalPoint();
        return text.replace(u'.', sign).replace(u',', sign);
    }
};

}  // namespace

TfmRotateDlg::TfmRotateDlg(QWidget* parent) : QDialog(parent) {
    setObjectName(u"fmRotateDlg"_s);
    setWindowTitle(u"Bild drehen"_s);
    preview_ = new RotationPreview;
    preview_->setObjectName(u"Preview"_s);
    BuildAngle();
    auto* hint = new QLabel(
        u"Mit der Maus drehen, mit der rechten Taste verschieben. Mausrad und Pfeiltasten drehen "
        u"in feinen Schritten."_s);
    hint->setWordWrap(true);

    auto* below = new QVBoxLayout;
    below->setContentsMargins(16, 10, 16, 14);
    below->setSpacing(10);
    below->addWidget(hint);
    below->addLayout(AngleAndButtons());
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->setSpacing(0);
    layout->addWidget(preview_, 0, Qt::AlignHCenter);
    layout->addLayout(below);
    layout->setSizeConstraint(QLayout::SetFixedSize);
}

void TfmRotateDlg::BuildAngle() {
    angle_ = new AngleBox;
    angle_->setObjectName(u"Angle"_s);
    angle_->setAccessibleName(u"Winkel"_s);
    angle_->setRange(-180, 180);
    angle_->setDecimals(1);
    angle_->setSingleStep(0.1);
    angle_->setSuffix(u"°"_s);
    angle_->setWrapping(true);
    // The box shows the angle rounded; only what is typed there is taken from it, and nothing is
    // written over what is being typed.
    connect(preview_, &RotationPreview::DegreesChanged, this, [this](double degrees) {
        if (std::lround(degrees * 10) != std::lround(angle_->value() * 10)) {
            const QSignalBlocker blocker(angle_);
            angle_->setValue(degrees);
        }
    });
    connect(angle_, &QDoubleSpinBox::valueChanged, preview_, &RotationPreview::SetDegrees);
}

QLayout* TfmRotateDlg::AngleAndButtons() {
    const auto [ok, cancel] = MakeAnswerButtons(*this, u"Ü&bernehmen"_s, u"&Abbrechen"_s);
    auto* label = new QLabel(u"&Winkel"_s);
    label->setBuddy(angle_);
    auto* row = new QHBoxLayout;
    row->setSpacing(8);
    row->addWidget(label);
    row->addWidget(angle_);
    row->addStretch();
    row->addWidget(ok);
    row->addWidget(cancel);
    return row;
}

/// A small screen gets a smaller preview.
void TfmRotateDlg::FitPreview() {
    ensurePolished();
    const int others = sizeHint().height() - preview_->height();
    const int room = WithinScreen(*this, {width(), RotationPreview::LargestSide + others}).height();
    preview_->SetSide(std::max(room - others, 1));
}

std::optional<double> TfmRotateDlg::ShowEx(const imaging::Pixels& preview) {
    FitPreview();
    preview_->SetPicture(preview.ToImage());
    const auto clean = qScopeGuard([this] { preview_->SetPicture(QImage()); });
    if (exec() != Accepted) {
        return std::nullopt;
    }
    return preview_->Degrees();
}

void TfmRotateDlg::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (!event->spontaneous()) {
        StandClearOfPhoto(*this);
        preview_->setFocus(Qt::OtherFocusReason);
    }
}

}  // namespace kadrona::dialogs
