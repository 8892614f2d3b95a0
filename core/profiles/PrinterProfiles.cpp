// The printer profiles: their index, their settings files, and the printer they are applied to.

#include <QFile>
#include <QScopeGuard>

#include "core/Data.h"
#include "core/profiles/ProfileIndex.h"
#include "platform/Paths.h"
#include "platform/UniqueFile.h"
#include "printing/PrinterLayer.h"
#include "printing/PrinterSetup.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

ProfileIndex TData::PrinterProfileIndex() const {
    return {dataFolder_, u"Printerprofiles42.ini", u"Profile"_s};
}

printing::PrinterLayer& TData::Printer() const {
    if (printer_ == nullptr) {
        throw printing::PrinterError(u"Es ist kein Druckdienst vorhanden."_s);
    }
    return *printer_;
}

QStringList TData::GetPrinterProfileList() const {
    return PrinterProfileIndex().Names();
}

bool TData::SavePrintProfile(const QString& name) const {
    const QString file = platform::CreateUniqueFile(dataFolder_, u"prnprofile"_s);
    const QString path = platform::JoinPath(dataFolder_, file);
    auto noOrphan = qScopeGuard([&path] { QFile::remove(path); });
    printing::TPrinterSetup(Printer()).SaveToFile(path);
    SavePrinterProfileToIni(name, file);
    noOrphan.dismiss();
    return true;
}

void TData::SavePrinterProfileToIni(const QString& name, const QString& fileName) const {
    PrinterProfileIndex().Record(name, fileName);
}

void TData::LoadPrintProfile(const QString& name) const {
    const QString path = PrinterProfileIndex().SettingsFile(name);
    if (!path.isEmpty()) {
        printing::TPrinterSetup(Printer()).LoadFromFile(path);
    }
}

/// The index goes first: where it cannot be written the profile stays whole.
void TData::DeletePrinterProfile(const QString& name) const {
    const QString path = PrinterProfileIndex().SettingsFile(name);
    PrinterProfileIndex().Erase(name);
    if (!path.isEmpty()) {
        QFile::remove(path);
    }
}

}  // namespace kadrona::core
