// The archive table.

#include "core/Data.h"
#include "platform/Error.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

namespace {

/// Makes what is missing and changes nothing that exists.
const QStringList CreationScript{
    uR"(CREATE TABLE IF NOT EXISTS "ImgDB" (
        "ID" INTEGER PRIMARY KEY AUTOINCREMENT,
        "ImgName" VARCHAR(25),
        "ImgType" VARCHAR(50),
        "ImgMD5" VARCHAR(40),
        "ImgErstellt" TIMESTAMP,
        "ImgAblage" VARCHAR(125),
        "ImgTags" MEMO,
        "ImgThumb" GRAPHIC))"_s,
    uR"(CREATE INDEX IF NOT EXISTS "ImgErstellt_idx" ON "ImgDB" ("ImgErstellt" DESC))"_s};

/// Whatever fails in the table store reaches the caller as a general error with the same text.
template <typename Operation>
void AsGeneralError(Operation operation) {
    try {
        operation();
    } catch (const std::exception& error) {
        throw platform::Error(QString::fromUtf8(error.what()));
    }
}

}  // namespace

bool TData::ConnectDB(const QString& folder) {
    AsGeneralError([&] { database_ = std::make_unique<store::Database>(folder); });
    return database_ != nullptr;
}

bool TData::CreateDB() {
    AsGeneralError([&] { database_->RunScript(CreationScript); });
    return true;
}

// The archive takes no photos yet.
void TData::SaveImageToArchiv(imaging::ImageDisplay& /*view*/, const QString& /*archiveFolder*/,
                              const QString& /*tags*/, const QString& /*objectName*/) {}

}  // namespace kadrona::core
