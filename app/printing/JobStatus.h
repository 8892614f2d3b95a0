#pragma once

#include <QObject>
#include <QString>
#include <QTimer>
#include <memory>

#include "printing/JobWatch.h"

class QLabel;
class QStatusBar;

namespace kadrona::app {

/// Tells in the status bar how the last print job fares: "Fotodrucker: angehalten: Kein Papier". A
/// job that is printed leaves the bar after a while, one that failed stays until it is clicked or
/// another follows. Object name of the label: "JobStatus".
class JobStatus : public QObject {
    Q_OBJECT

 public:
    /// The label becomes a child of `statusBar`.
    JobStatus(QStatusBar& statusBar, QObject* parent);

    /// `watch` may be null: then it only tells that the job was sent.
    void Follow(const QString& printer, std::unique_ptr<printing::JobWatch> watch);

    bool eventFilter(QObject* watched, QEvent* event) override;

 private:
    void Show(const printing::JobState& state);

    QLabel* label_;
    QTimer leaving_;
    QString printer_;
    std::unique_ptr<printing::JobWatch> watch_;
};

}  // namespace kadrona::app
