#include "dialogs/archive/ArchiveTransferDialog.h"

#include <QLocale>

#include "controls/messages/MessageBoxes.h"
#include "controls/messages/ProgressBox.h"
#include "core/Data.h"
#include "platform/CountedText.h"

using namespace Qt::StringLiterals;

namespace kadrona::dialogs {

namespace {

QString Counted(qint64 records) {
    return QLocale(QLocale::German).toString(records);
}

QString ResultText(const core::TransferResult& result) {
    if (result.records == 0) {
        return u"Das Archiv dieses Rechners hat keine Bilder, die zu übertragen wären."_s;
    }
    if (result.leftOut > 0) {
        return u"Das Archiv ist übertragen: Von %1 stehen alle mit gleichem Inhalt auf dem "
               u"Server, bis auf %2, die dort gelöscht wurden; %3 kamen jetzt hinzu."_s.arg(
                   platform::CountedText(result.records, u"Bild"_s, u"Bildern"_s),
                   Counted(result.leftOut), Counted(result.copied));
    }
    if (result.records == 1) {
        return u"Das Archiv ist übertragen: Das eine Bild steht mit gleichem Inhalt auf dem Server."_s;
    }
    return u"Das Archiv ist übertragen: Alle %1 Bilder stehen mit gleichem Inhalt auf dem Server, "
           u"%2 davon kamen jetzt hinzu."_s.arg(Counted(result.records), Counted(result.copied));
}

/// The box is gone before the result is shown.
QString Transfer(const store::ServerAddress& server, const core::TData& data, QWidget* parent) {
    controls::ProgressBox box(parent, u"Archiv übertragen"_s);
    try {
        return ResultText(data.TransferArchiveTo(server, box.Reporter()));
    } catch (const platform::Cancelled&) {
        return u"Die Übertragung wurde beendet. Was übertragen ist, bleibt auf dem Server; sie "
               u"kann "
               u"jederzeit fortgesetzt werden."_s;
    }
}

}  // namespace

void TransferArchiveTo(const store::ServerAddress& server, const core::TData& data,
                       QWidget* parent) {
    controls::ShowInformation(parent, Transfer(server, data, parent));
}

}  // namespace kadrona::dialogs
