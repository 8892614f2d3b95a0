#include "store/sqlite/SqliteStatement.h"

#include <sqlite3.h>

#include "store/StoreError.h"
#include "store/sqlite/SqliteReason.h"

namespace kadrona::store {

using namespace Qt::StringLiterals;

void SqliteStatement::Finalizer::operator()(sqlite3_stmt* handle) const {
    sqlite3_finalize(handle);
}

SqliteStatement::SqliteStatement(sqlite3* handle, WorkLimit& limit, const QString& database,
                                 const QString& sql)
    : connection_(handle), limit_(limit), database_(database) {
    const QByteArray utf8 = sql.toUtf8();
    const WorkLimit::Step step(limit_, work_);  // the engine may have to read the tables anew
    sqlite3_stmt* statement = nullptr;
    Check(sqlite3_prepare_v2(handle, utf8.constData(), int(utf8.size()) + 1, &statement, nullptr));
    handle_.reset(statement);
}

void SqliteStatement::Bind(int parameter, qint64 value) {
    Check(sqlite3_bind_int64(handle_.get(), parameter, value));
}

void SqliteStatement::Bind(int parameter, const QString& value) {
    const QByteArray utf8 = value.toUtf8();
    Check(sqlite3_bind_text64(handle_.get(), parameter, utf8.constData(),
                              sqlite3_uint64(utf8.size()), SQLITE_TRANSIENT, SQLITE_UTF8));
}

void SqliteStatement::Bind(int parameter, QByteArrayView value) {
    // A null pointer would make the empty value NULL.
    const char* bytes = value.isEmpty() ? "" : value.data();
    Check(sqlite3_bind_blob64(handle_.get(), parameter, bytes, sqlite3_uint64(value.size()),
                              SQLITE_TRANSIENT));
}

bool SqliteStatement::Step() {
    const int result = [this] {
        const WorkLimit::Step step(limit_, work_);
        return sqlite3_step(handle_.get());
    }();
    if (result != SQLITE_ROW && result != SQLITE_DONE) {
        Check(result);
    }
    return result == SQLITE_ROW;
}

void SqliteStatement::Reset() {
    // What it returns is the failure of the last Step, which that one has thrown already.
    sqlite3_reset(handle_.get());
    work_ = {};
}

bool SqliteStatement::IsNull(int column) const {
    return sqlite3_column_type(handle_.get(), column) == SQLITE_NULL;
}

qint64 SqliteStatement::Integer(int column) const {
    return sqlite3_column_int64(handle_.get(), column);
}

QByteArrayView SqliteStatement::Utf8(int column) const {
    const unsigned char* text = sqlite3_column_text(handle_.get(), column);
    return {text, sqlite3_column_bytes(handle_.get(), column)};
}

QByteArrayView SqliteStatement::Blob(int column) const {
    const void* bytes = sqlite3_column_blob(handle_.get(), column);
    return {static_cast<const char*>(bytes), sqlite3_column_bytes(handle_.get(), column)};
}

void SqliteStatement::Check(int result) const {
    if (result != SQLITE_OK) {
        throw StoreError(u"Der Zugriff auf die Datenbank „%1“ ist fehlgeschlagen: %2."_s.arg(
            database_, SqliteReason(connection_, result)));
    }
}

}  // namespace kadrona::store
