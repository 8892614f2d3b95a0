#include "core/archive/ArchiveFiles.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <algorithm>
#include <cerrno>
#include <chrono>
#include <memory>

#include "core/archive/KeepingSchema.h"
#include "core/base/FileNaming.h"
#include "platform/AtomicFile.h"
#include "platform/Error.h"
#include "platform/FolderListing.h"
#include "platform/FolderProbe.h"
#include "platform/HarmlessText.h"
#include "platform/Paths.h"
#include "platform/RegularFile.h"
#include "platform/SilenceWatch.h"
#include "platform/SystemReason.h"
#include "store/Statement.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

namespace {

/// A slow share brings as much before the user must be told something.
constexpr qint64 BytesAtOnce = 1 << 16;

platform::FileError FailedRemoval(const QString& path, const QString& reason) {
    return platform::FileError{
        u"Die Datei „%1“ konnte nicht gelöscht werden: %2."_s.arg(path, reason)};
}

platform::FileError FailedReading(const QString& path, const QString& reason) {
    return platform::FileError{
        u"Die Datei „%1“ konnte nicht gelesen werden: %2."_s.arg(path, reason)};
}

/// The way to the file has been looked at; what was put in its place since is not followed where
/// it is another user's link.
platform::Opening OpenOwn(QFile& file, const QString& path) {
    const platform::Opening opening = OpenRegularFile(file, path, platform::LastPart::IsNoLink);
    if (opening.error != ELOOP) {
        return opening;
    }
    const QFileInfo link(path);
    const QString folder = QFileInfo(link.path()).canonicalFilePath();
    const platform::FollowedPath followed =
        platform::FollowLinks(platform::JoinPath(folder, link.fileName()), platform::Links::Own);
    if (!followed.refusal.isEmpty()) {
        throw FailedReading(path, followed.refusal);
    }
    return OpenRegularFile(file, followed.path, platform::LastPart::IsNoLink);
}

/// Up to the archive's own folder, which stays.
void RemoveEmptyFolders(QString folder, const QString& root) {
    while (folder != root && folder.startsWith(root) && QDir().rmdir(folder)) {
        folder = QFileInfo(folder).path();
    }
}

}  // namespace

QString StoredFolderPath(const QString& archiveFolder, QString stored) {
    return platform::JoinPath(archiveFolder, stored.replace(u'\\', QDir::separator()));
}

QString StoredPath(const QString& storedFolder, const QString& name) {
    return storedFolder + u'\\' + name;
}

QSet<QString> NamedFiles(store::Database& database) {
    QSet<QString> paths;
    for (const QString& query :
         {uR"(SELECT "ImgAblage", "ImgName" FROM "ImgDB" WHERE "ImgName" IS NOT NULL)"_s,
          uR"(SELECT "Folder", "Name" FROM "ImgOriginal")"_s}) {
        store::Statement select(database, query);
        while (select.Step()) {
            paths.insert(StoredPath(select.Text(0), select.Text(1)));
        }
    }
    return paths;
}

QSet<QString> FilesOfNoDeletedPhoto(store::Database& database, const QSet<QString>& paths) {
    if (paths.isEmpty()) {
        return {};
    }
    // A second original of a photo has "(2)".
    static const QRegularExpression form(
        u"/[0-9]{4}_[0-9]{2}_[0-9]{5,12}(?: \\([0-9]{1,3}\\))?\\.[a-z0-9]{1,5}\\z"_s);
    const auto clean = [](QString path) { return QDir::cleanPath(path.replace(u'\\', u'/')); };
    QSet<QString> named;
    for (const QString& path : NamedFiles(database)) {
        named.insert(clean(path));
    }
    QSet<QString> others;
    for (const QString& path : paths) {
        const QString file = clean(path);
        if (named.contains(file) || !form.match(file).hasMatch()) {
            others.insert(path);
        }
    }
    return others;
}

qint64 NumberInName(const QString& path) {
    static const QRegularExpression form(u"(?:^|/)[0-9]{4}_[0-9]{2}_([0-9]{5,9})\\.[^/.]*\\z"_s);
    return form.match(path).captured(1).toLongLong();
}

bool IsInsideArchive(const QString& path, const QString& archiveFolder) {
    const QString root = QDir::cleanPath(DelLastBackslash(archiveFolder));
    const QString clean = QDir::cleanPath(path);
    return clean == root || clean.startsWith(platform::JoinPath(root, {}));
}

QString ForeignWay(const QString& path, const QString& root) {
    if (!IsInsideArchive(path, root)) {
        return u"Sie liegt außerhalb des Archivs"_s;
    }
    // The folder itself is one that the user chose.
    const QString folder = QDir::cleanPath(DelLastBackslash(root));
    const QString below = QDir::cleanPath(path).sliced(folder.size());
    return platform::FollowLinks(QFileInfo(folder).canonicalFilePath() + below,
                                 platform::Links::Own)
        .refusal;
}

void RequireOwnWay(const QString& path, const QString& root) {
    if (const QString reason = ForeignWay(path, root); !reason.isEmpty()) {
        throw platform::FileError(u"„%1“ wird nicht benutzt: %2."_s.arg(path, reason));
    }
}

