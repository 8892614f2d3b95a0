#pragma once

#include <QHash>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <string>

namespace kadrona::testing {

/// A print service of the test's own with the queue "Photo" (tests/cups/print-service), apart from
/// the system's; it ends with the object. A failure to start throws std::runtime_error with what
/// the service said.
class PrintService {
 public:
    /// With a port the queue is a printer of the network, too: ipp://localhost:PORT/printers/Photo.
    explicit PrintService(const QString& port = {});
    ~PrintService();
    PrintService(const PrintService&) = delete;
    PrintService& operator=(const PrintService&) = delete;

    /// For CupsPrinterLayer.
    QString Address() const { return folder_.filePath(QStringLiteral("socket")); }

    /// A line for each job: under which address it was sent.
    QString AccessLog() const { return folder_.filePath(QStringLiteral("log/access")); }

    /// Runs one of CUPS' own programs against the service. Throws std::runtime_error where it
    /// fails.
    QString Run(const QString& program, const QStringList& arguments) const;

    /// Adds a queue with the driver of "Photo".
    void AddQueue(const QString& name) const;

    /// Adds a queue with one of Debian's photo drivers: the program below CUPS' folder of drivers,
    /// and its name for the printer. What the printer is sent lands in SentFile.
    void AddPhotoPrinter(const QString& name, const QString& driver, const QString& model) const;
    QString SentFile(const QString& name) const;

    /// Waits until every job is done. Throws std::runtime_error where that takes too long.
    void WaitForJobs() const;

    /// The last page that came out of "Photo".
    QString PrintedFile() const { return folder_.filePath(QStringLiteral("printed.pdf")); }

    /// The attributes of a job as the service has them, in libcups' notation.
    QHash<QString, std::string> JobAttributes(int job) const;

    /// Ends the service while its queue is in use.
    void Kill();

 private:
    QTemporaryDir folder_;
    QProcess script_;
};

}  // namespace kadrona::testing
