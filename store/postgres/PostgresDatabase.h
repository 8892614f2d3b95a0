#pragma once

#include <QSet>

#include "store/Database.h"
#include "store/postgres/ServerLink.h"

namespace kadrona::store {

/// A database of a PostgreSQL server, in the schema that the server gives the user.
///
/// A list is read from the rows themselves, which are short because the bytes of the large column
/// lie elsewhere: an index entry has no room for texts of any length. The words of a text are an
/// array in a row of the full-text index's table. Each change of a listed table is announced to all
/// who are connected.
class PostgresDatabase : public Database {
 public:
    /// Throws ConnectionLost or StoreError, as ServerLink does.
    explicit PostgresDatabase(const ServerAddress& address, const ServerPatience& patience = {});

    void WhileWaiting(const std::function<void()>& tick) override { link_.WhileWaiting(tick); }
    bool IsLost() const override { return !link_.IsOpen(); }
    /// A table that was there is only looked for again once a statement has failed.
    bool TableExists(const QString& name) override;
    bool IndexExists(const QString& name) override;
    State PresentState() override;
    /// A table of the archive's without a mark is another program's: application -1.
    SchemaMark Mark() override;
    void SetMark(const SchemaMark& mark) override;
    void LockSchema() override;
    QString ColumnType(ColumnKind kind) const override;
    QStringList Supplements(const ListedTable& table) const override;
    qint64 LastNumber(const QString& table, const QString& column) override;
    void RaiseLastNumber(const QString& table, const QString& column, qint64 number) override;
    /// The server itself keeps what was deleted from its dumps; its files it tidies here.
    void Compact(const QString& fullTextIndex, const platform::Progress& progress) override;

 private:
    std::unique_ptr<PreparedStatement> Prepare(const QString& sql) override;
    void Begin() override;
    void BeginSnapshot() override;
    void Commit() override;
    void RollBack() noexcept override;
    QStringList FullTextCreation(const QString& index) const override;
    void SetFullText(const QString& index, qint64 row, const QString& text) override;
    std::vector<qint64> RowsWith(const QString& index,
                                 const std::vector<QByteArray>& words) override;

    bool Has(const QString& kinds, const QString& name);

    ServerLink link_;
    QSet<QString> knownTables_;
};

}  // namespace kadrona::store
