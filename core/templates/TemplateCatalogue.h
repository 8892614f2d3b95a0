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

}  // namespace kadrona::core
