#include "store/postgres/ServerReason.h"

#include <libpq-fe.h>

#include <QRegularExpression>
#include <algorithm>
#include <array>

#include "platform/HarmlessText.h"

namespace kadrona::store {

using namespace Qt::StringLiterals;

namespace {

/// The standard's codes; a class of them where there are only two characters.
struct KnownReason {
    QLatin1StringView code;
    QStringView reason;
};

constexpr std::array KnownReasons{
    KnownReason{"28P01"_L1, u"Benutzername oder Kennwort ist falsch"},
    KnownReason{"28000"_L1, u"Der Server lässt diesen Benutzer von hier aus nicht zu"},
    KnownReason{"3D000"_L1, u"Diese Datenbank gibt es auf dem Server nicht"},
    KnownReason{"42501"_L1, u"Dem Benutzer fehlt auf dem Server das Recht dazu"},
    KnownReason{"25006"_L1, u"Die Datenbank ist schreibgeschützt"},
    KnownReason{"53100"_L1, u"Auf dem Datenträger des Servers ist kein Platz mehr"},
    KnownReason{"53200"_L1, u"Der Arbeitsspeicher des Servers reicht nicht aus"},
    KnownReason{"53300"_L1, u"Der Server nimmt gerade keine weiteren Verbindungen an"},
    KnownReason{"54"_L1, u"Der Wert ist zu groß"},
    KnownReason{"55P03"_L1, u"Ein anderes Programm benutzt die Datenbank"},
    KnownReason{"40"_L1, u"Ein anderes Programm benutzt die Datenbank"},
    KnownReason{"57014"_L1, u"Der Server hat zu lange gebraucht"},
    KnownReason{"57P03"_L1, u"Der Server ist noch nicht bereit"},
    KnownReason{"57P"_L1, u"Der Server wurde beendet"},
    KnownReason{"42P01"_L1, u"Die Tabellen auf dem Server sind nicht die dieses Programms"},
    KnownReason{"42703"_L1, u"Die Tabellen auf dem Server sind nicht die dieses Programms"},
    KnownReason{"42804"_L1, u"Die Tabellen auf dem Server sind nicht die dieses Programms"},
    KnownReason{"58"_L1, u"Der Datenträger des Servers meldet einen Fehler"},
    KnownReason{"XX"_L1, u"Die Datenbank ist beschädigt"},
};

QString ReasonOf(const QString& code, const char* message) {
    const auto* const known = std::ranges::find_if(KnownReasons, [&](const KnownReason& row) {
        return !code.isEmpty() && code.startsWith(row.code);
    });
    if (known != KnownReasons.end()) {
        return known->reason.toString();
    }
    QString text = platform::HarmlessLine(QString::fromUtf8(message).left(300).trimmed());
    while (text.endsWith(u'.')) {
        text.chop(1);
    }
    return text;
}

QString CodeOf(const pg_result* result) {
    return QString::fromLatin1(PQresultErrorField(result, PG_DIAG_SQLSTATE));
}

}  // namespace

QString ServerReason(const pg_result* result) {
    return ReasonOf(CodeOf(result), PQresultErrorField(result, PG_DIAG_MESSAGE_PRIMARY));
}

bool IsEndOfConnection(const pg_result* result) {
    const QString code = CodeOf(result);
    return code.startsWith("57P"_L1) || code.startsWith("08"_L1);
}

ConnectRefusal WhyNotConnected(const pg_conn* connection) {
    // The library keeps what the server said as text alone; "all the facts" begin with the code.
    static const QRegularExpression code(u":\\s+(?=[A-Z]*\\d)([0-9A-Z]{5}):"_s);
    static const QRegularExpression passing(u"^(08|53|57|58)"_s);
    static const QRegularExpression proof(u"SSL|[CcZz]ertifi"_s);
    const QString said = QString::fromUtf8(PQerrorMessage(connection));
    const QRegularExpressionMatch match = code.match(said);
    if (match.hasMatch()) {
        return {ReasonOf(match.captured(1), PQerrorMessage(connection)),
                passing.match(match.captured(1)).hasMatch()};
    }
    if (PQconnectionNeedsPassword(connection) != 0) {
        return {u"Der Server verlangt ein Kennwort"_s, false};
    }
    if (proof.match(said).hasMatch()) {
        return {u"Der Server weist sich nicht mit einem gültigen Zertifikat aus (%1)"_s.arg(
                    ReasonOf({}, PQerrorMessage(connection))),
                false};
    }
    return {u"Unter dieser Adresse antwortet kein PostgreSQL-Server"_s, true};
}

}  // namespace kadrona::store
