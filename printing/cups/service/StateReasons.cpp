#include "printing/cups/service/StateReasons.h"

#include <QStringList>
#include <algorithm>
#include <array>
#include <span>

#include "platform/HarmlessText.h"

using namespace Qt::StringLiterals;

namespace kadrona::printing::cups {

namespace {

struct ReasonRow {
    const char* english;
    const char16_t* german;
};

/// Without those of which nobody need know ("none", "paused", "cups-waiting-for-job-completed").
constexpr auto OfPrinters = std::to_array<ReasonRow>({
    {"media-empty", u"Kein Papier"},
    {"media-needed", u"Papier einlegen"},
    {"media-jam", u"Papierstau"},
    {"media-low", u"Papier geht zur Neige"},
    {"input-tray-missing", u"Papierfach fehlt"},
    {"input-media-size-change", u"Anderes Papierformat einlegen"},
    {"input-media-type-change", u"Andere Papierart einlegen"},
    {"input-manual-input-request", u"Papier von Hand zuführen"},
    {"output-area-full", u"Ausgabefach voll"},
    {"output-area-almost-full", u"Ausgabefach fast voll"},
    {"output-tray-missing", u"Ausgabefach fehlt"},
    {"cover-open", u"Klappe offen"},
    {"door-open", u"Klappe offen"},
    {"interlock-open", u"Klappe offen"},
    {"marker-supply-empty", u"Tinte oder Farbband leer"},
    {"marker-supply-missing", u"Patrone oder Farbband fehlt"},
    {"marker-supply-low", u"Tinte oder Farbband geht zur Neige"},
    {"toner-empty", u"Toner leer"},
    {"toner-low", u"Toner geht zur Neige"},
    {"marker-waste-full", u"Resttintenbehälter voll"},
    {"marker-waste-almost-full", u"Resttintenbehälter fast voll"},
    {"fuser-over-temp", u"Drucker zu heiß"},
    {"fuser-under-temp", u"Drucker wärmt auf"},
    {"offline", u"Nicht verbunden"},
    {"connecting-to-device", u"Verbindung wird aufgebaut"},
    {"timed-out", u"Keine Antwort vom Drucker"},
    {"hold-new-jobs", u"Neue Aufträge warten"},
    {"shutdown", u"Ausgeschaltet"},
    {"spool-area-full", u"Speicher des Druckdienstes voll"},
    {"cups-missing-filter", u"Treiberdatei fehlt"},
    {"cups-insecure-filter", u"Treiberdatei ist nicht sicher"},
});

constexpr auto OfJobs = std::to_array<ReasonRow>({
    {"job-hold-until-specified", u"zurückgehalten"},
    {"job-held-on-create", u"zurückgehalten"},
    {"cups-held-for-authentication", u"der Drucker verlangt eine Anmeldung"},
    {"job-password-wait", u"der Drucker wartet auf ein Kennwort"},
    {"account-authorization-failed", u"der Drucker verlangt eine Anmeldung"},
    {"account-closed", u"das Druckkonto ist gesperrt"},
    {"account-info-needed", u"der Drucker verlangt ein Druckkonto"},
    {"account-limit-reached", u"das Druckkonto ist erschöpft"},
    {"resources-are-not-ready", u"der Drucker ist nicht bereit"},
    {"service-off-line", u"der Druckdienst ist nicht in Betrieb"},
    {"job-suspended", u"unterbrochen"},
    {"job-data-insufficient", u"der Auftrag ist noch nicht ganz übertragen"},
    {"job-canceled-by-user", u"vom Benutzer abgebrochen"},
    {"job-canceled-by-operator", u"vom Verwalter abgebrochen"},
    {"job-canceled-at-device", u"am Drucker abgebrochen"},
    {"job-canceled-after-timeout", u"nach langem Warten abgebrochen"},
    {"document-access-error", u"das Bild konnte nicht gelesen werden"},
    {"document-format-error", u"der Drucker versteht das Bild nicht"},
    {"unsupported-document-format", u"der Drucker kann kein PDF verarbeiten"},
    {"document-unprintable-error", u"der Drucker kann das Bild nicht drucken"},
    {"submission-interrupted", u"die Übertragung brach ab"},
    {"job-completed-with-errors", u"mit Fehlern"},
    {"job-completed-with-warnings", u"mit Warnungen"},
});

/// Sentences of CUPS 2 itself; drivers say what they like.
constexpr auto Sentences = std::to_array<ReasonRow>({
    {"Rejecting Jobs", u""},
    {"Paused", u""},
    {"Ready to print", u""},
    {"Filter failed", u"Der Druckertreiber ist gescheitert"},
    {"File has insecure permissions", u"Treiberdatei ist nicht sicher"},
    {"Waiting for printer to become available", u"Wartet auf den Drucker"},
    {"Waiting for job to complete", u"Wartet auf das Ende des Drucks"},
    {"The printer is not responding", u"Keine Antwort vom Drucker"},
    {"The printer is in use", u"Der Drucker ist belegt"},
    {"The printer may not exist or is unavailable at this time",
     u"Der Drucker ist nicht zu erreichen"},
    {"Unable to locate printer", u"Der Drucker ist nicht zu finden"},
    {"Job canceled at printer", u"Am Drucker abgebrochen"},
});

/// Null where nothing stands there.
const ReasonRow* Find(std::span<const ReasonRow> rows, QByteArrayView english) {
    const auto found = std::find_if(rows.begin(), rows.end(),
                                    [&](const ReasonRow& row) { return english == row.english; });
    return found == rows.end() ? nullptr : &*found;
}

QString Joined(std::span<const ReasonRow> rows, const std::vector<QByteArray>& keywords) {
    QStringList texts;
    for (QByteArray keyword : keywords) {
        for (const char* suffix : {"-error", "-warning", "-report"}) {
            if (Find(rows, keyword) == nullptr && keyword.endsWith(suffix)) {
                keyword.chop(static_cast<qsizetype>(qstrlen(suffix)));
            }
        }
        if (const ReasonRow* row = Find(rows, keyword)) {
            const QString text = QString::fromUtf16(row->german);
            if (!texts.contains(text)) {
                texts.append(text);
            }
        }
    }
    return texts.join(u", "_s);
}

}  // namespace

QString PrinterReasons(const std::vector<QByteArray>& keywords) {
    return Joined(OfPrinters, keywords);
}

QString JobReasons(const std::vector<QByteArray>& keywords) {
    return Joined(OfJobs, keywords);
}

QString StateMessage(const QString& message) {
    QString text = platform::HarmlessLine(message).trimmed();
    while (text.endsWith(u'.')) {
        text.chop(1);
    }
    const ReasonRow* row = Find(Sentences, text.toUtf8());
    return row == nullptr ? text : QString::fromUtf16(row->german);
}

}  // namespace kadrona::printing::cups
