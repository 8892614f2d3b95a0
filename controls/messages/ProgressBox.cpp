#include "controls/messages/ProgressBox.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QProgressBar>
#include <QProgressDialog>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace kadrona::controls {

namespace {

/// Of the bar; the numbers of an operation may be larger than a bar takes.
constexpr int Parts = 1000;
constexpr int LeastBoxWidth = 380;

}  // namespace

ProgressBox::ProgressBox(QWidget* parent, const QString& title)
    : dialog_(std::make_unique<QProgressDialog>(parent)) {
    dialog_->setObjectName(u"ProgressBox"_s);
    dialog_->setWindowTitle(title);
    auto* cancel = new QPushButton(u"Abbrechen"_s);
    cancel->setObjectName(u"Cancel"_s);
    dialog_->setCancelButton(cancel);
    auto* bar = new QProgressBar;
    bar->setTextVisible(false);  // it is lower than a line of text
    dialog_->setBar(bar);
    dialog_->setRange(0, Parts);
    dialog_->setWindowModality(Qt::ApplicationModal);
    dialog_->setMinimumWidth(LeastBoxWidth);
    dialog_->setAutoClose(false);
    dialog_->setAutoReset(false);
    dialog_->setMinimumDuration(400);
    dialog_->setValue(0);
}

ProgressBox::~ProgressBox() = default;

platform::Progress ProgressBox::Reporter() {
    return [this, shown = QElapsedTimer()](const QString& what, qint64 done, qint64 total) mutable {
        constexpr int FrameMilliseconds = 40;
        if (!shown.isValid() || shown.elapsed() >= FrameMilliseconds) {
            Show(what, done, total);
            shown.start();
        }
    };
}

/// A total of 0 is one that nobody knows: the bar then only moves.
void ProgressBox::Show(const QString& what, qint64 done, qint64 total) {
    if (dialog_->labelText() != what) {
        dialog_->setLabelText(what);
    }
    dialog_->setMaximum(total > 0 ? Parts : 0);
    dialog_->setValue(total > 0 ? static_cast<int>(Parts * done / total) : 0);
    if (dialog_->isVisible()) {
        QCoreApplication::processEvents();
    }
    if (dialog_->wasCanceled()) {
        throw platform::Cancelled();
    }
}

}  // namespace kadrona::controls
