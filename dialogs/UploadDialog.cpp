#include "dialogs/UploadDialog.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QTimer>
#include <QVBoxLayout>
#include <algorithm>

#include "controls/messages/ActionGuard.h"
#include "controls/messages/WaitCursor.h"
#include "controls/theme/Tone.h"
#include "dialogs/base/ScrolledPage.h"
#include "dialogs/base/WindowPlacement.h"
#include "dialogs/settings/UploadFiguresEdit.h"

using namespace Qt::StringLiterals;

namespace kadrona::dialogs {

namespace {

constexpr int DelayMilliseconds = 250;
constexpr int FiguresWidth = 340;
constexpr QSize LargestPicture(640, 720);
constexpr QSize SmallestPicture(200, 160);
constexpr int ColumnGap = 16;

QLabel* ResultLabel(const QString& name) {
    auto* label = new QLabel;
    label->setObjectName(name);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return label;
}

/// Which letters stand behind published figures.
QString EvidenceText(const QString& letters) {
    QStringList sources;
    for (const auto& [letter, source] : {std::pair{u'O', u"Internetseite der Behörde"_s},
                                         {u'T', u"Abschrift eines Dokuments der Behörde"_s},
                                         {u'S', u"Angaben aus zweiter Hand"_s}}) {
        if (letters.contains(letter)) {
            sources << source;
        }
    }
    return sources.isEmpty() ? QString() : u"Quelle: "_s + sources.join(u", "_s);
}

}  // namespace

UploadDialog::UploadDialog(QWidget* parent) : QDialog(parent) {
    setObjectName(u"UploadFileFm"_s);
    setWindowTitle(u"Datei für Online-Antrag"_s);
    delay_ = new QTimer(this);
    delay_->setSingleShot(true);
    delay_->setInterval(DelayMilliseconds);
    auto* buttons = new QDialogButtonBox;
    save_ = buttons->addButton(u"&Speichern"_s, QDialogButtonBox::AcceptRole);
    save_->setObjectName(u"btnSave"_s);
    save_->setDefault(true);
    QPushButton* cancel = buttons->addButton(u"&Abbrechen"_s, QDialogButtonBox::RejectRole);
    cancel->setObjectName(u"btnCancel"_s);
    cancel->setAutoDefault(false);  // Return in a field never gives up, also where nothing fits

    BuildPicture();
    figures_ = new ScrolledPage(BuildFigures());
    figures_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    auto* columns = new QHBoxLayout;
    columns->setSpacing(ColumnGap);
    columns->addWidget(scrolled_, 1);
    columns->addWidget(figures_);
    // The verdict stays in sight, whatever has to be scrolled.
    auto* verdict = new QVBoxLayout;
    verdict->addWidget(state_);
    verdict->addWidget(warning_);
    auto* foot = new QHBoxLayout;
    foot->addLayout(verdict, 1);
    foot->addWidget(buttons, 0, Qt::AlignBottom);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(16, 14, 16, 14);
    layout->addLayout(columns, 1);
    layout->addLayout(foot);
    ConnectControls(*buttons);
}

void UploadDialog::ConnectControls(const QDialogButtonBox& buttons) {
    const auto make = [this] { controls::Guarded(this, [this] { Make(); }); };
    connect(delay_, &QTimer::timeout, this, make);
    // The button to save stays as it is, so that Tab out of the last field leads to it.
    connect(edit_, &UploadFiguresEdit::Changed, delay_, qOverload<>(&QTimer::start));
    connect(ownFigures_, &QRadioButton::toggled, this, [this, make](bool own) {
        edit_->setEnabled(own);
        make();
    });
    connect(&buttons, &QDialogButtonBox::accepted, this, &UploadDialog::accept);
    connect(&buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

void UploadDialog::BuildPicture() {
    picture_ = new QLabel;
    picture_->setObjectName(u"Picture"_s);
    picture_->setAlignment(Qt::AlignCenter);
    scrolled_ = new QScrollArea;
    scrolled_->setWidget(picture_);
    scrolled_->setWidgetResizable(true);
    scrolled_->setFocusPolicy(Qt::NoFocus);  // what is chosen stands beside it
    scrolled_->setAccessibleName(u"Die Datei, Pixel auf Pixel"_s);
    // The face, not the upper left corner.
    for (QScrollBar* bar : {scrolled_->horizontalScrollBar(), scrolled_->verticalScrollBar()}) {
        connect(bar, &QScrollBar::rangeChanged, bar,
                [bar](int first, int last) { bar->setValue((first + last) / 2); });
    }
}

QWidget* UploadDialog::BuildFigures() {
    templateFigures_ = new QRadioButton(u"&Vorgaben der Schablone"_s);
    templateFigures_->setObjectName(u"TemplateFigures"_s);
    evidence_ = ResultLabel(u"Evidence"_s);
    ownFigures_ = new QRadioButton(u"&Eigene Werte"_s);
    ownFigures_->setObjectName(u"OwnFigures"_s);
    edit_ = new UploadFiguresEdit;
    pixels_ = ResultLabel(u"Pixels"_s);
    quality_ = ResultLabel(u"Quality"_s);
    bytes_ = ResultLabel(u"Bytes"_s);
    state_ = ResultLabel(u"State"_s);
    warning_ = ResultLabel(u"Warning"_s);
    warning_->setText(u"! Das Foto hat weniger Pixel als die Datei und wird vergrößert."_s);
    controls::SetTone(*warning_, controls::Tone::Warning);
    auto* result = new QFormLayout;
    result->addRow(u"Bild"_s, pixels_);
    result->addRow(u"Qualität"_s, quality_);
    result->addRow(u"Datei"_s, bytes_);

    auto* side = new QWidget;
    auto* column = new QVBoxLayout(side);
    column->setContentsMargins({});
    column->addWidget(templateFigures_);
    column->addWidget(evidence_);
    column->addSpacing(8);
    column->addWidget(ownFigures_);
    column->addWidget(edit_);
    column->addSpacing(16);
    column->addLayout(result);
    column->addStretch();
    return side;
}

controls::ModalResult UploadDialog::ShowEx(core::UploadRequest request, const QString& templateName,
                                           const Choice& choice) {
    published_ = request.figures;
    request_ = std::move(request);
    const QString source = EvidenceText(published_.evidence);
    evidence_->setText(templateName + u": "_s + core::UploadFiguresText(published_) +
                       (source.isEmpty() ? QString() : u'\n' + source));
    {
        const QSignalBlocker quiet(ownFigures_);
        (choice.own ? ownFigures_ : templateFigures_)->setChecked(true);
    }
    edit_->SetFigures(choice.figures.SameAs({}) ? published_ : choice.figures);
    edit_->setEnabled(choice.own);
    FitFigures();
    Make();
    FitToScreen(*this);
    const controls::ModalResult result = controls::ShowModal(*this);
    delay_->stop();
    return result;
}

/// The fields do not wrap, and how wide they are is known only with the letters of the screen.
void UploadDialog::FitFigures() {
    ensurePolished();
    for (QWidget* part : figures_->findChildren<QWidget*>()) {
        part->ensurePolished();  // a style sheet gives no sizes before
    }
    edit_->layout()->invalidate();
    figures_->widget()->setFixedWidth(std::max(FiguresWidth, edit_->minimumSizeHint().width()));
    figures_->setFixedWidth(figures_->sizeHint().width());
}

UploadDialog::Choice UploadDialog::Chosen() const {
    return {ownFigures_->isChecked(), edit_->Figures()};
}

void UploadDialog::Make() {
    const controls::WaitCursor wait;
    delay_->stop();
    made_ = false;
    request_.figures = ownFigures_->isChecked() ? edit_->Figures() : published_;
    file_ = core::MakeUploadFile(request_);
    made_ = true;
    ShowFile();
}

/// Nothing is saved that was not seen.
void UploadDialog::accept() {
    if (delay_->isActive() || !made_) {
        controls::Guarded(this, [this] { Make(); });
        return;
    }
    QDialog::accept();
}

/// What the screen leaves beside the figures and above the verdict.
QSize UploadDialog::RoomForPicture() {
    ensurePolished();
    const QMargins margins = layout()->contentsMargins();
    const int foot = save_->sizeHint().height() + 3 * fontMetrics().lineSpacing();
    const QSize around(margins.left() + margins.right() + ColumnGap + figures_->width(),
                       margins.top() + margins.bottom() + layout()->spacing() + foot);
    return WithinScreen(*this, QSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX)) - around;
}

void UploadDialog::ShowFile() {
    QPixmap pixmap = QPixmap::fromImage(QImage::fromData(file_.bytes, "jpg"));
    pixmap.setDevicePixelRatio(devicePixelRatioF());
    picture_->setPixmap(pixmap);
    const QSize shown = pixmap.deviceIndependentSize().toSize();
    // While the dialog is hidden the scrolled area is not told, and keeps the bars of the file
    // before.
    picture_->resize(shown);
    scrolled_->setMinimumSize((shown + QSize(4, 4))
                                  .boundedTo(LargestPicture)
                                  .boundedTo(RoomForPicture())
                                  .expandedTo(SmallestPicture));
    if (isVisible()) {
        layout()->activate();  // a larger picture makes the window grow
        MoveOntoScreen(*this);
    }

    const QLocale german(QLocale::German);
    pixels_->setText(u"%1 x %2 Pixel, %3 dpi"_s.arg(file_.size.width())
                         .arg(file_.size.height())
                         .arg(file_.resolution.value));
    quality_->setText(u"%1 von 100, %2"_s.arg(file_.quality)
                          .arg(file_.chroma == imaging::ChromaSampling::Full
                                   ? u"alle Farben (4:4:4)"_s
                                   : u"Farben halb so fein (4:2:0)"_s));
    bytes_->setText(german.toString(file_.bytes.size()) + u" Bytes"_s);
    warning_->setVisible(file_.enlarged);
    ShowVerdict();
}

/// Where nothing is asked for, nothing is met.
void UploadDialog::ShowVerdict() {
    using controls::Tone;
    const bool met = file_.shortfall.isEmpty();
    save_->setEnabled(met);
    if (!met) {
        state_->setText(u"✗ "_s + file_.shortfall);
        controls::SetTone(*state_, Tone::Bad);
    } else if (request_.figures.SameAs({})) {
        state_->setText(u"! Ohne Vorgaben: Sehen Sie nach, was das Portal annimmt."_s);
        controls::SetTone(*state_, Tone::Warning);
    } else {
        state_->setText(u"✓ Die Datei hält die Vorgaben ein."_s);
        controls::SetTone(*state_, Tone::Good);
    }
}

}  // namespace kadrona::dialogs