bool IsArchiveFolder(const QString& archiveFolder) {
    const platform::FolderState state = archiveFolder.isEmpty()
                                            ? platform::FolderState::Missing
                                            : platform::LookAtFolder(archiveFolder);
    if (state == platform::FolderState::Silent) {
        throw platform::FileError(
            u"Der Ordner „%1“ antwortet nicht. Ist sein Laufwerk oder die Verbindung dorthin "
            u"gestört?"_s.arg(archiveFolder));
    }
    return state == platform::FolderState::There;
}

void RequireArchiveFolder(const QString& archiveFolder) {
    if (!IsArchiveFolder(archiveFolder)) {
        throw platform::FileError(
            u"Der Ordner des Bildarchivs „%1“ ist nicht erreichbar."_s.arg(archiveFolder));
    }
}

QString WhyUnmounted(store::Database& database, const QString& archiveFolder) {
    const QStringList entries = platform::FolderEntries(archiveFolder);
    const bool empty =
        std::ranges::all_of(entries, [](const QString& entry) { return entry.startsWith(u'.'); });
    const bool hasPhotos =
        empty && store::Statement(
                     database, uR"(SELECT "ID" FROM "ImgDB" WHERE "ImgName" IS NOT NULL LIMIT 1)"_s)
                     .Step();
    return hasPhotos
               ? u"Der Ordner des Bildarchivs „%1“ ist leer; ist sein Laufwerk verbunden?"_s.arg(
                     archiveFolder)
               : QString();
}

QString AwaitedArchive(const QString& archiveFolder) {
    return u"das Bildarchiv in „%1“"_s.arg(archiveFolder);
}

platform::Progress WhileAnswering(const QStringList& folders, platform::Progress progress) {
    using Clock = std::chrono::steady_clock;
    static constexpr std::chrono::milliseconds BetweenLooks(500);
    const auto watch =
        std::make_shared<platform::SilenceWatch>(AwaitedArchive(folders.join(u"“, „"_s)));
    return [folders, progress = std::move(progress), watch, next = Clock::now() + BetweenLooks](
               const QString& what, qint64 done, qint64 total) mutable {
        progress(what, done, total);
        platform::SilenceWatch::NoteAnswer();
        if (Clock::now() >= next) {
            for (const QString& folder : folders) {
                RequireArchiveFolder(folder);
            }
            next = Clock::now() + BetweenLooks;
        }
    };
}

std::optional<FileDigest> DigestOf(const QString& path, const FileTick& tick) {
    QFile file;
    if (const platform::Opening opening = OpenOwn(file, path); !opening) {
        if (opening.outcome != platform::Opening::Outcome::Failed) {
            return std::nullopt;
        }
        throw FailedReading(path, opening.Reason());
    }
    QCryptographicHash hash(QCryptographicHash::Sha256);
    for (QByteArray part; !(part = file.read(BytesAtOnce)).isEmpty(); tick()) {
        hash.addData(part);
    }
    if (file.error() != QFileDevice::NoError) {
        throw FailedReading(path, platform::SystemReason(file));
    }
    return FileDigest{file.size(), QString::fromLatin1(hash.result().toHex())};
}

void CopyArchiveFile(const QString& from, const QString& to, platform::Links links,
                     const FileTick& tick) {
    QFile source;
    if (const platform::Opening opening =
            links == platform::Links::All
                ? OpenRegularFile(source, from, platform::LastPart::MayBeLink)
                : OpenOwn(source, from);
        !opening) {
        throw FailedReading(from, opening.Reason());
    }
    platform::AtomicFile copy(to);
    while (true) {
        const QByteArray part = source.read(BytesAtOnce);
        if (part.isEmpty()) {
            break;
        }
        copy.Device().write(part);
        tick();
    }
    if (source.error() != QFileDevice::NoError) {
        throw FailedReading(from, platform::SystemReason(source));
    }
    copy.SetModified(source.fileTime(QFileDevice::FileModificationTime));
    copy.Commit();
}

void KeepDigest(store::Database& database, qint64 id, const QString& path) {
    if (const auto digest = DigestOf(path)) {
        CreateKeeping(database);
        ArchiveTable(database).SetDigests({{id, *digest}});
    }
}

void RemoveArchiveFile(const QString& path, const QString& archiveFolder) {
    const QString folder = QFileInfo(QDir::cleanPath(path)).path();
    if (const QString reason = ForeignWay(folder, archiveFolder); !reason.isEmpty()) {
        throw FailedRemoval(path, reason);
    }
    QFile file(path);
    if (!file.remove() && (QFileInfo::exists(path) || QFileInfo(path).isSymLink())) {
        throw FailedRemoval(path, platform::SystemReason(file));
    }
    RemoveEmptyFolders(folder, QDir::cleanPath(DelLastBackslash(archiveFolder)));
}

QString SafeFileName(const QString& name) {
    constexpr int MostCharacters = 100;
    QString safe = platform::HarmlessLine(name).left(MostCharacters);
    for (QChar& character : safe) {
        if (u"/\\:*?\"<>|\uFFFD"_s.contains(character)) {
            character = u'_';
        }
    }
    safe = safe.trimmed();
    while (safe.startsWith(u'.') || safe.startsWith(u'-')) {
        safe.remove(0, 1);
    }
    while (safe.endsWith(u'.') || safe.endsWith(u' ')) {
        safe.chop(1);
    }
    return safe.isEmpty() ? u"Unbenannt"_s : safe;
}

}  // namespace kadrona::core
