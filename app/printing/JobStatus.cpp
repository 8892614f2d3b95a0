#include "app/printing/JobStatus.h"

#include <QEvent>
#include <QLabel>
#include <QStatusBar>
#include <algorithm>

#include "controls/fields/ElidedLabel.h"
#include "controls/theme/Tone.h"
#include "platform/HarmlessText.h"

using namespace Qt::StringLiterals;

namespace kadrona::app {

using printing::JobState;

namespace {

constexpr std::chrono::seconds ShownWhenDone{8};
/// The window must not grow with a long text.
constexpr int MostWidth = 330;

}  // namespace

JobStatus::JobStatus(QStatusBar& statusBar, QObject* parent)
    : QObject(parent), label_(new controls::ElidedLabel(&statusBar)) {
    label_->setObjectName(u"JobStatus"_s);
    label_->installEventFilter(this);
    statusBar.addPermanentWidget(label_);
    label_->hide();
    leaving_.setSingleShot(true);
    connect(&leaving_, &QTimer::timeout, label_, &QWidget::hide);
}

void JobStatus::Follow(const QString& printer, std::unique_ptr<printing::JobWatch> watch) {
    printer_ = platform::HarmlessLine(printer);
    watch_ = std::move(watch);
    Show({JobState::Stage::Waiting, u"Druckauftrag gesendet"_s});
    if (watch_) {
        connect(watch_.get(), &printing::JobWatch::Changed, this, &JobStatus::Show);
    } else {
        leaving_.start(ShownWhenDone);
    }
}

void JobStatus::Show(const JobState& state) {
    const bool isBad =
        state.stage == JobState::Stage::Held || state.stage == JobState::Stage::Failed;
    controls::SetTone(*label_, isBad ? controls::Tone::Bad : controls::Tone::Plain);
    const QString text = u"Drucker „%1“: %2"_s.arg(printer_, state.text);
    label_->setMinimumWidth(0);  // else the hint is no smaller
    label_->setText(text);
    // The path and the template give way to what is new.
    label_->setMinimumWidth(std::min(label_->sizeHint().width(), MostWidth));
    label_->setToolTip(Qt::convertFromPlainText(text));
    label_->show();
    leaving_.stop();
    if (state.IsOver() && !isBad) {
        leaving_.start(ShownWhenDone);
    }
}

/// A click takes the text away until there is something new.
bool JobStatus::eventFilter(QObject* watched, QEvent* event) {
    if (watched == label_ && event->type() == QEvent::MouseButtonRelease) {
        label_->hide();
    }
    return QObject::eventFilter(watched, event);
}

}  // namespace kadrona::app
