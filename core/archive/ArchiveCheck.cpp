#include "core/archive/ArchiveCheck.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSet>
#include <algorithm>

#include "core/archive/ArchiveDeletion.h"
#include "core/archive/ArchiveFiles.h"
#include "core/archive/ArchiveOriginals.h"
#include "core/archive/KeepingSchema.h"
#include "platform/Error.h"
#include "platform/FolderListing.h"
#include "platform/Paths.h"
#include "store/Statement.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

namespace {

/// A file that the database knows.
struct KnownFile {
    qint64 id = 0;
    QString path;
    /// Nothing where none was kept.
    std::optional<FileDigest> digest;
    bool isOriginal = false;
};

std::vector<KnownFile> FilesOf(store::Database& database, const QString& archiveFolder,
                               const QString& query, bool areOriginals) {
    std::vector<KnownFile> files;
    store::Statement select(database, query);
    while (select.Step()) {
        KnownFile& file = files.emplace_back();
        file.id = select.Integer(0);
        file.path = QDir::cleanPath(
            StoredFolderPath(archiveFolder, StoredPath(select.Text(1), select.Text(2))));
        if (!select.IsNull(4)) {
            file.digest = FileDigest{select.Integer(3), select.Text(4)};
        }
        file.isOriginal = areOriginals;
    }
    return files;
}

std::vector<KnownFile> KnownFiles(store::Database& database, const QString& archiveFolder) {
    std::vector<KnownFile> files =
        FilesOf(database, archiveFolder,
                uR"(SELECT p."ID", p."ImgAblage", p."ImgName", c."Bytes", c."Sha256"
                    FROM "ImgDB" p LEFT JOIN "ImgChecksum" c ON c."ID" = p."ID"
                    WHERE p."ImgName" IS NOT NULL ORDER BY p."ID")"_s,
                false);
    const std::vector<KnownFile> originals =
        FilesOf(database, archiveFolder,
                uR"(SELECT "ID", "Folder", "Name", "Bytes", "Sha256" FROM "ImgOriginal"
                    ORDER BY "ID")"_s,
                true);
    files.insert(files.end(), originals.begin(), originals.end());
    return files;
}

/// Below the archive's folder.
bool IsPhotoPath(const QString& path) {
    static const QRegularExpression form(
        u"^[0-9]{4}/[0-9]{2}/[0-9]{4}_[0-9]{2}_[0-9]{5,12}\\.jpg\\z"_s);
    return form.match(path).hasMatch();
}

class Check {
 public:
    Check(store::Database& database, const QString& archiveFolder, CheckedPlace place,
          const platform::Progress& progress)
        : database_(database),
          folder_(archiveFolder),
          place_(place),
          table_(database),
          progress_(progress) {}

    ArchiveReport Run() {
        const std::vector<qint64> blank = BlankRecords(database_);
        const std::vector<KnownFile> files = KnownFiles(database_, folder_);
        qint64 done = 0;
        for (const KnownFile& file : files) {
            const FileTick tick = [&, done] {
                progress_(u"Die Fotos werden geprüft …"_s, done, static_cast<qint64>(files.size()));
            };
            tick();
            Look(file, tick);
            ++done;
            known_.insert(file.path);
        }
        KeepAdopted();
        report_.records = static_cast<qint64>(table_.Ids().size());
        FindStrangers();
        DropWhatWasBeingFiled(blank);
        return std::move(report_);
    }

 private:
    void Note(ArchiveFault fault, const KnownFile& file) {
        report_.findings.push_back({fault, file.id, file.path});
    }

    void Look(const KnownFile& file, const FileTick& tick) {
        if (!IsInsideArchive(file.path, folder_)) {
            return Note(ArchiveFault::Outside, file);
        }
        try {
            if (file.digest && platform::IsFile(file.path) &&
                QFileInfo(file.path).size() != file.digest->bytes) {
                return Note(ArchiveFault::Changed, file);  // however large it is now
            }
            const auto digest = DigestOf(file.path, tick);
            if (!digest) {
                // Another program may have deleted it meanwhile.
                return table_.Read(file.id) ? Note(ArchiveFault::Missing, file) : void();
            }
            if (!file.digest) {
                if (place_ == CheckedPlace::Archive) {
                    Adopt(file.id, *digest);
                }
            } else if (*digest == *file.digest) {
                ++report_.sound;
            } else {
                Note(ArchiveFault::Changed, file);
            }
        } catch (const platform::FileError&) {
            Note(ArchiveFault::Unreadable, file);
        }
    }

