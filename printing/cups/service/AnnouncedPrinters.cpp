#include "printing/cups/service/AnnouncedPrinters.h"

#include "printing/cups/service/Question.h"

using namespace Qt::StringLiterals;

namespace kadrona::printing::cups {

namespace {

std::vector<Queue> FoundBy(const Question& finding) {
    const IppMessage answer =
        finding.Result() == Question::Outcome::Answered ? MessageOf(finding.Answer()) : nullptr;
    try {
        return answer ? QueuesIn(answer) : std::vector<Queue>();
    } catch (const ServiceFailure&) {
        return {};  // printers of the network are an addition
    }
}

}  // namespace

std::vector<Queue> AnnouncedPrinters(const Question& finding, const std::vector<Queue>& queues) {
    std::vector<Queue> printers;
    for (Queue& found : FoundBy(finding)) {
        // What else a network says is no printer that the service can make a queue for.
        if (found.isAnnounced && !HasQueue(queues, found.name) && !HasQueue(printers, found.name)) {
            printers.push_back(std::move(found));
        }
    }
    return printers;
}

Queue MadeQueue(const Connection& connection, const Queue& printer) {
    const IppMessage request = NewRequest(IPP_OP_CUPS_CREATE_LOCAL_PRINTER, "ipp://localhost/");
    const auto add = [&](ipp_tag_t tag, const char* name, const QByteArray& value) {
        ippAddString(request.get(), IPP_TAG_PRINTER, tag, name, nullptr, value.constData());
    };
    add(IPP_TAG_URI, "device-uri", printer.announcedUri);
    add(IPP_TAG_NAME, "printer-name", printer.name);
    add(IPP_TAG_TEXT, "printer-info", printer.description.toUtf8());
    add(IPP_TAG_TEXT, "printer-location", printer.location.toUtf8());
    std::optional<Queue> queue = QueueIn(connection.Make(request, printer.name));
    if (!queue || !queue->acceptsJobs) {
        throw ServiceFailure(u"Der Drucker im Netz antwortet nicht. Ist er eingeschaltet?"_s);
    }
    return *std::move(queue);
}

}  // namespace kadrona::printing::cups
