#include "core/archive/ArchiveExport.h"

#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>
#include <optional>

#include "core/archive/ArchiveFiles.h"
#include "core/archive/ArchiveOriginals.h"
#include "platform/AtomicFile.h"
#include "platform/Error.h"
#include "platform/FolderProbe.h"
#include "platform/HarmlessText.h"
#include "platform/Paths.h"
#include "platform/Renaming.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

namespace {

const QString DataName = u"Daten.json"_s;
const QString TableName = u"Daten.csv"_s;

/// Behind the folder's name while it is filled: a program that is ended meanwhile leaves faces
/// without a list, and whoever finds them must see that.
const QString UnfinishedMark = u" (unvollständig)"_s;

/// Makes an unfinished folder; the path that it is to have, with a number behind its name where
/// there is one of that name.
QString NewFolder(const QString& target, const QString& title) {
    constexpr int MostTries = 1000;
    if (!IsArchiveFolder(target)) {
        throw platform::FileError(u"Der Ordner „%1“ ist nicht erreichbar."_s.arg(target));
    }
    for (int number = 1; number < MostTries; ++number) {
        const QString name = number == 1 ? title : u"%1 (%2)"_s.arg(title).arg(number);
        QString path = platform::JoinPath(target, name);
        if (!QFileInfo::exists(path) && !QFileInfo::exists(path + UnfinishedMark)) {
            platform::RequireFolder(path + UnfinishedMark);
            return path;
        }
    }
    throw platform::FileError(
        u"Im Ordner „%1“ ist für „%2“ kein Name mehr frei."_s.arg(target, title));
}

class ExportRun {
 public:
    ExportRun(store::Database& database, const QString& archiveFolder, QString folder)
        : database_(database), table_(database), archiveFolder_(archiveFolder) {
        export_.folder = std::move(folder);
        unfinished_ = export_.folder + UnfinishedMark;
        csv_ = QString(QChar::ByteOrderMark) +
               u"Nummer;Datum;Foto;Original;Schablone;Schlüsselworte\r\n"_s;
    }

    void Add(qint64 id) {
        const auto record = table_.Read(id);
        if (!record) {
            return;
        }
        ++export_.records;
        const QString photo =
            Copied(record->folder, record->name, FreeName(id, SafeFileName(record->name)));
        const auto original = ReadOriginal(database_, id);
        const QString kept =
            original ? Copied(original->folder, original->name,
                              FreeName(id, u"Original_"_s + SafeFileName(original->name)))
                     : QString();
        List({.number = id,
              .created = record->created,
              .photo = photo,
              .original = kept,
              .type = record->type,
              .tags = record->tags,
              .changes = original ? original->changes : QString()});
    }

    /// One that waits has no number yet.
    void AddWaiting(const FilingQueue& queue, const QString& name) {
        const WaitingPhoto waiting = queue.ReadKnowledge(name);
        ++export_.records;
        const auto copied = [&](const QString& file, const QString& as) {
            return file.isEmpty() ? QString()
                                  : CopiedFile(file, queue.Folder(),
                                               u"Wartend_"_s + as + u'.' +
                                                   SafeFileName(QFileInfo(file).suffix()));
        };
        List({.number = 0,
              .created = waiting.created,
              .photo = copied(queue.PhotoFile(name), name),
              .original = copied(waiting.original ? waiting.original->file : QString(),
                                 name + u"_Original"_s),
              .type = waiting.templateName,
              .tags = waiting.tags,
              .changes = waiting.original ? waiting.original->changes : QString()});
    }

    Export Finish() {
        platform::WriteFileAtomically(platform::JoinPath(unfinished_, DataName),
                                      QJsonDocument(list_).toJson());
        platform::WriteFileAtomically(platform::JoinPath(unfinished_, TableName), csv_.toUtf8());
        platform::RenameOnDisk(unfinished_, export_.folder);
        return std::move(export_);
    }

    /// Faces without a list serve nobody.
    void Discard() {
        for (const QString& name : written_) {
            QFile::remove(platform::JoinPath(unfinished_, name));
        }
        QDir().rmdir(unfinished_);
    }

 private:
    struct Row {
        qint64 number = 0;
        QDateTime created;
        QString photo;
        QString original;
        QString type;
        QString tags;
        QString changes;
    };

