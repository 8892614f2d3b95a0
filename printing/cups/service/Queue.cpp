#include "printing/cups/service/Queue.h"

#include <QUrl>
#include <QUrlQuery>
#include <algorithm>
#include <array>

#include "platform/HarmlessText.h"
#include "printing/cups/service/StateReasons.h"

using namespace Qt::StringLiterals;

namespace kadrona::printing::cups {

namespace {

constexpr std::array WantedAttributes{
    "printer-name",   "printer-info",           "printer-location",
    "printer-type",   "printer-make-and-model", "device-uri",
    "printer-state",  "printer-state-message",  "printer-state-reasons",
    "copies-default", "printer-is-temporary",   "printer-is-accepting-jobs"};

void AddWantedAttributes(ipp_t* request) {
    ippAddStrings(request, IPP_TAG_OPERATION, IPP_TAG_KEYWORD, "requested-attributes",
                  WantedAttributes.size(), nullptr, WantedAttributes.data());
}

QString Text(ipp_attribute_t* attribute) {
    return QString::fromUtf8(ippGetString(attribute, 0, nullptr));
}

/// Of names and descriptions (RFC 8011, 5.4), characters. A hostile one would make the window wider
/// than any screen.
constexpr qsizetype LongestText = 127;

QString ShownText(ipp_attribute_t* attribute) {
    const QString text = platform::HarmlessLine(Text(attribute));
    return text.size() <= LongestText ? text : text.first(LongestText - 1) + u'…';
}

void ReadState(Queue& queue, ipp_attribute_t* state) {
    queue.isPaused = ippGetInteger(state, 0) == IPP_PSTATE_STOPPED;
    queue.isPrinting = ippGetInteger(state, 0) == IPP_PSTATE_PROCESSING;
}

void ReadAttribute(Queue& queue, ipp_attribute_t* attribute) {
    const QByteArray name(ippGetName(attribute));
    if (name == "printer-name") {
        queue.name = ippGetString(attribute, 0, nullptr);
    } else if (name == "printer-info") {
        queue.description = ShownText(attribute);
    } else if (name == "printer-location") {
        queue.location = ShownText(attribute);
    } else if (name == "printer-make-and-model") {
        queue.model = ShownText(attribute);
    } else if (name == "device-uri") {
        queue.deviceUri = WithoutSecrets(Text(attribute));
        queue.announcedUri = ippGetString(attribute, 0, nullptr);
    } else if (name == "printer-type") {
        queue.isClass = (ippGetInteger(attribute, 0) & CUPS_PRINTER_CLASS) != 0;
    } else if (name == "printer-state") {
        ReadState(queue, attribute);
    } else if (name == "printer-state-message") {
        queue.stateMessage = StateMessage(ShownText(attribute));
    } else if (name == "printer-state-reasons") {
        for (int i = 0; i < ippGetCount(attribute); ++i) {
            queue.stateReasons.emplace_back(ippGetString(attribute, i, nullptr));
        }
    } else if (name == "copies-default") {
        queue.copies = std::max(ippGetInteger(attribute, 0), 1);
    } else if (name == "printer-is-accepting-jobs") {
        queue.acceptsJobs = ippGetBoolean(attribute, 0) != 0;
    } else if (name == "printer-is-temporary") {
        queue.isAnnounced = ippGetBoolean(attribute, 0) != 0;
    }
}

/// More than any shop has. A hostile service or network could tell of so many that the window would
/// be busy with them.
constexpr size_t MostQueues = 1000;

/// The groups of an answer that describe a queue each.
std::vector<Queue> QueueGroups(ipp_t* answer) {
    std::vector<Queue> queues;
    bool inGroup = false;
    for (ipp_attribute_t* attribute = ippFirstAttribute(answer); attribute != nullptr;
         attribute = ippNextAttribute(answer)) {
        const bool isPart = ippGetGroupTag(attribute) == IPP_TAG_PRINTER;
        if (isPart && !inGroup) {
            if (queues.size() == MostQueues) {
                break;
            }
            queues.emplace_back();
        }
        inGroup = isPart;
        if (isPart) {
            ReadAttribute(queues.back(), attribute);
        }
    }
    std::erase_if(queues, [](const Queue& queue) {
        return queue.name.isEmpty() || queue.name.size() > LongestText;
    });
    for (Queue& queue : queues) {
        queue.isAnnounced = queue.isAnnounced && IsAnnouncedUri(queue.announcedUri);
        if (!queue.isAnnounced) {
            queue.announcedUri.clear();
        }
    }
    return queues;
}

bool Succeeded(const ipp_t& answer) {
    return ippGetStatusCode(const_cast<ipp_t*>(&answer)) < IPP_STATUS_REDIRECTION_OTHER_SITE;
}

QByteArray UriOf(const char* folder, const QByteArray& name) {
    std::array<char, HTTP_MAX_URI> uri{};
    httpAssembleURIf(HTTP_URI_CODING_ALL, uri.data(), uri.size(), "ipp", nullptr, "localhost", 0,
                     "/%s/%s", folder, name.constData());
    return uri.data();
}

}  // namespace

QString WithoutSecrets(const QString& deviceUri) {
    QUrl url(deviceUri);
    if (!url.isValid()) {
        return deviceUri.section(u':', 0, 0);
    }
    url.setUserInfo({});
    url.setFragment({});
    // These tell two printers of one kind apart; whatever else stands there may be a secret.
    const QUrlQuery asked(url);
    QUrlQuery kept;
    for (const QString& key : {u"serial"_s, u"interface"_s}) {
        if (asked.hasQueryItem(key)) {
            kept.addQueryItem(key, asked.queryItemValue(key));
        }
    }
    url.setQuery(kept);
    return url.toString(QUrl::FullyEncoded);
}

QByteArray Queue::Uri() const {
    return UriOf(isClass ? "classes" : "printers", name);
}

QByteArray Queue::Resource() const {
    return (isClass ? "/classes/" : "/printers/") +
           QUrl::toPercentEncoding(QString::fromUtf8(name));
}

bool IsAnnouncedUri(const QByteArray& uri) {
    const bool isPlain =
        std::all_of(uri.begin(), uri.end(), [](char byte) { return byte > ' ' && byte < '\x7f'; });
    const bool isIpp = uri.startsWith("ipp://") || uri.startsWith("ipps://");
    const QByteArray host = uri.mid(uri.indexOf("//") + 2).split('/').first();
    return isPlain && isIpp && uri.size() < HTTP_MAX_URI && !host.isEmpty() && !host.contains('@');
}

bool HasQueue(const std::vector<Queue>& queues, const QByteArray& name) {
    return std::any_of(queues.begin(), queues.end(),
                       [&](const Queue& queue) { return queue.name == name; });
}

std::vector<Queue> QueuesIn(const IppMessage& answer) {
    if (Succeeded(*answer)) {
        return QueueGroups(answer.get());
    }
    const ServiceFailure failure = FailureOf(*answer);
    if (failure.Status() != IPP_STATUS_ERROR_NOT_FOUND) {
        throw failure;
    }
    return {};
}

std::vector<Queue> Queues(const Connection& connection) {
    IppMessage request = NewRequest(IPP_OP_CUPS_GET_PRINTERS);
    AddWantedAttributes(request.get());
    // A fax machine prints no photos.
    ippAddInteger(request.get(), IPP_TAG_OPERATION, IPP_TAG_ENUM, "printer-type", 0);
    ippAddInteger(request.get(), IPP_TAG_OPERATION, IPP_TAG_ENUM, "printer-type-mask",
                  CUPS_PRINTER_FAX);
    std::vector<Queue> queues = QueuesIn(connection.Ask(request, "/"));
    const std::vector<Queue> standard =
        QueuesIn(connection.Ask(NewRequest(IPP_OP_CUPS_GET_DEFAULT), "/"));
    for (Queue& queue : queues) {
        queue.isDefault = !standard.empty() && standard.front().name == queue.name;
    }
    return queues;
}

IppMessage QueueRequest(const QByteArray& name) {
    // The service finds a class under the address of a printer, too.
    IppMessage request = NewRequest(IPP_OP_GET_PRINTER_ATTRIBUTES, UriOf("printers", name));
    AddWantedAttributes(request.get());
    return request;
}

std::optional<Queue> QueueIn(const IppMessage& answer) {
    std::vector<Queue> queues = QueuesIn(answer);
    return queues.empty() ? std::nullopt : std::optional(std::move(queues.front()));
}

std::optional<Queue> FindQueue(const Connection& connection, const QByteArray& name) {
    return QueueIn(connection.Ask(QueueRequest(name), "/"));
}

std::optional<Queue> DefaultQueue(const std::vector<Queue>& queues) {
    const auto found = std::find_if(queues.begin(), queues.end(),
                                    [](const Queue& queue) { return queue.isDefault; });
    if (found != queues.end()) {
        return *found;
    }
    return queues.empty() ? std::nullopt : std::optional(queues.front());
}

QString StateText(const Queue& queue) {
    const QString ready = queue.isAnnounced ? u"Im Netz gefunden"_s : u"Bereit"_s;
    QString state = queue.isPaused ? u"Angehalten"_s : queue.isPrinting ? u"Druckt"_s : ready;
    if (!queue.acceptsJobs) {
        state = u"Nimmt keine Aufträge an"_s;
    }
    const QString reasons = PrinterReasons(queue.stateReasons);
    return reasons.isEmpty() ? state : state + u" – "_s + reasons;
}

}  // namespace kadrona::printing::cups
