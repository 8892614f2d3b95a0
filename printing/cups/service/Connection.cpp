#include "printing/cups/service/Connection.h"

#include <QUrl>

using namespace Qt::StringLiterals;

namespace kadrona::printing::cups {

namespace {

/// libcups would otherwise ask on the terminal and wait there.
const char* NoPassword(const char*, http_t*, const char*, const char*, void*) {
    return nullptr;
}

int GiveUp(http_t*, void*) {
    return 0;
}

struct Endpoint {
    QByteArray host;
    int port;
};

Endpoint EndpointOf(const QString& server) {
    if (server.isEmpty()) {
        return {cupsServer(), ippPort()};
    }
    if (server.startsWith(u'/')) {
        return {QFile::encodeName(server), ippPort()};
    }
    const QUrl url(u"ipp://"_s + server);
    return {url.host().toUtf8(), url.port(ippPort())};
}

QString StatusReason(ipp_status_t status) {
    switch (status) {
        case IPP_STATUS_ERROR_NOT_FOUND:
        case IPP_STATUS_ERROR_GONE:
            return u"Der Drucker ist nicht mehr vorhanden."_s;
        case IPP_STATUS_ERROR_NOT_ACCEPTING_JOBS:
            return u"Der Drucker nimmt zurzeit keine Aufträge an."_s;
        case IPP_STATUS_ERROR_PRINTER_IS_DEACTIVATED:
            return u"Der Drucker ist abgeschaltet."_s;
        case IPP_STATUS_ERROR_FORBIDDEN:
        case IPP_STATUS_ERROR_NOT_AUTHENTICATED:
        case IPP_STATUS_ERROR_NOT_AUTHORIZED:
        case IPP_STATUS_ERROR_CUPS_AUTHENTICATION_CANCELED:
            return u"Der Druckdienst erlaubt diesem Benutzer das Drucken nicht."_s;
        case IPP_STATUS_ERROR_NOT_POSSIBLE:
        case IPP_STATUS_ERROR_TOO_MANY_JOBS:
            return u"Der Druckdienst nimmt zurzeit keine weiteren Aufträge an."_s;
        case IPP_STATUS_ERROR_DOCUMENT_FORMAT_NOT_SUPPORTED:
            return u"Der Drucker kann kein PDF verarbeiten."_s;
        case IPP_STATUS_ERROR_TEMPORARY:
        case IPP_STATUS_ERROR_BUSY:
            return u"Der Drucker ist belegt."_s;
        case IPP_STATUS_ERROR_DEVICE:
            return u"Der Drucker meldet einen Gerätefehler."_s;
        case IPP_STATUS_ERROR_ATTRIBUTES_OR_VALUES:
        case IPP_STATUS_ERROR_CONFLICTING:
            return u"Der Drucker lehnt die Einstellungen des Auftrags ab."_s;
        case IPP_STATUS_ERROR_SERVICE_UNAVAILABLE:
            return u"Der Druckdienst steht zurzeit nicht zur Verfügung."_s;
        case IPP_STATUS_ERROR_INTERNAL:
            return u"Im Druckdienst ist ein Fehler aufgetreten."_s;
        default:
            return u"Der Druckdienst meldet „%1“."_s.arg(QString::fromUtf8(ippErrorString(status)));
    }
}

ServiceFailure NoAnswer() {
    switch (const ipp_status_t status = cupsLastError()) {
        case IPP_STATUS_ERROR_FORBIDDEN:
        case IPP_STATUS_ERROR_NOT_AUTHENTICATED:
        case IPP_STATUS_ERROR_NOT_AUTHORIZED:
        case IPP_STATUS_ERROR_CUPS_AUTHENTICATION_CANCELED:
            return ServiceFailure(StatusReason(status), status);
        default:
            return ServiceFailure(u"Der Druckdienst antwortet nicht."_s);
    }
}

}  // namespace

IppMessage NewRequest(ipp_op_t operation, const QByteArray& queueUri) {
    IppMessage request(ippNewRequest(operation));
    // What the service and its drivers say is shown in the program, whatever the user's language.
    ipp_attribute_t* language =
        ippFindAttribute(request.get(), "attributes-natural-language", IPP_TAG_LANGUAGE);
    ippSetString(request.get(), &language, 0, "de");
    if (!queueUri.isEmpty()) {
        ippAddString(request.get(), IPP_TAG_OPERATION, IPP_TAG_URI, "printer-uri", nullptr,
                     queueUri.constData());
    }
    ippAddString(request.get(), IPP_TAG_OPERATION, IPP_TAG_NAME, "requesting-user-name", nullptr,
                 cupsUser());
    return request;
}

Connection::Connection(const ServiceAddress& address) {
    cupsSetPasswordCB2(NoPassword, nullptr);
    const Endpoint endpoint = EndpointOf(address.server);
    const auto milliseconds = static_cast<int>(address.timeout.count());
    http_.reset(httpConnect2(endpoint.host.constData(), endpoint.port, nullptr, AF_UNSPEC,
                             cupsEncryption(), 1, milliseconds, nullptr));
    if (!http_) {
        // The library does not keep the system's reason.
        throw ServiceFailure(
            u"Unter „%1“ läuft kein Druckdienst."_s.arg(QFile::decodeName(endpoint.host)));
    }
    httpSetTimeout(http_.get(), static_cast<double>(milliseconds) / 1000, GiveUp, nullptr);
}

IppMessage Connection::Ask(IppMessage request, const QByteArray& resource,
                           const QString& fileName) {
    const QByteArray file = QFile::encodeName(fileName);
    IppMessage answer(cupsDoFileRequest(http_.get(), request.release(), resource.constData(),
                                        file.isEmpty() ? nullptr : file.constData()));
    if (!answer) {
        throw NoAnswer();
    }
    return answer;
}

bool Connection::Fetch(const QByteArray& resource, QFile& file) {
    switch (cupsGetFd(http_.get(), resource.constData(), file.handle())) {
        case HTTP_STATUS_OK:
            return true;
        case HTTP_STATUS_NOT_FOUND:
            return false;
        default:
            throw NoAnswer();
    }
}

ServiceFailure FailureOf(const ipp_t& answer) {
    // The message is only read, but the library's functions take no constant one.
    const ipp_status_t status = ippGetStatusCode(const_cast<ipp_t*>(&answer));
    return ServiceFailure(StatusReason(status), status);
}

}  // namespace kadrona::printing::cups
