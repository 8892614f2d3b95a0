#pragma once

#include <QString>
#include <QStringList>
#include <vector>

namespace kadrona::core {

/// One line "name=file" of the catalogue.
struct CatalogueEntry {
    QString name;
    QString file;  ///< relative to the template folder
};

/// The catalogue's entries in file order. A line without "=" is an entry with an empty name, as a
/// list of name=value lines has it, and no file; empty lines at the end are no entries.
std::vector<CatalogueEntry> ParseCatalogue(const QString& text);

/// The templates that "MaskList.kdr" in the template folder lists.
class TemplateCatalogue {
 public:
    explicit TemplateCatalogue(QString folder) : folder_(std::move(folder)) {}

    /// Reads the list; where there is none the catalogue is empty. Throws platform::FileError.
    void Load();

    QStringList Names() const;
    /// Full path of an entry's template file; empty when there is no such entry or file.
    QString FileAt(int index) const;

 private:
    QString folder_;
    std::vector<CatalogueEntry> entries_;
};

}  // namespace kadrona::core
