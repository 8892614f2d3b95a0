#pragma once

#include <QString>
#include <QStringList>
#include <chrono>
#include <memory>

struct sqlite3;

namespace kadrona::store {

/// The open database "KDRImageBase.db" of one folder, which several programs may have open at once.
/// Every statement and transaction over it must end before it does.
///
/// It keeps a rollback journal: whatever ends a program or the machine in the middle of a change,
/// who opens the database next finds the state before it.
class Database {
 public:
    /// Opens the database and makes it where there is none yet, with the permissions of
    /// platform/FileModes.h; the folder must exist. `patience` is how long a transaction waits each
    /// time while another program writes; opening waits two seconds of it at most, and whoever only
    /// reads a moment, because a window may be waiting too. Throws StoreError, also where the file
    /// is no database, is a link, or lies behind another user's link.
    explicit Database(const QString& folder,
                      std::chrono::milliseconds patience = std::chrono::seconds(5));

    const QString& Path() const { return path_; }

    /// Runs one statement that yields no rows worth reading. Throws StoreError.
    void Execute(const QString& sql);

    /// Runs the statements as one batch: all of them or, where one throws, none.
    void RunScript(const QStringList& statements);

    /// Whatever the case of the name, as everywhere in SQL.
    bool TableExists(const QString& name);

    /// The automatic number of the row inserted last; 0 before any.
    qint64 LastInsertedId() const;

    /// Another one after every change, whichever program made it.
    struct State {
        qint64 ownChanges = 0;
        qint64 othersVersion = 0;
        bool operator==(const State&) const = default;
    };
    State PresentState();

 private:
    friend class Statement;
    friend class Transaction;

    struct Closer {
        void operator()(sqlite3* handle) const;
    };

    /// The longest that a reader waits. A commit keeps readers out for a few milliseconds.
    static constexpr std::chrono::milliseconds ReadingPatience{300};
    static constexpr std::chrono::milliseconds OpeningPatience{2000};
    /// How long statements wait from now on.
    void WaitUpTo(std::chrono::milliseconds patience);

    QString path_;
    std::chrono::milliseconds patience_;
    std::unique_ptr<sqlite3, Closer> handle_;
};

}  // namespace kadrona::store
