#include "core/profiles/PrinterProfiles.h"

#include <QFile>
#include <QScopeGuard>

#include "platform/Error.h"
#include "platform/Paths.h"
#include "platform/SystemReason.h"
#include "platform/UniqueFile.h"
#include "printing/PrinterLayer.h"
#include "printing/PrinterSetup.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

namespace {

const QString PrinterFilePrefix = u"prnprofile"_s;

}  // namespace

PrinterProfiles::PrinterProfiles(const QString& dataFolder, printing::PrinterLayer* printer)
    : dataFolder_(dataFolder),
      index_(dataFolder, u"Printerprofiles42.ini", u"Profile"_s, PrinterFilePrefix),
      printer_(printer) {}

printing::PrinterLayer& PrinterProfiles::Printer() const {
    if (printer_ == nullptr) {
        throw printing::PrinterError(
            u"Dieses Kadrona wurde ohne Druckdienst gebaut und kann nicht drucken."_s);
    }
    return *printer_;
}

void PrinterProfiles::Save(const QString& name) const {
    ProfileIndex::Check(name);
    const QString file = platform::CreateUniqueFile(dataFolder_, PrinterFilePrefix);
    const QString path = platform::JoinPath(dataFolder_, file);
    auto noOrphan = qScopeGuard([&path] { QFile::remove(path); });
    printing::TPrinterSetup(Printer()).SaveToFile(path);
    try {
        Record(name, file);
    } catch (const platform::UnflushedError&) {
        noOrphan.dismiss();  // the profile is there
        throw;
    }
    noOrphan.dismiss();
}

void PrinterProfiles::Record(const QString& name, const QString& fileName) const {
    index_.Record(name, fileName);
}

QString PrinterProfiles::Replace(const QString& name) const {
    const QString before = index_.NamedFile(name);
    Save(name);
    QFile file(before);
    if (!before.isEmpty() && !file.remove() && file.exists()) {
        return u"Das Druckerprofil „%1“ ist gespeichert, aber seine frühere Datei „%2“ konnte "
               u"nicht gelöscht werden: %3."_s.arg(name, before, platform::SystemReason(file));
    }
    return {};
}

std::optional<printing::PrinterChoice> PrinterProfiles::Stored(const QString& name) const {
    const QString path = index_.SettingsFile(name);
    return path.isEmpty() ? std::nullopt : printing::TPrinterSetup::Stored(path);
}

void PrinterProfiles::Load(const QString& name) const {
    const QString path = index_.SettingsFile(name);
    if (!path.isEmpty()) {
        printing::TPrinterSetup(Printer()).LoadFromFile(path);
    }
}

}  // namespace kadrona::core
