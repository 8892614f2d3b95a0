#include "core/archive/ArchiveServer.h"

#include <QFile>

#include "core/archive/ArchiveSchema.h"
#include "platform/CountedText.h"
#include "platform/Paths.h"
#include "platform/ProgramPart.h"
#include "platform/PropertyFile.h"
#include "platform/UserRegistry.h"
#include "store/ServerPart.h"
#include "store/Statement.h"
#include "store/StoreError.h"
#include "store/Transaction.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

namespace {

const QString Section = u"ArchiveServer"_s;

QString ServerFolder() {
    return platform::JoinPath(platform::RegistryFolder(), u"Archivserver");
}

QString ServerFile() {
    return platform::JoinPath(ServerFolder(), u"connection.ini");
}

/// That an archive's records can be read and written; what was written is taken back.
void TryRecords(store::Database& database) {
    database.Execute(
        uR"(SELECT "ID", "ImgName", "ImgType", "ImgMD5", "ImgErstellt", "ImgAblage", "ImgTags",
                   "ImgThumb" FROM "ImgDB" LIMIT 1)"_s);
    const store::Transaction takenBack(database);
    store::Statement(database, uR"(INSERT INTO "ImgDB" DEFAULT VALUES RETURNING "ID")"_s).Step();
}

}  // namespace

ArchiveServer StoredArchiveServer() {
    const platform::PropertyFile file(ServerFile());
    const auto text = [&](const char* property) {
        return file.ReadText(Section, QString::fromLatin1(property)).value_or(QString());
    };
    return {
        .used = file.ReadBoolean(Section, u"Used"_s).value_or(false),
        .address = {
            .host = text("Host"),
            .port = file.ReadInteger(Section, u"Port"_s).value_or(store::ServerAddress::UsualPort),
            .database = text("Database"),
            .user = text("User"),
            .password = text("Password"),
            .verified = file.ReadBoolean(Section, u"Verified"_s).value_or(false)}};
}

void StoreArchiveServer(const ArchiveServer& server) {
    platform::CreateFolder(ServerFolder());  // where it cannot, Save says so
    QFile::setPermissions(ServerFolder(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    platform::PropertyFile file(ServerFile());
    file.WriteBoolean(Section, u"Used"_s, server.used);
    file.WriteText(Section, u"Host"_s, server.address.host);
    file.WriteInteger(Section, u"Port"_s, server.address.port);
    file.WriteText(Section, u"Database"_s, server.address.database);
    file.WriteText(Section, u"User"_s, server.address.user);
    file.WriteText(Section, u"Password"_s, server.address.password);
    file.WriteBoolean(Section, u"Verified"_s, server.address.verified);
    file.Save();
}

bool CanUseServers() {
#ifdef KADRONA_WITH_POSTGRES
    return true;
#else
    return false;
#endif
}

std::unique_ptr<store::Database> OpenServer(
    [[maybe_unused]] const store::ServerAddress& address,
    [[maybe_unused]] const store::ServerPatience& patience) {
#ifdef KADRONA_WITH_POSTGRES
    try {
        const auto connect = platform::PartFunction<decltype(kadrona_connect_to_server)>(
            "kadrona-server", "kadrona_connect_to_server");
        return std::unique_ptr<store::Database>(connect(address, patience));
    } catch (const platform::PartMissing& missing) {
        throw store::StoreError(missing.Text());
    }
#else
    throw store::StoreError(
        u"Dieses Programm wurde ohne die Bibliothek für PostgreSQL-Server gebaut."_s);
#endif
}

QString TryServer(const store::ServerAddress& address) {
    const std::unique_ptr<store::Database> database = OpenServer(address);
    RequireKnownVersion(*database);
    if (database->TableExists(u"ImgDB"_s)) {
        TryRecords(*database);
        store::Statement count(*database, uR"(SELECT count(*) FROM "ImgDB")"_s);
        count.Step();
        return u"Die Verbindung steht. Das Archiv auf dem Server hat %1."_s.arg(
            platform::CountedText(count.Integer(0), u"Bild"_s, u"Bilder"_s));
    }
    const store::Transaction takenBack(*database);
    database->Execute(uR"(CREATE TABLE "KadronaTrial" ("ID" integer))"_s);
    return u"Die Verbindung steht. Die Datenbank ist noch leer; das Archiv wird angelegt, sobald "
           u"es "
           u"gebraucht wird."_s;
}

}  // namespace kadrona::core
