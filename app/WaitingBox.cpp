#include "app/WaitingBox.h"

#include <unistd.h>

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QSocketNotifier>
#include <array>
#include <csignal>

#include "controls/messages/MessageBoxes.h"
#include "platform/SilenceWatch.h"

using namespace Qt::StringLiterals;

namespace kadrona::app {

WaitingBox::WaitingBox(pid_t program, const QString& text)
    : program_(program),
      box_(controls::MakeWarning(
          text + u"\n\nWird das Programm beendet, geht verloren, was nicht gespeichert ist."_s)) {
    // Over the window, which is not ours and may not be painted.
    box_->setWindowFlag(Qt::WindowStaysOnTopHint);
    box_->setModal(false);
    QPushButton* wait = box_->addButton(u"&Weiter warten"_s, QMessageBox::RejectRole);
    wait->setObjectName(u"WaitButton"_s);
    box_->setDefaultButton(wait);
    box_->setEscapeButton(wait);
    QPushButton* end = box_->addButton(u"Programm &beenden"_s, QMessageBox::DestructiveRole);
    end->setObjectName(u"EndButton"_s);
    connect(end, &QPushButton::clicked, this, [this] { EndProgram(); });
    auto* answers = new QSocketNotifier(STDIN_FILENO, QSocketNotifier::Read, this);
    connect(answers, &QSocketNotifier::activated, this, [this] { TakeAnswers(); });
    silence_.setSingleShot(true);
    silence_.setInterval(platform::SilenceWatch::Patience);
    connect(&silence_, &QTimer::timeout, box_.get(), &QMessageBox::show);
    QApplication::setQuitOnLastWindowClosed(false);
    box_->show();
}

WaitingBox::~WaitingBox() = default;

void WaitingBox::TakeAnswers() {
    std::array<char, 64> taken{};
    if (read(STDIN_FILENO, taken.data(), taken.size()) <= 0) {
        QApplication::quit();
        return;
    }
    box_->hide();
    silence_.start();
}

/// It may have ended by itself meanwhile, and its number be another's.
void WaitingBox::EndProgram() const {
    if (getppid() == program_) {
        kill(program_, SIGKILL);
    }
}

}  // namespace kadrona::app
