#include "dialogs/ArchiveTransferDialog.h"

#include <QCoreApplication>
#include <QLocale>
#include <QProgressDialog>
#include <QPushButton>

#include "controls/messages/MessageBoxes.h"
#include "core/Data.h"

using namespace Qt::StringLiterals;

namespace kadrona::dialogs {

namespace {

QString Counted(qint64 records) {
    return QLocale(QLocale::German).toString(records);
}

QString ResultText(const core::TransferResult& result) {
    if (!result.complete) {
        return u"Die Übertragung wurde beendet. Was übertragen ist, bleibt auf dem Server; sie "
               u"kann "
               u"jederzeit fortgesetzt werden."_s;
    }
    if (result.records == 0) {
        return u"Das Archiv dieses Rechners hat keine Bilder, die zu übertragen wären."_s;
    }
    return u"Das Archiv ist übertragen: Alle %1 Bilder stehen mit gleichem Inhalt auf dem Server, "
           u"%2 davon kamen jetzt hinzu."_s.arg(Counted(result.records), Counted(result.copied));
}

}  // namespace

void TransferArchiveTo(const store::ServerAddress& server, const core::TData& data,
                       QWidget* parent) {
    constexpr int Steps = 1000;
    QProgressDialog line(u"Das Archiv wird übertragen und verglichen …"_s, QString(), 0, Steps,
                         parent);
    line.setObjectName(u"TransferProgress"_s);
    line.setWindowTitle(u"Archiv übertragen"_s);
    auto* cancel = new QPushButton(u"Abbrechen"_s);
    cancel->setObjectName(u"Cancel"_s);
    line.setCancelButton(cancel);
    line.setWindowModality(Qt::ApplicationModal);
    line.setMinimumDuration(0);
    line.setAutoClose(false);
    line.setAutoReset(false);
    line.show();
    const auto result = data.TransferArchiveTo(server, [&](qint64 done, qint64 all) {
        line.setValue(static_cast<int>(done * Steps / all));
        QCoreApplication::processEvents();
        return !line.wasCanceled();
    });
    line.close();
    controls::ShowInformation(parent, ResultText(result));
}

}  // namespace kadrona::dialogs
