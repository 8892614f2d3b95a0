#pragma once

#include <chrono>

#include "store/Database.h"
#include "store/sqlite/WorkLimit.h"

struct sqlite3;

namespace kadrona::store {

/// The open database "KDRImageBase.db" of one folder. It keeps a rollback journal.
class SqliteDatabase : public Database {
 public:
    /// Opens the database and makes it where there is none yet, with the permissions of
    /// platform/FileModes.h; the folder must exist. `patience` is how long a transaction waits each
    /// time while another program writes; opening waits two seconds of it at most, and whoever only
    /// reads a moment, because a window may be waiting too. Throws StoreError, also where the file
    /// is no database, is a link, or lies behind another user's link. `longestWork` is what
    /// WorkLimit allows a statement: making an index of 100,000 photos takes 0.1 s of it.
    explicit SqliteDatabase(const QString& folder,
                            std::chrono::milliseconds patience = std::chrono::seconds(5),
                            std::chrono::milliseconds longestWork = std::chrono::seconds(5));

    bool TableExists(const QString& name) override;
    bool IndexExists(const QString& name) override;
    State PresentState() override;
    SchemaMark Mark() override;
    void SetMark(const SchemaMark& mark) override;
    void LockSchema() override {}  // a transaction has the database for itself
    QString ColumnType(ColumnKind kind) const override;
    QStringList Supplements(const ListedTable& table) const override;
    qint64 LastNumber(const QString& table, const QString& column) override;
    void RaiseLastNumber(const QString& table, const QString& column, qint64 number) override;
    /// A file that was made without the room for this is written anew once, which takes its size
    /// again on the disk.
    void Compact(const QString& fullTextIndex, const platform::Progress& progress) override;
    bool CopyTo(const QString& path, const platform::Progress& progress) override;

 private:
    struct Closer {
        void operator()(sqlite3* handle) const;
    };

    std::unique_ptr<PreparedStatement> Prepare(const QString& sql) override;
    void Begin() override;
    void BeginSnapshot() override;
    void Commit() override;
    void RollBack() noexcept override;
    QStringList FullTextCreation(const QString& index) const override;
    void SetFullText(const QString& index, qint64 row, const QString& text) override;
    std::vector<qint64> RowsWith(const QString& index,
                                 const std::vector<QByteArray>& words) override;

    bool Has(const QString& type, const QString& name);
    qint64 Number(const QString& query);

    /// The longest that a reader waits. A commit keeps readers out for a few milliseconds.
    static constexpr std::chrono::milliseconds ReadingPatience{300};
    static constexpr std::chrono::milliseconds OpeningPatience{2000};
    /// How long statements wait from now on.
    void WaitUpTo(std::chrono::milliseconds patience);

    std::chrono::milliseconds patience_;
    WorkLimit limit_;
    std::unique_ptr<sqlite3, Closer> handle_;
};

}  // namespace kadrona::store
