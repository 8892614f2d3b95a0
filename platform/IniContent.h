#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QHash>
#include <QMultiHash>
#include <QString>
#include <QStringList>
#include <optional>
#include <utility>
#include <vector>

namespace kadrona::platform {

/// What an INI file holds, apart from where it is stored: its lines, of which a change touches only
/// those that it must. The rules are those of IniFile. Loading takes time in proportion to the
/// bytes, every look-up and change about the same time whatever the size.
///
/// The libraries weighed lose what people write into such files: QSettings orders sections anew and
/// drops comments, SimpleIni drops lines without meaning and lays the rest out its own way.
class IniContent {
 public:
    /// Takes any bytes; what is no INI text is kept as lines without meaning.
    explicit IniContent(QByteArrayView bytes);
    IniContent(const IniContent&) = delete;
    IniContent& operator=(const IniContent&) = delete;

    /// The content as a file in UTF-8.
    QByteArray ToBytes() const;

    /// Section names in file order.
    QStringList Sections() const;

    std::optional<QString> Value(const QString& section, const QString& key) const;

    /// Returns whether this changed anything. Throws Error where a name or the value cannot be kept
    /// in the file form.
    bool SetValue(const QString& section, const QString& key, const QString& value);

    /// Both return whether there was something to erase. With a section goes the comment directly
    /// above it.
    bool EraseSection(const QString& section);
    bool EraseKey(const QString& section, const QString& key);

 private:
    /// A header with the comment above it and all lines down to the next one's comment. The first
    /// block has no header.
    struct Block {
        QStringView name;  // as it is spelled
        qsizetype section = -1;
        std::vector<QStringView> lines;  // with their ends; an erased one is empty
    };
    struct Place {
        qsizetype block;
        qsizetype line;
    };
    /// Number of a section and folded name of a key.
    using EntryName = std::pair<qsizetype, QStringView>;

    void AddLine(QStringView line);
    void AddHeader(QStringView name);
    QStringView Folded(QStringView part) const;
    QStringView Kept(QString text);
    QStringView& LineAt(Place place) {
        return blocks_[size_t(place.block)].lines[size_t(place.line)];
    }
    QStringView LastLine() const;
    qsizetype SectionNumber(const QString& section) const;
    qsizetype AppendSection(const QString& name);
    void InsertKey(qsizetype section, const QString& key, const QString& value);

    QString text_;
    QString folded_;     // text_ in the form that names are compared in, place by place
    QStringList added_;  // owns what the views do not find in text_ and folded_
    QString lineEnd_;    // of new lines
    std::vector<Block> blocks_;
    std::vector<std::vector<qsizetype>> blocksOfSections_;
    QHash<QStringView, qsizetype> sections_;  // by folded name
    QHash<EntryName, Place> keys_;
    QMultiHash<EntryName, Place> laterKeys_;  // the second and further ones of a name
};

}  // namespace kadrona::platform