    void List(const Row& row) {
        const QStringList tags = TagLines(row.tags);
        list_.append(
            QJsonObject{{u"number"_s, row.number > 0 ? QJsonValue(row.number) : QJsonValue()},
                        {u"created"_s, row.created.toString(Qt::ISODate)},
                        {u"photo"_s, row.photo},
                        {u"original"_s, row.original},
                        {u"template"_s, row.type},
                        {u"tags"_s, QJsonArray::fromStringList(tags)},
                        {u"changes"_s, row.changes}});
        QStringList cells{row.number > 0 ? QString::number(row.number) : QString(),
                          ShownTime(row.created),
                          row.photo,
                          row.original,
                          row.type,
                          tags.join(u", "_s)};
        for (QString& cell : cells) {
            cell = CsvCell(cell);
        }
        csv_ += cells.join(u';') + u"\r\n"_s;
    }

    /// Another record's file may have the name already; a stick tells no capitals apart.
    QString FreeName(qint64 id, QString name) {
        while (names_.contains(name.toLower())) {
            name.prepend(u"%1_"_s.arg(id));
        }
        return name;
    }

    /// The name of the copy; empty where there is none.
    QString Copied(const QString& storedFolder, const QString& storedName, const QString& name) {
        const QString path = StoredFolderPath(archiveFolder_, StoredPath(storedFolder, storedName));
        if (storedName.isEmpty() || !IsInsideArchive(path, archiveFolder_)) {
            export_.failures.append(u"Die Datei „%1“ ist nicht im Archiv."_s.arg(path));
            return {};
        }
        return CopiedFile(path, archiveFolder_, name);
    }

    /// Of a file below a folder. Whatever rows name it, it is copied once.
    QString CopiedFile(const QString& path, const QString& root, const QString& name) {
        const QString file = QFileInfo(path).canonicalFilePath();
        if (const auto copied = copies_.constFind(file); copied != copies_.constEnd()) {
            return *copied;
        }
        try {
            if (!platform::IsFile(path)) {
                throw platform::FileError(u"Die Datei „%1“ gibt es nicht."_s.arg(path));
            }
            RequireOwnWay(path, root);
            names_.insert(name.toLower());
            written_.append(name);
            CopyArchiveFile(path, platform::JoinPath(unfinished_, name), platform::Links::Own);
            copies_.insert(file, name);
            return name;
        } catch (const platform::FileError& error) {
            export_.failures.append(error.Text());
            return {};
        }
    }

    store::Database& database_;
    ArchiveTable table_;
    const QString& archiveFolder_;
    QString unfinished_;
    QStringList written_{DataName, TableName};
    /// Of each file that was copied, the name of its copy.
    QHash<QString, QString> copies_;
    QSet<QString> names_{DataName.toLower(), TableName.toLower()};
    QString csv_;
    QJsonArray list_;
    Export export_;
};

}  // namespace

QString CsvCell(QString text) {
    static const QString formula = u"=+-@"_s;
    text = platform::HarmlessLine(text);
    if (!text.isEmpty() && formula.contains(text.front())) {
        text.prepend(u'\'');
    }
    return u'"' + text.replace(u"\""_s, u"\"\""_s) + u'"';
}

Export ExportRecords(store::Database& database, const QString& archiveFolder,
                     const ExportSelection& selection, const QString& target, const QString& title,
                     const platform::Progress& progress) {
    RequireArchiveFolder(archiveFolder);
    const platform::Progress answering = WhileAnswering({archiveFolder, target}, progress);
    ExportRun run(database, archiveFolder, NewFolder(target, SafeFileName(title)));
    qint64 done = 0;
    try {
        const qint64 all = static_cast<qint64>(selection.ids.size()) + selection.waiting.size();
        const auto step = [&] { answering(u"Bilder werden exportiert …"_s, done++, all); };
        for (const qint64 id : selection.ids) {
            step();
            run.Add(id);
        }
        for (const QString& name : selection.waiting) {
            step();
            run.AddWaiting(selection.queue, name);
        }
        return run.Finish();
    } catch (...) {
        if (platform::LookAtFolder(target) != platform::FolderState::Silent) {
            run.Discard();
        }
        throw;
    }
}

}  // namespace kadrona::core
