#pragma once

#include <optional>

#include "core/profiles/ProfileIndex.h"

namespace kadrona::printing {
class PrinterLayer;
struct PrinterChoice;
}  // namespace kadrona::printing

namespace kadrona::core {

/// The printer profiles: "Printerprofiles42.ini", the settings files that it names, and the printer
/// that they are taken from and applied to. Operations throw platform::Error.
class PrinterProfiles {
 public:
    /// `printer` may be null; it outlives the profiles.
    PrinterProfiles(const QString& dataFolder, printing::PrinterLayer* printer);

    /// Throws printing::PrinterError where there is none.
    printing::PrinterLayer& Printer() const;

    QStringList Names() const { return index_.Names(); }
    /// Keeps the current printer under a name; a failure leaves no file.
    void Save(const QString& name) const;
    void Record(const QString& name, const QString& fileName) const;
    /// Gives a profile the current printer; the file that it had is removed. Returns why that could
    /// not be, a sentence for the user, else an empty text.
    QString Replace(const QString& name) const;
    /// The printer that a profile keeps; nothing where the profile or its file is missing.
    std::optional<printing::PrinterChoice> Stored(const QString& name) const;
    /// Makes a profile's printer the current one; does nothing where the profile or its file is
    /// missing. Throws for a damaged file or a printer that is gone; the current printer then
    /// stays.
    void Load(const QString& name) const;
    /// See ProfileIndex::Remove.
    QString Delete(const QString& name) const { return index_.Remove(name); }

 private:
    QString dataFolder_;
    ProfileIndex index_;
    printing::PrinterLayer* printer_;
};

}  // namespace kadrona::core
