#include "store/sqlite/SqliteReason.h"

#include <sqlite3.h>

namespace kadrona::store {

using namespace Qt::StringLiterals;

QString SqliteReason(sqlite3* handle, int result) {
    if (result == SQLITE_READONLY_DBMOVED) {
        return u"Die Datei wurde gelöscht, umbenannt oder verschoben"_s;
    }
    if (result == SQLITE_IOERR_SHMMAP) {
        return u"Ein anderes Programm hat ein gemeinsames Änderungsprotokoll (WAL) eingeschaltet. "
               u"Beenden Sie jenes und starten Sie dieses neu"_s;
    }
    switch (result & 0xFF) {  // the low byte is the kind, the rest tells more about it
        case SQLITE_NOTADB:
            return u"Die Datei ist keine Datenbank"_s;
        case SQLITE_CORRUPT:
            return u"Die Datenbank ist beschädigt"_s;
        case SQLITE_CANTOPEN:
            return u"Die Datei kann nicht geöffnet oder angelegt werden"_s;
        case SQLITE_PERM:
        case SQLITE_AUTH:
            return u"Der Zugriff wurde verweigert"_s;
        case SQLITE_READONLY:
            return u"Die Datenbank ist schreibgeschützt"_s;
        case SQLITE_FULL:
            return u"Auf dem Datenträger ist kein Platz mehr"_s;
        case SQLITE_IOERR:
            return u"Der Datenträger meldet einen Ein- oder Ausgabefehler"_s;
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
            return u"Ein anderes Programm benutzt die Datenbank"_s;
        case SQLITE_NOMEM:
            return u"Der Arbeitsspeicher reicht nicht aus"_s;
        case SQLITE_TOOBIG:
            return u"Der Wert ist zu groß"_s;
        case SQLITE_INTERRUPT:
            return u"Eine Anweisung hat zu lange gerechnet und wurde abgebrochen. Die Datei "
                   u"enthält vielleicht fremde Anweisungen, die nicht enden"_s;
        default:
            return QString::fromUtf8(handle != nullptr ? sqlite3_errmsg(handle)
                                                       : sqlite3_errstr(result));
    }
}

}  // namespace kadrona::store
