#include "dialogs/archive/ArchiveUpkeep.h"

#include <QApplication>
#include <QDateTime>
#include <QFileInfo>
#include <QLocale>
#include <algorithm>

#include "controls/messages/FolderDialog.h"
#include "controls/messages/MessageBoxes.h"
#include "core/Data.h"
#include "core/archive/ArchiveBackup.h"
#include "core/archive/ArchiveDeletion.h"
#include "core/archive/ArchiveExport.h"
#include "core/archive/ArchiveFiles.h"
#include "core/archive/ArchiveRebuild.h"
#include "core/archive/FilingQueue.h"
#include "dialogs/archive/ArchiveCards.h"
#include "dialogs/archive/ArchiveProgress.h"
#include "platform/CountedText.h"
#include "platform/Error.h"
#include "platform/SilenceWatch.h"
#include "platform/UserRegistry.h"

using namespace Qt::StringLiterals;

namespace kadrona::dialogs {

namespace {

/// Of the registry: where the last backup went.
const QString BackupFolderValue = u"ArchiveBackupDir"_s;
/// And the last export.
const QString ExportFolderValue = u"ArchiveExportDir"_s;
/// As many are named one by one.
constexpr qsizetype MostNamed = 5;
/// A share may take long to say whether a file is there.
constexpr size_t MostLookedUp = 200;

/// One line for one photo.
QString ShortLine(const QString& line) {
    constexpr int MostCharacters = 52;
    return line.size() > MostCharacters ? line.left(MostCharacters) + u'…' : line;
}

/// With the number, for two photos of one person may be alike in all else.
QString NameOf(const core::ArchiveRecord& record) {
    const QString tags = ShownTags(record.tags);
    QStringList parts{QString::number(record.id), core::ShownTime(record.created),
                      tags.isEmpty() ? record.name : tags};
    if (record.name.isEmpty()) {
        parts = {QString::number(record.id), u"leer"_s};
    }
    return ShortLine(parts.join(u" · "_s));
}

QString NameOf(const core::WaitingPhoto& photo) {
    return ShortLine(u"wartet · "_s + core::ShownTime(photo.created) + u" · "_s +
                     ShownTags(photo.tags));
}

/// The first lines, and how many there are more.
QString Shortened(const QStringList& lines, qsizetype most) {
    QStringList shown = lines.first(std::min(lines.size(), most));
    if (lines.size() > most) {
        shown.append(u"… und "_s +
                     platform::CountedText(lines.size() - most, u"weiteres"_s, u"weitere"_s));
    }
    return shown.join(u'\n');
}

}  // namespace

/// A box below the window that the user is in would be lost.
QWidget* ArchiveUpkeep::Over() const {
    QWidget* modal = QApplication::activeModalWidget();
    return modal != nullptr ? modal : &window_;
}

QStringList ArchiveUpkeep::NamesOf(const ChosenPhotos& chosen) const {
    QStringList names;
    for (size_t i = 0; i < std::min<size_t>(chosen.ids.size(), MostNamed); ++i) {
        const auto record = OpenArchive(data_).Read(chosen.ids[i]);
        names.append(NameOf(record.value_or(core::ArchiveRecord())));
    }
    for (const QString& name : chosen.waiting) {
        if (names.size() < MostNamed) {
            names.append(NameOf(data_.Archiving().Queue().ReadKnowledge(name)));
        }
    }
    return names;
}

/// A sentence that says how many of the photos' files are not to be found: a share that is not
/// mounted is an empty folder. Empty where none is missing.
QString ArchiveUpkeep::MissingFiles(const std::vector<qint64>& ids) const {
    const platform::SilenceWatch watch(core::AwaitedArchive(folder_));
    qsizetype missing = 0;
    const size_t lookedUp = std::min(ids.size(), MostLookedUp);
    for (size_t i = 0; i < lookedUp; ++i) {
        const auto record = OpenArchive(data_).Read(ids[i]).value_or(core::ArchiveRecord());
        const QString path =
            core::StoredFolderPath(folder_, core::StoredPath(record.folder, record.name));
        missing += QFileInfo(path).isFile() ? 0 : 1;
    }
    const QString of = lookedUp < ids.size() ? u" (von den ersten %1)"_s.arg(lookedUp) : QString();
    return missing == 0
               ? QString()
               : u"Fotos, deren Datei im Ordner „%1“ nicht zu finden ist: %2%3."_s.arg(folder_)
                     .arg(missing)
                     .arg(of);
}

/// Names the photos.
QString ArchiveUpkeep::Question(const ChosenPhotos& chosen) const {
    const qsizetype count = chosen.Count();
    QStringList lines{count == 1
                          ? u"Soll dieses Bild endgültig gelöscht werden?\n"_s
                          : u"Sollen diese %1 Bilder endgültig gelöscht werden?\n"_s.arg(count)};
    lines += NamesOf(chosen);
    if (count > MostNamed) {
        lines.append(u"… und "_s +
                     platform::CountedText(count - MostNamed, u"weiteres"_s, u"weitere"_s));
    }
    lines.append(u"\nDatensatz, Foto und Original lassen sich nicht zurückholen."_s);
    lines.append(MissingFiles(chosen.ids));
    lines.removeAll(QString());
    return lines.join(u'\n');
}

bool ArchiveUpkeep::Delete(const ChosenPhotos& chosen) {
    if (!chosen.ids.empty()) {
        core::RequireArchiveFolder(folder_);
    }
    if (chosen.IsEmpty() ||
        !controls::AskYesNo(Over(), Question(chosen), controls::Severity::Warning)) {
        return false;
    }
    // Last: what is said after a cancellation counts the others alone.
    return (chosen.ids.empty() ||
            DeleteNow(chosen.ids, u"Bilder löschen"_s, core::Deletable::Chosen)) &&
           DeleteWaiting(chosen.waiting);
}

/// False where some still wait.
bool ArchiveUpkeep::DeleteWaiting(const QStringList& names) {
    const core::FilingQueue& queue = data_.Archiving().Queue();
    const auto left =
        std::ranges::count_if(names, [&](const QString& name) { return !queue.Remove(name); });
    if (left > 0) {
        controls::ShowError(Over(),
                            u"Wartende Fotos, die nicht gelöscht werden konnten: %1. Sie "
                            u"liegen in „%2“."_s.arg(left)
                                .arg(queue.Folder()));
    }
    return left == 0;
}

bool ArchiveUpkeep::DeleteBlank(const std::vector<qint64>& ids) {
    const QString question =
        ids.size() == 1
            ? u"Ein Datensatz ist leer, weil sein Foto nicht geschrieben werden konnte. Soll er "
              u"gelöscht werden?"_s
            : u"%1 Datensätze sind leer, weil ihre Fotos nicht geschrieben werden konnten. Sollen "
              u"sie gelöscht werden?"_s.arg(ids.size());
    return !ids.empty() && controls::AskYesNo(Over(), question) &&
           DeleteNow(ids, u"Leere Datensätze löschen"_s, core::Deletable::Blank);
}

bool ArchiveUpkeep::DeleteNow(const std::vector<qint64>& ids, const QString& title,
                              core::Deletable which) {
    core::Deletion deletion;
    qint64 done = 0;
    bool finished = true;
    try {
        ArchiveProgress box(data_, window_, Over(), title);
        const auto report = [&, show = box.Reporter()](const QString& what, qint64 sofar,
                                                       qint64 all) {
            done = sofar;
            show(what, sofar, all);
        };
        deletion = core::DeleteRecords(data_.ArchiveDatabase(), folder_, ids,
                                       data_.NameSources().now(), report, which);
    } catch (const platform::Cancelled&) {
        finished = false;
    }
    Compact(title);
    if (!finished) {
        controls::ShowInformation(
            Over(),
            u"Das Löschen wurde abgebrochen. Gelöscht sind %1 von %2 Bildern."_s.arg(done).arg(
                ids.size()));
        return false;
    }
    ShowFailures(
        u"Die Datensätze sind gelöscht. Dateien, die noch da sind, werden beim nächsten "
        u"Löschen und bei „Archiv prüfen“ entfernt."_s,
        deletion.failures);
    return true;
}

void ArchiveUpkeep::ShowFailures(const QString& lead, const QStringList& failures) {
    constexpr qsizetype MostShown = 5;
    if (!failures.isEmpty()) {
        controls::ShowError(Over(), lead + u"\n\n"_s + Shortened(failures, MostShown));
    }
}

void ArchiveUpkeep::BackUp() {
    const QString target = controls::AskForFolder(Over(), u"Ordner für die Sicherung des Archivs"_s,
                                                  platform::ReadRegistryText(BackupFolderValue));
    if (target.isEmpty()) {
        return;
    }
    core::Backup backup;
    try {
        ArchiveProgress box(data_, window_, Over(), u"Archiv sichern"_s);
        backup = core::BackUpArchive(data_.ArchiveDatabase(), folder_, target, box.Reporter());
    } catch (const platform::Cancelled&) {
        controls::ShowInformation(
            Over(),
            u"Die Sicherung wurde abgebrochen. Eine ältere Sicherung in diesem Ordner ist noch "
            u"vollständig; die nächste setzt fort, was kopiert ist."_s);
        return;
    }
    platform::WriteRegistryText(BackupFolderValue, target);
    if (backup.failures.isEmpty()) {
        const QLocale german(QLocale::German);
        controls::ShowInformation(
            Over(),
            u"Das Archiv ist in „%1“ gesichert.\n\nNeu: %2, unverändert: %3, gelöscht: %4"_s.arg(
                target, german.toString(backup.copied), german.toString(backup.unchanged),
                german.toString(backup.removed)));
    }
    ShowFailures(u"Die Datenbank ist gesichert, aber nicht alle Dateien."_s, backup.failures);
}

void ArchiveUpkeep::Export(const ChosenPhotos& chosen, const QString& title) {
    const QString target = controls::AskForFolder(
        Over(),
        u"Ordner für den Export von %1"_s.arg(
            chosen.Count() == 1 ? u"einem Bild"_s : u"%1 Bildern"_s.arg(chosen.Count())),
        platform::ReadRegistryText(ExportFolderValue));
    if (target.isEmpty()) {
        return;
    }
    core::Export result;
    try {
        ArchiveProgress box(data_, window_, Over(), u"Bilder exportieren"_s);
        result = core::ExportRecords(
            data_.ArchiveDatabase(), folder_,
            {.ids = chosen.ids, .waiting = chosen.waiting, .queue = data_.Archiving().Queue()},
            target, title, box.Reporter());
    } catch (const platform::Cancelled&) {
        return;  // nothing is left of it
    }
    platform::WriteRegistryText(ExportFolderValue, target);
    controls::ShowInformation(
        Over(), u"In „%1“ liegen die Fotos, ihre Originale und ihre Daten als JSON und CSV."_s.arg(
                    result.folder));
    ShowFailures(u"Nicht alles konnte kopiert werden."_s, result.failures);
}

std::optional<core::ArchiveReport> ArchiveUpkeep::Check() {
    try {
        ArchiveProgress box(data_, window_, Over(), u"Archiv prüfen"_s);
        return core::CheckArchive(data_.ArchiveDatabase(), folder_, box.Reporter());
    } catch (const platform::Cancelled&) {
        return std::nullopt;
    }
}

QString ArchiveUpkeep::RemedyOf(core::ArchiveFault fault) {
    switch (fault) {
        case core::ArchiveFault::Lost:
            return u"&Wiederherstellen"_s;
        case core::ArchiveFault::Changed:
            return u"So über&nehmen"_s;
        case core::ArchiveFault::Missing:
        case core::ArchiveFault::Blank:
        case core::ArchiveFault::Undeleted:
            return u"&Löschen …"_s;
        case core::ArchiveFault::Unreadable:
        case core::ArchiveFault::Outside:
        case core::ArchiveFault::Unknown:
            break;
    }
    return {};
}

bool ArchiveUpkeep::Remedy(core::ArchiveFault fault, const core::ArchiveReport& report) {
    try {
        return RemedyNow(fault, report);
    } catch (const platform::Cancelled&) {
        return false;  // the rest is done the next time
    }
}

bool ArchiveUpkeep::RemedyNow(core::ArchiveFault fault, const core::ArchiveReport& report) {
    switch (fault) {
        case core::ArchiveFault::Lost:
            return Rebuild(report.Paths(fault));
        case core::ArchiveFault::Changed: {
            ArchiveProgress box(data_, window_, Over(), u"Prüfsummen übernehmen"_s);
            core::AdoptChanged(data_.ArchiveDatabase(), folder_, report, box.Reporter());
            return true;
        }
        case core::ArchiveFault::Missing:
            return Delete({report.Ids(fault)});
        case core::ArchiveFault::Blank:
            return DeleteBlank(report.Ids(fault));
        case core::ArchiveFault::Undeleted:
            return RemoveFiles(report.Paths(fault));
        case core::ArchiveFault::Unreadable:
        case core::ArchiveFault::Outside:
        case core::ArchiveFault::Unknown:
            break;
    }
    return false;
}

bool ArchiveUpkeep::Rebuild(const QStringList& paths) {
    core::Rebuilding rebuilding;
    {
        ArchiveProgress box(data_, window_, Over(), u"Datensätze wiederherstellen"_s);
        rebuilding = core::RebuildRecords(data_.ArchiveDatabase(), paths, data_.NameSources().now(),
                                          box.Reporter());
    }
    ShowFailures(
        u"Wiederhergestellte Datensätze: %1. Die übrigen gingen nicht."_s.arg(rebuilding.rebuilt),
        rebuilding.failures);
    return true;
}

bool ArchiveUpkeep::RemoveFiles(const QStringList& paths) {
    if (!controls::AskYesNo(Over(),
                            u"Sollen die Dateien der gelöschten Bilder endgültig entfernt "
                            u"werden?\n\n%1"_s.arg(Shortened(paths, MostNamed)),
                            controls::Severity::Warning)) {
        return false;
    }
    QStringList failures;
    {
        const platform::SilenceWatch watch(core::AwaitedArchive(folder_));
        for (const QString& path : paths) {
            try {
                core::RemoveArchiveFile(path, folder_);
            } catch (const platform::FileError& error) {
                failures.append(error.Text());
            }
        }
    }
    ShowFailures(u"Nicht alle Dateien konnten entfernt werden."_s, failures);
    return true;
}

/// The names are gone from the rows already; where this fails or is given up, the next time does
/// it.
void ArchiveUpkeep::Compact(const QString& title) {
    try {
        ArchiveProgress box(data_, window_, Over(), title);
        core::CompactArchive(data_.ArchiveDatabase(), box.Reporter());
    } catch (const platform::Cancelled&) {
        return;
    } catch (const platform::Error& error) {
        controls::ShowError(
            Over(),
            u"Die Bilder sind gelöscht, aber die Datenbank konnte nicht aufgeräumt werden: "_s +
                error.Text());
    }
}

}  // namespace kadrona::dialogs
