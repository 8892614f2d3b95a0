#pragma once

#include <sys/types.h>

#include <QObject>
#include <QTimer>
#include <memory>

class QMessageBox;

namespace kadrona::app {

/// Says what the program waits for, in a process of its own, as platform::SilenceWatch asks for it:
/// hidden for a while by each byte on the standard input; at its end the application ends. The
/// program can be ended from here, for it no longer listens to anybody else.
class WaitingBox : public QObject {
    Q_OBJECT

 public:
    WaitingBox(pid_t program, const QString& text);
    ~WaitingBox() override;

 private:
    void TakeAnswers();
    void EndProgram() const;

    pid_t program_;
    std::unique_ptr<QMessageBox> box_;
    QTimer silence_;
};

}  // namespace kadrona::app
