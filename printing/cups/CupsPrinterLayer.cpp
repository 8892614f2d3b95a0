#include "printing/cups/CupsPrinterLayer.h"

#include <algorithm>

#include "platform/HarmlessText.h"
#include "printing/cups/QueueChoice.h"
#include "printing/cups/SetupDialog.h"
#include "printing/cups/service/AnnouncedPrinters.h"
#include "printing/cups/service/Job.h"
#include "printing/cups/service/JobFollower.h"
#include "printing/cups/service/Question.h"
#include "printing/cups/service/StateReasons.h"

using namespace Qt::StringLiterals;

namespace kadrona::printing::cups {

namespace {

/// Lets `step` name only the reason of what fails, and puts the printer's name before it.
template <typename Step>
auto NamingPrinter(const QString& printer, const Step& step) {
    try {
        return step();
    } catch (const platform::Error& error) {
        throw PrinterError(u"Drucker „%1“: %2"_s.arg(printer, error.Text()));
    }
}

/// The queue as it is now; that of an announced printer is made where it is not ready. `mayMake`
/// decides on the address that such a queue has now: another account may have written it, or have
/// made a queue of that name.
Queue ReadyQueue(const Connection& connection, const Queue& known,
                 const std::function<bool(const Queue& queue)>& mayMake) {
    std::optional<Queue> found = FindQueue(connection, known.name);
    if (found && !found->isAnnounced) {
        return *std::move(found);
    }
    if (!found && !known.isAnnounced) {
        throw ServiceFailure(u"Der Drucker ist nicht mehr vorhanden."_s,
                             IPP_STATUS_ERROR_NOT_FOUND);
    }
    const Queue& announced = found ? *found : known;
    if (!mayMake(announced)) {
        throw ServiceFailure(u"Diesen Drucker im Netz haben Sie noch nicht gewählt."_s);
    }
    // The service asks an announced printer what it can do, at times in vain.
    return found && found->acceptsJobs ? *std::move(found) : MadeQueue(connection, announced);
}

/// A chosen printer stays in the list while the network is still asked, or where it is off.
void AddAnnounced(std::vector<Queue>& queues, const Queue& chosen) {
    if (chosen.isAnnounced && !HasQueue(queues, chosen.name)) {
        queues.push_back(chosen);
    }
}

ServiceFailure Rejection(const Queue& queue) {
    const QString remark = queue.stateMessage.isEmpty() ? QString() : u": "_s + queue.stateMessage;
    return ServiceFailure(u"Der Drucker nimmt zurzeit keine Aufträge an%1."_s.arg(remark),
                          IPP_STATUS_ERROR_NOT_ACCEPTING_JOBS);
}

QString PauseRemark(const Queue& queue) {
    QStringList reasons;
    for (const QString& reason : {PrinterReasons(queue.stateReasons), queue.stateMessage}) {
        if (!reason.isEmpty()) {
            reasons.append(reason);
        }
    }
    const QString why = reasons.isEmpty() ? QString() : u": "_s + reasons.join(u", "_s);
    return u"Der Drucker „%1“ ist angehalten%2. Der Auftrag wartet, bis er weiterdruckt."_s.arg(
        platform::HarmlessLine(QString::fromUtf8(queue.name)), why);
}

}  // namespace

CupsPrinterLayer::CupsPrinterLayer(QString server, std::chrono::milliseconds timeout,
                                   std::chrono::milliseconds unnoticed)
    : server_(std::move(server)), timeout_(timeout), unnoticed_(unnoticed) {}

PrinterChoice CupsPrinterLayer::CurrentPrinter() {
    if (current_) {
        return *current_;
    }
    const Connection connection = Service();
    const std::optional<Queue> queue = DefaultQueue(Queues(connection));
    if (!queue) {
        throw PrinterError(u"Es ist kein Drucker eingerichtet."_s);
    }
    return NamingPrinter(QString::fromUtf8(queue->name), [&] {
        return ChoiceOf(*queue, StandardMode(*queue, Driver::OfQueue(connection, *queue)));
    });
}

void CupsPrinterLayer::SetCurrentPrinter(const PrinterChoice& choice) {
    const QByteArray name = QueueNameOf(choice);
    NamingPrinter(QString::fromUtf8(name), [&] {
        const Connection connection = Service();
        ReadyQueue(connection, QueueOf(choice), [this](const Queue& queue) {
            return chosen_.Holds(queue.announcedUri) || IsConfirmed(queue);
        });
    });
    current_ = choice;
    current_->device = QString::fromUtf8(name);
}

bool CupsPrinterLayer::ShowSetupDialog(QWindow* owner) {
    const Connection connection = Service();
    const std::unique_ptr<Question> finding = connection.BeginFinding();
    std::vector<Queue> queues = Queues(connection);
    if (current_) {
        AddAnnounced(queues, QueueOf(*current_));
    }
    if (queues.empty()) {
        connection.WaitFor(*finding);
        queues = AnnouncedPrinters(*finding, {});
    }
    if (queues.empty()) {
        throw PrinterError(u"Es ist kein Drucker eingerichtet."_s);
    }
    const auto askDriver = [&](Queue& queue) {
        if (queue.isAnnounced) {
            queue = ReadyQueue(connection, queue, [](const Queue&) { return true; });
        }
        return Driver::OfQueue(connection, queue);
    };
    SetupDialog dialog(queues, askDriver, current_);
    const auto addFound = [&] { dialog.AddQueues(AnnouncedPrinters(*finding, queues)); };
    if (finding->IsFinished()) {
        addFound();
    } else {
        QObject::connect(finding.get(), &Question::Finished, &dialog, addFound);
    }
    if (!dialog.RunOver(owner)) {
        return false;
    }
    current_ = dialog.Choice();
    if (const Queue queue = QueueOf(*current_); queue.isAnnounced) {
        chosen_.Add(queue.announcedUri);
    }
    return true;
}

/// Asks the user once for each address.
bool CupsPrinterLayer::IsConfirmed(const Queue& queue) {
    const bool confirmed =
        confirm_ && confirm_(queue.description, QString::fromLatin1(queue.announcedUri));
    if (confirmed) {
        chosen_.Add(queue.announcedUri);
    }
    return confirmed;
}

std::function<bool(const Queue& queue)> CupsPrinterLayer::IsChosen() const {
    return [this](const Queue& queue) { return chosen_.Holds(queue.announcedUri); };
}

PrinterPaper CupsPrinterLayer::PaperOf(const PrinterChoice& choice) {
    const QByteArray name = QueueNameOf(choice);
    return NamingPrinter(QString::fromUtf8(name), [&] {
        const Connection connection = Service();
        const Queue queue = ReadyQueue(connection, QueueOf(choice), IsChosen());
        PrinterPaper paper =
            Driver::OfQueue(connection, queue).PrinterPaperOf(DeviceMode(choice.deviceMode));
        if (queue.isPaused) {
            paper.remarks.append(PauseRemark(queue));
        }
        return paper;
    });
}

std::unique_ptr<JobWatch> CupsPrinterLayer::Print(const PrintImage& image) {
    const PrinterChoice choice = CurrentPrinter();
    const QByteArray name = QueueNameOf(choice);
    return NamingPrinter(QString::fromUtf8(name), [&] {
        if (image.dotsPerInch <= 0 || image.Millimetres().isEmpty()) {
            throw ServiceFailure(u"Das Bild hat keine Größe."_s);
        }
        const Connection connection = Service();
        const Queue queue = ReadyQueue(connection, QueueOf(choice), IsChosen());
        if (!queue.acceptsJobs) {
            throw Rejection(queue);
        }
        const int job = SendJob(connection, queue, Driver::OfQueue(connection, queue),
                                DeviceMode(choice.deviceMode), image);
        return std::make_unique<JobFollower>(ServiceAddress{server_, timeout_}, queue, job);
    });
}

}  // namespace kadrona::printing::cups