    /// Many at once, for each transaction waits for the disk.
    void Adopt(qint64 id, const FileDigest& digest) {
        constexpr size_t AtOnce = 500;
        adopted_.emplace_back(id, digest);
        ++report_.adopted;
        if (adopted_.size() >= AtOnce) {
            KeepAdopted();
        }
    }

    void KeepAdopted() {
        if (!adopted_.empty()) {
            table_.SetDigests(adopted_);
            adopted_.clear();
        }
    }

    void FindStrangers() {
        qint64 seen = 0;
        const auto unread = platform::WalkFolder(folder_, [&](const platform::FoundFile& file) {
            progress_(u"Der Ordner des Archivs wird durchgesehen …"_s, seen++, 0);
            if (!known_.contains(file.path)) {
                NoteStranger(file.path);
            }
        });
        for (const platform::UnreadFolder& folder : unread) {
            report_.findings.push_back({ArchiveFault::Unreadable, 0, folder.path});
        }
    }

    /// What was filed since the records were read is none.
    void NoteStranger(const QString& path) {
        const QString relative = QDir(folder_).relativeFilePath(path);
        const QString stored = QString(relative).replace(u'/', u'\\');
        if (IsNamed(NumberInName(path), stored)) {
            return;
        }
        const qint64 deleted = DeletedWith(stored);
        report_.findings.push_back({deleted > 0             ? ArchiveFault::Undeleted
                                    : IsPhotoPath(relative) ? ArchiveFault::Lost
                                                            : ArchiveFault::Unknown,
                                    deleted, path});
    }

    /// A photo that was just being filed looked like a blank record and a file without one.
    void DropWhatWasBeingFiled(const std::vector<qint64>& blankBefore) {
        std::erase_if(report_.findings, [this](const ArchiveFinding& finding) {
            const QString relative = QDir(folder_).relativeFilePath(finding.path);
            return finding.fault == ArchiveFault::Lost &&
                   IsNamed(NumberInName(finding.path), QString(relative).replace(u'/', u'\\'));
        });
        std::vector<ArchiveFinding> still;
        for (const qint64 id : BlankRecords(database_)) {
            if (std::ranges::binary_search(blankBefore, id)) {
                still.push_back({ArchiveFault::Blank, id, {}});
            }
        }
        report_.findings.insert(report_.findings.begin(), still.begin(), still.end());
    }

    /// By the record of that number.
    bool IsNamed(qint64 number, const QString& stored) {
        const auto record = number > 0 ? table_.Read(number) : std::nullopt;
        const auto original = record ? ReadOriginal(database_, number) : std::nullopt;
        return (record && StoredPath(record->folder, record->name) == stored) ||
               (original && StoredPath(original->folder, original->name) == stored);
    }

    /// The number of the deleted record that had the file; 0 where none had.
    qint64 DeletedWith(const QString& stored) {
        store::Statement deleted(database_,
                                 uR"(SELECT "ID" FROM "ImgDeletedFile" WHERE "Path" = ?)"_s);
        return deleted.Bind(1, stored).Step() ? deleted.Integer(0) : 0;
    }

    store::Database& database_;
    const QString& folder_;
    CheckedPlace place_;
    ArchiveTable table_;
    const platform::Progress& progress_;
    QSet<QString> known_;
    std::vector<std::pair<qint64, FileDigest>> adopted_;
    ArchiveReport report_;
};

}  // namespace

bool ArchiveReport::Has(ArchiveFault fault) const {
    return std::ranges::any_of(
        findings, [=](const ArchiveFinding& finding) { return finding.fault == fault; });
}

std::vector<qint64> ArchiveReport::Ids(ArchiveFault fault) const {
    std::vector<qint64> ids;
    for (const ArchiveFinding& finding : findings) {
        if (finding.fault == fault && finding.id > 0) {
            ids.push_back(finding.id);
        }
    }
    return ids;
}

