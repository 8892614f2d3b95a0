#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QStringList>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

#include "core/archive/ArchiveListing.h"
#include "core/archive/FiledFiles.h"
#include "store/Database.h"

namespace kadrona::core {

/// One record of the table "ImgDB", without its thumbnail.
struct ArchiveRecord {
    qint64 id = 0;      ///< "ID"
    QString name;       ///< "ImgName": file name of the photo
    QString type;       ///< "ImgType": file name of the template
    QDateTime created;  ///< "ImgErstellt", local time
    QString folder;     ///< "ImgAblage": month folder below the archive folder
    QString tags;       ///< "ImgTags": see TagText
};

/// Tags as they are stored: CR LF after every line.
QString TagText(const QStringList& lines);

/// The lines of tags as they are stored, without empty ones.
QStringList TagLines(const QString& tags);

/// "ImgErstellt" as it is shown and searched: "07.03.2026 14:30"; empty where there is none.
QString ShownTime(const QDateTime& created);

/// The open table "ImgDB" on its index "ImgErstellt_idx": every list is ordered newest first.
/// Members throw store::StoreError.
class ArchiveTable {
 public:
    /// `database` outlives the table.
    explicit ArchiveTable(store::Database& database) : database_(database) {}

    /// Posts an empty record and returns the number that it got: the next one, or the first after
    /// it that `isTaken` does not refuse.
    qint64 Insert(const std::function<bool(qint64 id)>& isTaken = [](qint64) { return false; });
    /// Sets the fields of the record `record.id` and its thumbnail, a JPEG. What is longer than its
    /// field is cut.
    /// With what is known of the record's files where that is given. A record that is gone
    /// meanwhile comes back.
    void Fill(const ArchiveRecord& record, QByteArrayView thumbnail,
              const std::optional<FiledFiles>& files = {});
    /// What is known of the photos' files from now on.
    void SetDigests(const std::vector<std::pair<qint64, FileDigest>>& photos);

    /// The records' numbers, as far as the table's filter lets them through.
    std::vector<qint64> Ids() const;

    /// The numbers of those that the text finds in the shown fields (date, name, template, tags),
    /// wherever it stands in them, whatever its case and marks; dates also as 2026-03-07. Words all
    /// have to occur; "*" stands for any run of characters; words in double quotes have to stand
    /// together; a word after a minus sign must not occur. An empty text finds all.
    std::vector<qint64> Find(const QString& text) const;

    /// Whether any record may have changed since a list was made last, here or by another program.
    bool HasChanged() const { return listing_ && database_.PresentState() != listed_; }

    /// Nothing where there is no such record (any more).
    std::optional<ArchiveRecord> Read(qint64 id) const;
    /// The JPEG; empty where the record has none.
    QByteArray ReadThumbnail(qint64 id) const;
    /// Does nothing where there is no such record.
    void SetTags(qint64 id, const QString& tags);
    /// The same, but false, with nothing changed, where the record's tags are no longer `expected`
    /// or it is gone: another program has changed or deleted it meanwhile.
    bool ReplaceTags(qint64 id, const QString& expected, const QString& tags);

    /// Only what the full-text expression finds is listed from now on, for example
    /// TEXTSEARCH('Müller' IN ImgTags); an empty one lists all again.
    void SetFilter(const QString& expression);

 private:
    /// Inside a transaction.
    void WriteTags(qint64 id, const QString& tags);
    void WriteDigest(qint64 id, const FileDigest& photo);
    /// What an older record of that number or with that file has left: neither is deleted (any
    /// more).
    void ForgetDeletion(qint64 id, const QString& storedPath);
    const ArchiveListing& Listing() const;
    std::vector<qint64> Filtered(std::vector<qint64> ids) const;

    store::Database& database_;
    /// What the full-text filter searches for.
    std::optional<QString> filter_;
    /// Read when it is needed and kept until anything in the database changes.
    mutable std::optional<ArchiveListing> listing_;
    mutable store::Database::State listed_;
};

}  // namespace kadrona::core
