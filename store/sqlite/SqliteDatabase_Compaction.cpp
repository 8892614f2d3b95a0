#include "store/Statement.h"
#include "store/StoreError.h"
#include "store/sqlite/SqliteDatabase.h"

namespace kadrona::store {

namespace {

using namespace Qt::StringLiterals;

const QString CompactionText = u"Die Datenbank wird aufgeräumt …"_s;

/// Of "PRAGMA auto_vacuum": free pages are handed back when they are asked for.
constexpr qint64 IncrementalMode = 2;

qint64 Value(Database& database, const QString& pragma) {
    Statement statement(database, u"PRAGMA "_s + pragma);
    return statement.Step() ? statement.Integer(0) : 0;
}

/// Deleted words stay in the index, marked as deleted, until its parts are merged.
void MergeFullTextIndex(Database& database, const QString& name,
                        const platform::Progress& progress) {
    // A negative number of pages makes all parts into one, piece by piece; two changes or more mean
    // that something was merged.
    constexpr int Pages = 64;
    const auto merge = [&](int pages) {
        const qint64 before = database.PresentState().ownChanges;
        database.Execute(
            uR"(INSERT INTO "%1" ("%1", rank) VALUES ('merge', %2))"_s.arg(name).arg(pages));
        return database.PresentState().ownChanges - before > 1;
    };
    for (bool merged = merge(-Pages); merged; merged = merge(Pages)) {
        progress(CompactionText, 0, 0);
    }
}

}  // namespace

void SqliteDatabase::Compact(const QString& fullTextIndex, const platform::Progress& progress) {
    progress(CompactionText, 0, 0);
    MergeFullTextIndex(*this, fullTextIndex, progress);
    if (Value(*this, u"auto_vacuum"_s) != IncrementalMode) {
        const WorkLimit::Cancellable watch(limit_, CompactionText, progress);
        try {
            Execute(u"PRAGMA auto_vacuum = %1"_s.arg(IncrementalMode));
            Execute(u"VACUUM"_s);
        } catch (const StoreError&) {
            watch.ThrowIfGivenUp();
            throw;
        }
        return;
    }
    constexpr int PagesAtOnce = 256;
    const qint64 all = Value(*this, u"freelist_count"_s);
    for (qint64 left = all; left > 0;) {
        progress(CompactionText, all - left, all);
        Execute(u"PRAGMA incremental_vacuum(%1)"_s.arg(PagesAtOnce));
        const qint64 now = Value(*this, u"freelist_count"_s);
        if (now >= left) {
            return;  // another program reads what would have to move
        }
        left = now;
    }
}

}  // namespace kadrona::store
