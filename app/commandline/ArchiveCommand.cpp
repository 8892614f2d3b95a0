#include "app/commandline/ArchiveCommand.h"

#include <QCommandLineParser>
#include <QFileInfo>
#include <array>
#include <map>

#include "app/commandline/CommandSetup.h"
#include "app/commandline/TerminalText.h"
#include "core/archive/ArchiveBackup.h"
#include "core/archive/ArchiveCheck.h"
#include "core/archive/ArchiveExport.h"
#include "core/archive/ArchiveRebuild.h"
#include "core/archive/WaitingSearch.h"
#include "platform/CountedText.h"
#include "platform/TerminationSignals.h"

using namespace Qt::StringLiterals;

namespace kadrona::app {

namespace {

using Task = ArchiveRequest::Task;

constexpr std::array Tasks{std::pair(QLatin1StringView("backup"), Task::BackUp),
                           std::pair(QLatin1StringView("check"), Task::Check),
                           std::pair(QLatin1StringView("rebuild"), Task::Rebuild),
                           std::pair(QLatin1StringView("export"), Task::Export),
                           std::pair(QLatin1StringView("transfer"), Task::Transfer)};

/// A line for each thing that is begun; waiting for a server comes between them again and again.
/// Ends where a signal was noted.
platform::Progress Lines(QTextStream& output) {
    return [&output, said = QStringList()](const QString& what, qint64, qint64) mutable {
        platform::ThrowIfEnding();
        if (!said.contains(what)) {
            output << what << Qt::endl;
            said.append(what);
        }
    };
}

QString Records(qint64 count) {
    return platform::CountedText(count, u"Datensatz"_s, u"Datensätze"_s);
}

int Result(const QStringList& failures, QTextStream& errors) {
    for (const QString& failure : failures) {
        errors << HarmlessName(failure) << Qt::endl;
    }
    return failures.isEmpty() ? Done : SomePhotoFailed;
}

/// Any other folder than that of the settings is a copy.
core::CheckedPlace PlaceOf(const QString& folder) {
    const QString archive = core::TData::GetArchivPath();
    const bool isArchive = !archive.isEmpty() && QFileInfo(folder).canonicalFilePath() ==
                                                     QFileInfo(archive).canonicalFilePath();
    return isArchive ? core::CheckedPlace::Archive : core::CheckedPlace::Copy;
}

int BackUp(const ArchiveRequest& request, core::TData& data, QTextStream& output,
           QTextStream& errors) {
    const core::Backup backup =
        core::BackUpArchive(data.ArchiveDatabase(), request.folder, request.output, Lines(output));
    output << u"Gesichert: %1 neu, %2 unverändert, %3 in der Sicherung gelöscht."_s
                  .arg(backup.copied)
                  .arg(backup.unchanged)
                  .arg(backup.removed)
           << Qt::endl;
    return Result(backup.failures, errors);
}

int Check(const ArchiveRequest& request, core::TData& data, QTextStream& output) {
    const core::ArchiveReport report = core::CheckArchive(data.ArchiveDatabase(), request.folder,
                                                          Lines(output), PlaceOf(request.folder));
    // Anybody may have put a million files into the folder.
    constexpr qint64 MostNamedOfAKind = 10'000;
    std::map<core::ArchiveFault, qint64> found;
    for (const core::ArchiveFinding& finding : report.findings) {
        if (++found[finding.fault] > MostNamedOfAKind) {
            continue;
        }
        const QString number = finding.id > 0 ? u" (Datensatz %1)"_s.arg(finding.id) : QString();
        output << HarmlessName(
                      u"%1%2%3"_s.arg(core::TextOf(finding.fault).heading, number,
                                      finding.path.isEmpty() ? QString() : u": "_s + finding.path))
               << Qt::endl;
    }
    for (const auto& [fault, count] : found) {
        if (count > MostNamedOfAKind) {
            output << u"%1: %2"_s.arg(
                          core::TextOf(fault).heading,
                          platform::CountedText(count - MostNamedOfAKind, u"weiterer Befund"_s,
                                                u"weitere Befunde"_s))
                   << Qt::endl;
        }
    }
    output << u"%1, %2 unverändert, %3 neu aufgenommen, %4."_s
                  .arg(Records(report.records),
                       platform::CountedText(report.sound, u"Datei"_s, u"Dateien"_s))
                  .arg(report.adopted)
                  .arg(platform::CountedText(static_cast<qint64>(report.findings.size()),
                                             u"Befund"_s, u"Befunde"_s))
           << Qt::endl;
    return report.findings.empty() ? Done : SomethingFound;
}

int Rebuild(const ArchiveRequest& request, core::TData& data, QTextStream& output,
            QTextStream& errors) {
    const platform::Progress progress = Lines(output);
    const core::ArchiveReport report = core::CheckArchive(data.ArchiveDatabase(), request.folder,
                                                          progress, PlaceOf(request.folder));
    const core::Rebuilding rebuilding =
        core::RebuildRecords(data.ArchiveDatabase(), report.Paths(core::ArchiveFault::Lost),
                             data.NameSources().now(), progress);
    output << u"Wiederhergestellte Datensätze: %1."_s.arg(rebuilding.rebuilt) << Qt::endl;
    return Result(rebuilding.failures, errors);
}

int ExportFound(const ArchiveRequest& request, core::TData& data, QTextStream& output,
                QTextStream& errors) {
    store::Database& database = data.ArchiveDatabase();
    const core::FilingQueue& queue = data.Archiving().Queue();
    QStringList failures;
    const core::ExportSelection found{
        .ids = data.Archive()->Find(request.search),
        .waiting = core::FindWaiting(queue, {.text = request.search}, &failures),
        .queue = queue};
    if (found.ids.empty() && found.waiting.empty()) {
        errors << HarmlessText(u"„%1“ findet kein Bild."_s.arg(request.search)) << Qt::endl;
        Result(failures, errors);
        return SomePhotoFailed;
    }
    const core::Export result = core::ExportRecords(database, request.folder, found, request.output,
                                                    u"Export "_s + request.search, Lines(output));
    output << HarmlessText(u"%1 in „%2“."_s.arg(
                  platform::CountedText(result.records, u"Bild"_s, u"Bilder"_s), result.folder))
           << Qt::endl;
    return Result(failures + result.failures, errors);
}

/// To the server of the settings, whether it is in use yet or not.
int Transfer(core::TData& data, QTextStream& output) {
    const core::ArchiveServer server = core::StoredArchiveServer();
    if (server.address.host.isEmpty()) {
        throw UsageError(u"In den Einstellungen ist kein Server angegeben."_s);
    }
    const core::TransferResult result = data.TransferArchiveTo(server.address, Lines(output));
    output << u"%1, %2 davon neu übertragen, alle verglichen."_s.arg(Records(result.records))
                  .arg(result.copied)
           << Qt::endl;
    return Done;
}

}  // namespace

ArchiveRequest ParseArchiveRequest(const QStringList& arguments) {
    QCommandLineParser parser;
    parser.addOptions({{u"folder"_s, {}, u"ORDNER"_s},
                       {u"out"_s, {}, u"ORDNER"_s},
                       {u"search"_s, {}, u"TEXT"_s}});
    ParseOptions(parser, arguments);
    const QStringList words = parser.positionalArguments();
    const auto* const task = std::ranges::find_if(
        Tasks, [&](const auto& known) { return words == QStringList(known.first); });
    if (task == Tasks.end()) {
        QStringList known;
        for (const auto& [word, meant] : Tasks) {
            known.append(word);
        }
        throw UsageError(u"„archive“ erwartet genau eines von %1."_s.arg(known.join(u", "_s)));
    }
    ArchiveRequest request{.task = task->second,
                           .folder = parser.value(u"folder"_s),
                           .output = parser.value(u"out"_s),
                           .search = parser.value(u"search"_s)};
    const bool writes = request.task == Task::BackUp || request.task == Task::Export;
    if (writes == request.output.isEmpty()) {
        throw UsageError(writes ? u"Es ist kein Ziel angegeben (--out ORDNER)."_s
                                : u"--out gehört nur zu „backup“ und „export“."_s);
    }
    // A whole archive is not exported by a forgotten word.
    if ((request.task == Task::Export) == request.search.trimmed().isEmpty()) {
        throw UsageError(request.task == Task::Export
                             ? u"Es ist kein Suchbegriff angegeben (--search TEXT)."_s
                             : u"--search gehört nur zu „export“."_s);
    }
    return request;
}

int KeepArchive(const ArchiveRequest& request, core::TData& data, QTextStream& output,
                QTextStream& errors) {
    if (request.task == Task::Transfer) {
        return Transfer(data, output);
    }
    ArchiveRequest known = request;
    if (known.folder.isEmpty()) {
        known.folder = core::TData::GetArchivPath();
    }
    if (known.folder.isEmpty()) {
        throw UsageError(
            u"In den Einstellungen ist kein Ordner des Bildarchivs angegeben; nennen Sie ihn mit "
            u"--folder."_s);
    }
    known.folder = QFileInfo(known.folder).absoluteFilePath();
    // A server far away may take its time: who calls can end the program.
    data.Archiving().WhileWaiting(platform::ThrowIfEnding);
    switch (known.task) {
        case Task::BackUp:
            return BackUp(known, data, output, errors);
        case Task::Check:
            return Check(known, data, output);
        case Task::Rebuild:
            return Rebuild(known, data, output, errors);
        case Task::Export:
            return ExportFound(known, data, output, errors);
        case Task::Transfer:
            break;
    }
    return WrongUsage;
}

int RunArchiveCommand(const QStringList& arguments, QTextStream& output, QTextStream& errors) {
    return RunCommand(errors, [&] {
        const auto request = ParseArchiveRequest(arguments);
        return WithData(
            errors, [&](core::TData& data) { return KeepArchive(request, data, output, errors); });
    });
}

}  // namespace kadrona::app
