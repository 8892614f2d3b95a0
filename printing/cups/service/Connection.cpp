#include "printing/cups/service/Connection.h"

#include <QEventLoop>
#include <QFileInfo>
#include <QStringList>
#include <QTimer>
#include <algorithm>

#include "platform/ByteReader.h"
#include "printing/cups/service/Question.h"

using namespace Qt::StringLiterals;

namespace kadrona::printing::cups {

namespace {

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

bool IsAboutRights(ipp_status_t status) {
    return status == IPP_STATUS_ERROR_FORBIDDEN || status == IPP_STATUS_ERROR_NOT_AUTHENTICATED ||
           status == IPP_STATUS_ERROR_NOT_AUTHORIZED ||
           status == IPP_STATUS_ERROR_CUPS_AUTHENTICATION_CANCELED;
}

/// A place in bytes, for libcups' reading and writing of messages.
struct Cursor {
    QByteArray bytes;
    qsizetype at = 0;
};

ssize_t PutBytes(void* cursor, ipp_uchar_t* bytes, size_t count) {
    static_cast<Cursor*>(cursor)->bytes.append(reinterpret_cast<const char*>(bytes),
                                               static_cast<qsizetype>(count));
    return static_cast<ssize_t>(count);
}

ssize_t TakeBytes(void* context, ipp_uchar_t* bytes, size_t count) {
    auto& cursor = *static_cast<Cursor*>(context);
    const qsizetype taken =
        std::min(static_cast<qsizetype>(count), cursor.bytes.size() - cursor.at);
    std::copy_n(cursor.bytes.constData() + cursor.at, taken, reinterpret_cast<char*>(bytes));
    cursor.at += taken;
    return taken;
}

QString Unreadable() {
    return u"Der Druckdienst antwortet unverständlich."_s;
}

/// Whether no collections lie in each other deeper than in any answer: libcups calls itself for
/// each. What is no message counts as one (RFC 8010, section 3).
bool IsShallow(const QByteArray& message) {
    enum Tag : quint8 { FirstOfValues = 0x10, Begin = 0x34, End = 0x37, LongTag = 0x7f };
    constexpr int Deepest = 100;
    constexpr int BeforeTags = 8;
    platform::ByteReader reader(message, platform::ByteOrder::BigEndian);
    int depth = 0;
    try {
        reader.Skip(BeforeTags);
        while (reader.Remaining() > 0) {
            const auto tag = reader.Read<quint8>();
            depth += tag == Begin ? 1 : tag == End ? -1 : 0;
            if (depth > Deepest) {
                return false;
            }
            if (tag >= FirstOfValues) {
                reader.Skip(tag == LongTag ? 4 : 0);
                reader.Skip(reader.Read<quint16>());  // its name
                reader.Skip(reader.Read<quint16>());
            }
        }
    } catch (const platform::OutOfBytes&) {
        // libcups says so.
    }
    return true;
}

/// Far above what real drivers and services have to say.
constexpr qint64 MostAnswerBytes = qint64{16} << 20;
/// libcups reads descriptions of drivers in the square of their length.
constexpr qint64 MostDescriptionBytes = qint64{2} << 20;

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

QByteArray BytesOf(const IppMessage& message) {
    Cursor cursor;
    ippSetState(message.get(), IPP_STATE_IDLE);
    ippWriteIO(&cursor, PutBytes, 1, nullptr, message.get());
    return cursor.bytes;
}

IppMessage MessageOf(const QByteArray& bytes) {
    if (!IsShallow(bytes)) {
        return nullptr;
    }
    Cursor cursor{bytes};
    IppMessage message(ippNew());
    return ippReadIO(&cursor, TakeBytes, 1, nullptr, message.get()) == IPP_STATE_DATA
               ? std::move(message)
               : nullptr;
}

std::unique_ptr<Question> Connection::Begin(const IppMessage& request, const QByteArray& resource,
                                            const QString& fileName) const {
    QStringList arguments{u"ask"_s, address_.server, QString::fromUtf8(resource)};
    auto time = address_.timeout;
    if (!fileName.isEmpty()) {
        arguments.append(fileName);
        // The slowest network that anybody prints over carries a megabyte a second.
        time += std::chrono::milliseconds(QFileInfo(fileName).size() / 1000);
    }
    return std::make_unique<Question>(arguments, BytesOf(request),
                                      Question::Limits{time, MostAnswerBytes});
}

IppMessage Connection::AnswerOf(const Question& question) const {
    RequireAnswer(question);
    IppMessage answer = MessageOf(question.Answer());
    if (!answer) {
        throw ServiceFailure(Unreadable());
    }
    return answer;
}

IppMessage Connection::Ask(const IppMessage& request, const QByteArray& resource,
                           const QString& fileName) const {
    const std::unique_ptr<Question> question = Begin(request, resource, fileName);
    WaitFor(*question);
    return AnswerOf(*question);
}

IppMessage Connection::Make(const IppMessage& request, const QByteArray& queue) const {
    // The service asks the printer, which may have to wake up.
    Question question({u"make"_s, address_.server, QString::fromUtf8(queue)}, BytesOf(request),
                      {2 * address_.timeout, MostAnswerBytes});
    WaitFor(question);
    return AnswerOf(question);
}

std::unique_ptr<Question> Connection::BeginFinding() const {
    return std::make_unique<Question>(QStringList{u"find"_s, address_.server, QString()},
                                      QByteArray(),
                                      Question::Limits{address_.timeout, MostAnswerBytes});
}

std::optional<QByteArray> Connection::Fetch(const QByteArray& resource) const {
    Question question({u"get"_s, address_.server, QString::fromUtf8(resource)}, {},
                      {address_.timeout, MostDescriptionBytes});
    WaitFor(question);
    if (question.Result() == Question::Outcome::Missing) {
        return std::nullopt;
    }
    RequireAnswer(question);
    return question.Answer();
}

void Connection::WaitFor(Question& question) const {
    QEventLoop loop;
    QObject::connect(&question, &Question::Finished, &loop, &QEventLoop::quit);
    if (!question.IsFinished()) {
        QTimer::singleShot(address_.unnoticed, &loop, &QEventLoop::quit);
        loop.exec(QEventLoop::ExcludeUserInputEvents);
    }
    if (question.IsFinished()) {
        return;
    }
    if (address_.display != nullptr) {
        address_.display->Show([&question] { question.Cancel(); });
        loop.exec();
        address_.display->Hide();
    } else {
        loop.exec(QEventLoop::ExcludeUserInputEvents);
    }
    // The loop also ends where the program does.
    question.Cancel();
}

void Connection::RequireAnswer(const Question& question) const {
    switch (question.Result()) {
        case Question::Outcome::Answered:
        case Question::Outcome::Missing:
            return;
        case Question::Outcome::NoService:
            throw ServiceFailure(u"Unter „%1“ läuft kein Druckdienst."_s.arg(
                address_.server.isEmpty() ? QString::fromUtf8(cupsServer()) : address_.server));
        case Question::Outcome::Refused: {
            const auto status = static_cast<ipp_status_t>(question.Status());
            throw IsAboutRights(status) ? ServiceFailure(StatusReason(status), status)
                                        : ServiceFailure(u"Der Druckdienst antwortet nicht."_s);
        }
        case Question::Outcome::Silent:
            throw ServiceFailure(u"Der Druckdienst antwortet nicht."_s);
        case Question::Outcome::Unreadable:
            throw ServiceFailure(Unreadable());
        case Question::Outcome::TooLarge:
            throw ServiceFailure(u"Die Antwort des Druckdienstes nimmt kein Ende."_s);
        case Question::Outcome::Cancelled:
            throw ServiceFailure(u"Die Anfrage an den Druckdienst wurde abgebrochen."_s);
        case Question::Outcome::NotAsked:
            throw ServiceFailure(
                u"Das Programm „kadrona-ask-cups“ fehlt im Programmordner oder startet nicht."_s);
    }
}

ServiceFailure FailureOf(const ipp_t& answer) {
    // The message is only read, but the library's functions take no constant one.
    const ipp_status_t status = ippGetStatusCode(const_cast<ipp_t*>(&answer));
    return ServiceFailure(StatusReason(status), status);
}

}  // namespace kadrona::printing::cups
