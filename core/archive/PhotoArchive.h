#pragma once

#include <QString>
#include <memory>

#include "core/archive/ArchiveTable.h"
#include "core/base/FileNaming.h"
#include "imaging/document/LayeredImage.h"
#include "store/Database.h"

namespace kadrona::core {

/// What is known of a photo that is to be filed.
struct PhotoToFile {
    QString archiveFolder;
    QString templateName;
    QString tags;  ///< see TagText
    QString objectName;
};

/// How the filing of a photo ended.
enum class Filing { Done, NoDatabase, NoFolder };

/// The archive: its database, and the photos in the folders of the months.
class PhotoArchive {
 public:
    /// `names` outlives the archive.
    explicit PhotoArchive(const NameSources& names) : names_(names) {}

    /// Opens the database in a folder. Throws platform::Error.
    void Connect(const QString& folder);
    /// Makes what the database lacks; false where none is connected. Throws platform::Error.
    bool Create();
    /// Opened on first use; null while there is none.
    ArchiveTable* Table();

    /// Files an image's photo: as a JPEG in the month's folder below the archive's, which is made
    /// where the archive's exists, and as a record, the current one from then on. A file that is
    /// there already is never replaced: its number is left out. Tags and object name go into the
    /// image's IPTC items as SetIptcTags does, and into the file.
    ///
    /// Does nothing without the table, or where the month's folder cannot be made. Throws
    /// imaging::WriteError where the photo cannot be written, which leaves an empty record, and
    /// store::StoreError where its record cannot; no photo is left then.
    Filing File(imaging::LayeredImage& image, const PhotoToFile& known);

    /// 0 is none.
    qint64 CurrentRecord() const { return currentRecord_; }
    void SetCurrentRecord(qint64 id) { currentRecord_ = id; }
    /// Where the current record's photo should be.
    QString PathOfCurrent(const QString& archiveFolder);
    /// False for a path that a record's text leads out of the archive.
    static bool IsInside(const QString& path, const QString& archiveFolder);

    /// Lists only the records whose tags hold every word of `text`; all again where it is empty.
    void Filter(const QString& text);

 private:
    const NameSources& names_;
    std::unique_ptr<store::Database> database_;
    std::unique_ptr<ArchiveTable> table_;
    qint64 currentRecord_ = 0;
};

}  // namespace kadrona::core