QStringList ArchiveReport::Paths(ArchiveFault fault) const {
    QStringList paths;
    for (const ArchiveFinding& finding : findings) {
        if (finding.fault == fault) {
            paths.append(finding.path);
        }
    }
    return paths;
}

ArchiveFaultText TextOf(ArchiveFault fault) {
    switch (fault) {
        case ArchiveFault::Missing:
            return {u"Die Datei fehlt"_s,
                    u"Holen Sie sie aus einer Sicherung zurück, oder löschen Sie das Bild im "
                    u"Archiv."_s};
        case ArchiveFault::Changed:
            return {u"Die Datei ist nicht mehr, wie sie geschrieben wurde"_s,
                    u"Ist sie beschädigt, holen Sie sie aus einer Sicherung zurück. Haben Sie sie "
                    u"selbst geändert, übernehmen Sie sie so."_s};
        case ArchiveFault::Unreadable:
            return {u"Die Datei oder der Ordner kann nicht gelesen werden"_s,
                    u"Prüfen Sie Rechte und Datenträger, oder holen Sie sie aus einer Sicherung "
                    u"zurück."_s};
        case ArchiveFault::Outside:
            return {u"Der Datensatz führt aus dem Archiv hinaus"_s,
                    u"Das Programm hat ihn nicht so geschrieben; die Datei wird nie benutzt."_s};
        case ArchiveFault::Lost:
            return {u"Ein Foto des Archivs hat keinen Datensatz"_s,
                    u"Er kann aus den Schlüsselworten im Foto wiederhergestellt werden."_s};
        case ArchiveFault::Unknown:
            return {u"Die Datei gehört nicht zum Archiv"_s,
                    u"Sie bleibt, wo sie ist, und wird mitgesichert."_s};
        case ArchiveFault::Undeleted:
            return {u"Die Datei gehört zu einem gelöschten Bild"_s,
                    u"Sie konnte damals nicht entfernt werden, oder eine Sicherung brachte sie "
                    u"zurück. Löschen Sie sie."_s};
        case ArchiveFault::Blank:
            return {u"Der Datensatz ist leer"_s,
                    u"Das Foto konnte damals nicht geschrieben werden. Der Datensatz kann weg."_s};
    }
    return {};
}

ArchiveReport CheckArchive(store::Database& database, const QString& archiveFolder,
                           const platform::Progress& progress, CheckedPlace place) {
    RequireArchiveFolder(archiveFolder);
    CreateKeeping(database);
    if (place == CheckedPlace::Archive) {
        FinishDeletion(database, archiveFolder);
    }
    const platform::Progress answering = WhileAnswering({archiveFolder}, progress);
    return Check(database, archiveFolder, place, answering).Run();
}

void AdoptChanged(store::Database& database, const QString& archiveFolder,
                  const ArchiveReport& report, const platform::Progress& progress) {
    const QString originals = QDir::cleanPath(StoredFolderPath(archiveFolder, OriginalsFolder));
    const platform::Progress answering = WhileAnswering({archiveFolder}, progress);
    qint64 done = 0;
    for (const ArchiveFinding& finding : report.findings) {
        const FileTick tick = [&, done] {
            answering(u"Prüfsummen werden übernommen …"_s, done,
                      static_cast<qint64>(report.findings.size()));
        };
        tick();
        ++done;
        const auto digest =
            finding.fault == ArchiveFault::Changed ? DigestOf(finding.path, tick) : std::nullopt;
        if (!digest) {
            continue;
        }
        if (!IsInsideArchive(finding.path, originals)) {
            ArchiveTable(database).SetDigests({{finding.id, *digest}});
            continue;
        }
        store::Statement(database,
                         uR"(UPDATE "ImgOriginal" SET "Bytes" = ?, "Sha256" = ? WHERE "ID" = ?)"_s)
            .Bind(1, digest->bytes)
            .Bind(2, digest->sha256)
            .Bind(3, finding.id)
            .Step();
    }
}

}  // namespace kadrona::core
