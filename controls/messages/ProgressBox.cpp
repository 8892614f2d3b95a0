#include "controls/messages/ProgressBox.h"

#include <QCoreApplication>
#include <QProgressBar>
#include <QProgressDialog>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace kadrona::controls {

namespace {

/// What is over sooner is not shown.
constexpr int ShownAfterMilliseconds = 400;

}  // namespace

std::unique_ptr<QProgressDialog> MakeProgressDialog(const QString& name, const QString& title,
                                                    QWidget* parent) {
    constexpr int LeastWidth = 380;
    auto dialog = std::make_unique<QProgressDialog>(parent);
    dialog->setObjectName(name);
    dialog->setWindowTitle(title);
    auto* cancel = new QPushButton(u"Abbrechen"_s);
    cancel->setObjectName(u"Cancel"_s);
    // With the button that it is made with goes that one's shortcut: of two nobody hears Escape.
    dialog->setCancelButton(nullptr);
    dialog->setCancelButton(cancel);
    auto* bar = new QProgressBar;
    bar->setTextVisible(false);  // it is lower than a line of text
    dialog->setBar(bar);
    dialog->setRange(0, ProgressParts);
    dialog->setWindowModality(Qt::ApplicationModal);
    dialog->setMinimumWidth(LeastWidth);
    dialog->setAutoClose(false);
    dialog->setAutoReset(false);
    return dialog;
}

ProgressBox::ProgressBox(QWidget* parent, const QString& title)
    : dialog_(MakeProgressDialog(u"ProgressBox"_s, title, parent)) {
    dialog_->setMinimumDuration(ShownAfterMilliseconds);
    dialog_->setValue(0);
    since_.start();
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
    dialog_->setMaximum(total > 0 ? ProgressParts : 0);
    dialog_->setValue(total > 0 ? static_cast<int>(ProgressParts * done / total) : 0);
    // The dialog itself waits until it can tell how long it will take, and here nobody can.
    if (total <= 0 && since_.elapsed() >= ShownAfterMilliseconds) {
        dialog_->show();
    }
    if (dialog_->isVisible()) {
        QCoreApplication::processEvents();
    }
    if (dialog_->wasCanceled()) {
        throw platform::Cancelled();
    }
}

}  // namespace kadrona::controls
