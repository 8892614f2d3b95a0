#pragma once

#include <QString>
#include <QStringList>
#include <functional>
#include <memory>

#include "platform/Links.h"

namespace kadrona::platform {

class IniContent;

/// One INI file in memory. Sections and keys are found whatever their case; a change touches only
/// the lines that it must. Blanks at the ends of names and values do not count. Meant to be opened,
/// used and closed by each operation, so that nothing is cached.
class IniFile {
 public:
    /// Reads the file; a missing one is empty. Bytes are decoded by DecodeText. A repeated section
    /// continues the first one, of a repeated key the first one counts. Throws FileError when the
    /// file cannot be looked up or read or is larger than 4 MiB.
    explicit IniFile(QString path, Links links = Links::Own);
    ~IniFile();
    IniFile(const IniFile&) = delete;
    IniFile& operator=(const IniFile&) = delete;

    /// Reads the file, has `change` change it and saves it, while no other program does the same in
    /// that folder: none loses what the other one wrote. Not to be called by `change`. Throws
    /// FileError also where FolderLock does.
    static void Change(const QString& path, const std::function<void(IniFile&)>& change,
                       Links links = Links::Own);

    /// Section names in file order.
    QStringList Sections() const;

    QString ReadString(const QString& section, const QString& key,
                       const QString& fallback = {}) const;

    /// Decimal 32-bit integer; `fallback` also where the text is none.
    int ReadInteger(const QString& section, const QString& key, int fallback = 0) const;

    /// Throws Error where a name or value cannot be kept in the file form (a line break, "]" in a
    /// section, "=" in a key, an empty name, a key that would read as a comment or a section).
    void WriteString(const QString& section, const QString& key, const QString& value);
    void WriteInteger(const QString& section, const QString& key, int value);

    void EraseSection(const QString& section);

    /// Returns whether the key was there.
    bool EraseKey(const QString& section, const QString& key);

    /// Writes the file atomically as UTF-8, if anything was changed. Throws FileError.
    void Save();

 private:
    QString path_;
    Links links_;
    std::unique_ptr<IniContent> content_;
    bool changed_ = false;
};

}  // namespace kadrona::platform
