#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QStringList>
#include <memory>
#include <optional>

namespace kadrona::platform {

/// What an INI file holds, apart from where it is stored. The rules are those of IniFile.
class IniContent {
 public:
    /// Takes any bytes; what is no INI text is kept as lines without meaning.
    explicit IniContent(QByteArrayView bytes);
    ~IniContent();
    IniContent(const IniContent&) = delete;
    IniContent& operator=(const IniContent&) = delete;

    /// The content as a file in UTF-8.
    QByteArray ToBytes() const;

    /// Section names in file order.
    QStringList Sections() const;

    /// The keys of a section in file order.
    QStringList Keys(const QString& section) const;

    std::optional<QString> Value(const QString& section, const QString& key) const;

    /// Returns whether this changed anything. Throws Error where a name or the value cannot be kept
    /// in the file form.
    bool SetValue(const QString& section, const QString& key, const QString& value);

    /// Both return whether there was something to erase.
    bool EraseSection(const QString& section);
    bool EraseKey(const QString& section, const QString& key);

 private:
    struct Store;
    std::unique_ptr<Store> store_;
};

}  // namespace kadrona::platform
