#include "PrintService.h"

#include <cups/cups.h>

#include <QDeadlineTimer>
#include <QFile>
#include <QThread>
#include <array>
#include <stdexcept>

#include "printing/cups/service/Connection.h"

using namespace Qt::StringLiterals;

namespace kadrona::testing {

namespace {

constexpr int Patience = 30'000;

QString SourceFile(const char* name) {
    return QStringLiteral(KADRONA_CUPS_TESTS "/") + QString::fromLatin1(name);
}

}  // namespace

PrintService::PrintService(const QString& port) {
    // What this machine's network announces is no part of the tests.
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", "disabled:");
    script_.start(SourceFile("print-service"), {folder_.path(), port});
    QDeadlineTimer deadline(Patience);
    while (script_.state() != QProcess::NotRunning && !script_.canReadLine() &&
           !deadline.hasExpired()) {
        script_.waitForReadyRead(100);
    }
    if (script_.readLine() != "ready\n") {
        throw std::runtime_error("The test's print service does not start:\n" +
                                 script_.readAllStandardError().toStdString());
    }
}

PrintService::~PrintService() {
    Kill();
}

void PrintService::Kill() {
    script_.closeWriteChannel();
    script_.waitForFinished(Patience);
}

QString PrintService::Run(const QString& program, const QStringList& arguments) const {
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"CUPS_SERVER"_s, Address());
    environment.insert(u"PATH"_s, environment.value(u"PATH"_s) + u":/usr/sbin:/sbin"_s);
    process.setProcessEnvironment(environment);
    // The shell looks the program up in the path above.
    process.start(u"/bin/sh"_s, QStringList{u"-c"_s, u"exec \"$0\" \"$@\""_s, program} + arguments);
    if (!process.waitForFinished(Patience) || process.exitCode() != 0) {
        throw std::runtime_error(program.toStdString() + ": " +
                                 process.readAllStandardError().toStdString());
    }
    return QString::fromUtf8(process.readAllStandardOutput());
}

void PrintService::AddQueue(const QString& name) const {
    Run(u"lpadmin"_s, {u"-p"_s, name, u"-E"_s, u"-v"_s, u"file:"_s + SentFile(name), u"-P"_s,
                       SourceFile("photo-printer.ppd")});
}

void PrintService::AddPhotoPrinter(const QString& name, const QString& driver,
                                   const QString& model) const {
    Run(u"/bin/sh"_s, {u"-c"_s,
                       u"\"/usr/lib/cups/driver/$0\" cat \"$1\" > \"$2\" && "
                       "lpadmin -p \"$3\" -E -v \"file:$4\" -P \"$2\""_s,
                       driver, model, folder_.filePath(name + u".ppd"_s), name, SentFile(name)});
}

QString PrintService::SentFile(const QString& name) const {
    return folder_.filePath(name + u".sent"_s);
}

void PrintService::WaitForJobs() const {
    QDeadlineTimer deadline(Patience);
    while (!Run(u"lpstat"_s, {u"-W"_s, u"not-completed"_s, u"-o"_s}).isEmpty()) {
        if (deadline.hasExpired()) {
            throw std::runtime_error("a job does not end");
        }
        QThread::msleep(20);
    }
}

QHash<QString, std::string> PrintService::JobAttributes(int job) const {
    using namespace printing::cups;
    const Connection connection({Address(), std::chrono::milliseconds(Patience)});
    IppMessage request = NewRequest(IPP_OP_GET_JOB_ATTRIBUTES);
    ippAddString(request.get(), IPP_TAG_OPERATION, IPP_TAG_URI, "job-uri", nullptr,
                 ("ipp://localhost/jobs/" + QByteArray::number(job)).constData());
    const IppMessage answer = connection.Ask(request, "/");
    QHash<QString, std::string> attributes;
    for (ipp_attribute_t* attribute = ippFirstAttribute(answer.get()); attribute != nullptr;
         attribute = ippNextAttribute(answer.get())) {
        std::array<char, 1024> text{};
        ippAttributeString(attribute, text.data(), text.size());
        attributes.insert(QString::fromUtf8(ippGetName(attribute)), text.data());
    }
    return attributes;
}

}  // namespace kadrona::testing
