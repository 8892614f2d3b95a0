#pragma once

#include <QString>
#include <QStringList>
#include <optional>

#include "platform/IniFile.h"

namespace kadrona::platform {

/// An INI file that holds properties of named controls: one section per control, one key per
/// property. Texts are kept exactly, blanks at the ends and line breaks included; a list is one key
/// with its number of lines and one key per line. A property that is missing or has the wrong type
/// reads as nothing.
class PropertyFile {
 public:
    /// Throws FileError when an existing file cannot be read.
    explicit PropertyFile(const QString& path);

    std::optional<QString> ReadText(const QString& control, const QString& property) const;
    std::optional<int> ReadInteger(const QString& control, const QString& property) const;
    std::optional<bool> ReadBoolean(const QString& control, const QString& property) const;
    std::optional<QStringList> ReadList(const QString& control, const QString& property) const;

    void WriteText(const QString& control, const QString& property, const QString& value);
    void WriteInteger(const QString& control, const QString& property, int value);
    void WriteBoolean(const QString& control, const QString& property, bool value);
    void WriteList(const QString& control, const QString& property, const QStringList& value);

    /// Writes the file atomically, if anything was changed. Throws FileError.
    void Save();

 private:
    IniFile ini_;
};

}  // namespace kadrona::platform
