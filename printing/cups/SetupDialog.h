#pragma once

#include <QDialog>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <vector>

#include "printing/PrinterLayer.h"
#include "printing/cups/service/DeviceMode.h"
#include "printing/cups/service/Driver.h"
#include "printing/cups/service/Queue.h"

class QLabel;
class QListWidget;
class QPushButton;
class QWindow;

namespace kadrona::printing::cups {

class FurtherOptions;
class OptionPanel;

/// The set-up dialog: the queues on the left, what the chosen one is set to on the right. Qt's own
/// (QPrintDialog) was weighed: it hands back only the usual options, none of the driver's. Object
/// names: "PrinterSetupDialog", "QueueList" (an item's user data is the queue's name),
/// "QueueNameLabel", "QueueDetailsLabel", "NoteLabel", "OkButton", "CancelButton" and those of
/// OptionPanel and FurtherOptions.
class SetupDialog : public QDialog {
    Q_OBJECT

 public:
    /// May bring the queue up to date. Throws platform::Error where the driver cannot be asked.
    using DriverSource = std::function<Driver(Queue&)>;

    /// `queues` is not empty. `current` is shown first where it is one of them, else the default
    /// queue with the options that it has by itself.
    SetupDialog(const std::vector<Queue>& queues, DriverSource drivers,
                const std::optional<PrinterChoice>& current);
    ~SetupDialog() override;

    /// Lists further queues.
    void AddQueues(const std::vector<Queue>& queues);

    /// Shows the dialog over a window, which may be null. True when it was confirmed.
    bool RunOver(QWindow* owner);

    /// What the dialog shows.
    PrinterChoice Choice() const;

 private:
    QWidget* BuildQueueList();
    QWidget* BuildOptions();
    QWidget* BuildNote();
    QWidget* BuildButtons();
    void Preselect(const std::optional<PrinterChoice>& current);
    Queue& ChosenQueue();
    const Queue& ChosenQueue() const;
    void ShowQueue();
    void ShowDetails();
    void ShowOptions();
    void ShowConflicts();
    void ShowNote(const QString& text);
    void MakeRoom();

    /// May grow while one of them is asked.
    std::deque<Queue> queues_;
    DriverSource drivers_;
    /// What the user has set of the queues that were shown, by name.
    std::map<QByteArray, DeviceMode> modes_;
    Driver driver_;

    QListWidget* queueList_;
    QLabel* queueName_;
    QLabel* queueDetails_;
    OptionPanel* panel_;
    FurtherOptions* further_;
    QLabel* note_;
    QWidget* noteRow_;
    QPushButton* ok_;
};

}  // namespace kadrona::printing::cups
