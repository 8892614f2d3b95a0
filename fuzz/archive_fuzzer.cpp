#include <QDir>
#include <QTemporaryDir>
#include <QtGlobal>

#include "core/archive/ArchiveFiles.h"
#include "core/archive/ArchiveSchema.h"
#include "core/archive/ArchiveTable.h"
#include "core/archive/PhotoArchive.h"
#include "platform/Error.h"
#include "store/Statement.h"
#include "store/sqlite/SqliteDatabase.h"

using namespace kadrona;
using namespace Qt::StringLiterals;

namespace {

/// A database as the program makes it, for all inputs.
struct Archive {
    QTemporaryDir folder{u"/dev/shm/archive-XXXXXX"_s};
    store::SqliteDatabase database{folder.path()};
    core::ArchiveTable table{database};

    Archive() { core::CreateArchive(database); }
};

/// Binds a field as the type that its first byte says: SQLite keeps whatever stands in a file.
void Bind(store::Statement& statement, int parameter, QByteArrayView field) {
    const QByteArrayView value = field.isEmpty() ? field : field.sliced(1);
    switch (field.isEmpty() ? 0 : field[0] % 4) {
        case 1:
            statement.Bind(parameter, value.toByteArray().toLongLong());
            break;
        case 2:
            statement.Bind(parameter, value);
            break;
        case 3:
            statement.Bind(parameter, QString::fromUtf8(value));
            break;
        default:
            break;  // NULL
    }
}

/// What the archive's window does with records.
void Use(core::ArchiveTable& table, const QString& search) {
    const QString archive = u"/dev/shm/archive"_s;
    for (const qint64 id : table.Ids()) {
        const auto record = table.Read(id);
        if (!record) {
            qFatal("a listed record cannot be read");
        }
        core::ShownTime(record->created);
        const QString path = archive + u'/' + record->folder + u'/' + record->name;
        const QString clean = QDir::cleanPath(path);
        if (core::IsInsideArchive(path, archive) && clean != archive &&
            !clean.startsWith(archive + u'/')) {
            qFatal("a record leads out of the archive");
        }
        table.ReadThumbnail(id);
        table.ReplaceTags(id, record->tags, search);
    }
    table.Find(search);
    table.SetFilter(u"TEXTSEARCH('%1' IN ImgTags)"_s.arg(search));
    table.Ids();
    table.SetFilter({});
}

}  // namespace

/// The input is the fields of records, parted by zero bytes; the first is also searched for.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static Archive archive;
    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    const QByteArrayList fields = bytes.split('\0');
    archive.database.Execute(u"DELETE FROM ImgDB"_s);
    constexpr int Fields = 6;
    for (qsizetype i = 0; i + Fields <= fields.size() && i < 10 * Fields; i += Fields) {
        store::Statement insert(archive.database,
                                u"INSERT INTO ImgDB (ImgName, ImgType, ImgErstellt, ImgAblage, "
                                "ImgTags, ImgThumb) VALUES (?, ?, ?, ?, ?, ?)"_s);
        for (int field = 0; field < Fields; ++field) {
            Bind(insert, field + 1, fields[i + field]);
        }
        insert.Step();
    }
    try {
        Use(archive.table, QString::fromUtf8(fields.first()).left(200));
    } catch (const platform::Error&) {
        // A search that is none is refused.
    }
    return 0;
}
