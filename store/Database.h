#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <functional>
#include <memory>
#include <vector>

#include "platform/Progress.h"

namespace kadrona::store {

class PreparedStatement;

/// Types that databases call by names of their own.
enum class ColumnKind {
    AutomaticNumber,  ///< the primary key, given by the database and never twice
    Memo,             ///< text of any length
    Graphic,          ///< bytes of any length
};

/// A table that lists are made of.
struct ListedTable {
    QString name;
    QString description;
    /// The index that lists are read from, and its keys, the last first.
    QString index;
    QStringList keys;
    /// What a list shows beside the keys.
    QStringList columns;
    /// The column whose bytes no list reads.
    QString large;
};

/// Who made a database, and by which version of its tables; 0 where nobody has said so.
struct SchemaMark {
    qint64 application = 0;
    qint64 version = 0;
};

/// An open database, which several programs may have open at once. Every statement and transaction
/// over it must end before it does. Statements are the same for all kinds but for what the
/// functions below give; "?" stands for a parameter, times are text as "2026-03-07 14:30:05.123".
///
/// Whatever ends a program or the machine in the middle of a change: who opens the database next
/// finds the state before it. All members that can fail throw StoreError, or ConnectionLost.
class Database {
 public:
    virtual ~Database() = default;
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    /// What messages call it: the path of its file, or the database and its server.
    const QString& Name() const { return name_; }

    /// Whether it is gone for good, as a server can be: every call throws ConnectionLost at once.
    virtual bool IsLost() const { return false; }

    /// Where statements are waited for, as at a server, `tick` is called meanwhile, from now on;
    /// what it throws ends the statement and the connection. Elsewhere nothing happens.
    virtual void WhileWaiting(const std::function<void()>& /*tick*/) {}

    /// Runs one statement that yields no rows worth reading.
    void Execute(const QString& sql);

    /// Runs the statements as one batch: all of them or, where one throws, none.
    void RunScript(const QStringList& statements);

    virtual bool TableExists(const QString& name) = 0;
    virtual bool IndexExists(const QString& name) = 0;

    /// Another one after every change, whichever program made it.
    struct State {
        qint64 ownChanges = 0;
        qint64 othersVersion = 0;
        bool operator==(const State&) const = default;
    };
    virtual State PresentState() = 0;

    virtual SchemaMark Mark() = 0;
    /// Inside a transaction.
    virtual void SetMark(const SchemaMark& mark) = 0;

    /// Inside a transaction: until its end nobody else makes tables who asks for this too.
    virtual void LockSchema() = 0;
    /// The type of a column in CREATE TABLE.
    virtual QString ColumnType(ColumnKind kind) const = 0;
    /// The statements that give a table what it needs beside its columns and do not harm where it
    /// has that already: its index, its description, and that others hear of changes.
    virtual QStringList Supplements(const ListedTable& table) const = 0;

    /// The highest automatic number that a table has ever given; 0 before any. Setting it, inside a
    /// transaction, never lowers it.
    virtual qint64 LastNumber(const QString& table, const QString& column) = 0;
    virtual void RaiseLastNumber(const QString& table, const QString& column, qint64 number) = 0;

    /// Gives back what deleted rows have left on the disk and takes their words out of a full-text
    /// index, in short steps, so that `progress` may show it and end it; where a database does that
    /// by itself, nothing. Throws StoreError and platform::Cancelled; either way the database is
    /// sound and the next time goes on.
    virtual void Compact(const QString& fullTextIndex, const platform::Progress& progress);

    /// Copies the database while it is in use to a file that SqliteDatabase opens, as it is at one
    /// moment: what is written meanwhile is in the copy or begins it anew. A file of that name is
    /// replaced. False where this kind of database cannot be copied so. Throws StoreError and
    /// platform::Cancelled; no file is left then.
    virtual bool CopyTo(const QString& path, const platform::Progress& progress);

 protected:
    explicit Database(QString name) : name_(std::move(name)) {}

 private:
    friend class FullTextIndex;
    friend class Statement;
    friend class Snapshot;
    friend class Transaction;

    virtual std::unique_ptr<PreparedStatement> Prepare(const QString& sql) = 0;

    /// Waits for other writers as long as this kind of database does.
    virtual void Begin() = 0;
    virtual void BeginSnapshot() = 0;
    virtual void Commit() = 0;
    virtual void RollBack() noexcept = 0;

    /// See FullTextIndex. `words` are those that a row must have, in lower case, at least one.
    virtual QStringList FullTextCreation(const QString& index) const = 0;
    virtual void SetFullText(const QString& index, qint64 row, const QString& text) = 0;
    virtual void RemoveFullText(const QString& index, qint64 row);
    virtual std::vector<qint64> RowsWith(const QString& index,
                                         const std::vector<QByteArray>& words) = 0;

    QString name_;
};

}  // namespace kadrona::store
