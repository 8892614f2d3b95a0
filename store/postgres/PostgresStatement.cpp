#include "store/postgres/PostgresStatement.h"

#include <libpq-fe.h>

namespace kadrona::store {

namespace {

constexpr Oid BytesType = 17;
constexpr Oid TimeType = 1114;

/// The server leaves zeros off the end of a second's fraction.
QByteArray WithMilliseconds(QByteArrayView time) {
    constexpr qsizetype ToTheSecond = 19;
    constexpr qsizetype Whole = 23;
    QByteArray text = time.toByteArray();
    if (text.size() == ToTheSecond) {
        text += '.';
    }
    return text.leftJustified(Whole, '0');
}

}  // namespace

PostgresStatement::PostgresStatement(ServerLink& link, const QString& sql)
    : link_(link),
      statement_(NumberParameters(sql.toUtf8())),
      parameters_(static_cast<size_t>(statement_.parameters)) {}

void PostgresStatement::Set(int parameter, ServerParameter value) {
    parameters_.at(static_cast<size_t>(parameter) - 1) = std::move(value);
}

void PostgresStatement::Bind(int parameter, qint64 value) {
    Set(parameter, {QByteArray::number(value)});
}

void PostgresStatement::Bind(int parameter, const QString& value) {
    Set(parameter, {value.toUtf8().replace('\0', QByteArrayView())});
}

void PostgresStatement::Bind(int parameter, QByteArrayView value) {
    Set(parameter, {QByteArray(value.data(), value.size()), true});
}

bool PostgresStatement::Step() {
    if (result_ == nullptr) {
        result_ = link_.Run(statement_.sql, parameters_);
    }
    kept_.clear();
    return ++row_ < PQntuples(result_.get());
}

void PostgresStatement::Reset() {
    result_.reset();
    row_ = -1;
    kept_.clear();
}

bool PostgresStatement::IsNull(int column) const {
    return PQgetisnull(result_.get(), row_, column) != 0;
}

QByteArrayView PostgresStatement::Raw(int column) const {
    return {PQgetvalue(result_.get(), row_, column), PQgetlength(result_.get(), row_, column)};
}

QByteArrayView PostgresStatement::Kept(int column, QByteArray value) const {
    kept_.resize(qMax(kept_.size(), static_cast<size_t>(column) + 1));
    return kept_[static_cast<size_t>(column)] = std::move(value);
}

qint64 PostgresStatement::Integer(int column) const {
    return Raw(column).toLongLong();
}

QByteArrayView PostgresStatement::Utf8(int column) const {
    const bool time = PQftype(result_.get(), column) == TimeType && !IsNull(column);
    return time ? Kept(column, WithMilliseconds(Raw(column))) : Raw(column);
}

QByteArrayView PostgresStatement::Blob(int column) const {
    const QByteArrayView raw = Raw(column);
    if (PQftype(result_.get(), column) != BytesType || !raw.startsWith("\\x")) {
        return raw;
    }
    return Kept(column, QByteArray::fromHex(raw.sliced(2).toByteArray()));
}

}  // namespace kadrona::store
