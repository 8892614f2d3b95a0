#include "platform/IniContent.h"

#include <algorithm>

#include "platform/Error.h"
#include "platform/IniLine.h"
#include "platform/TextDecoding.h"

namespace kadrona::platform {
namespace {

using namespace Qt::StringLiterals;

/// The characters that end a line, and the one that a text file cannot hold.
constexpr QStringView LineEnds(u"\r\n\0", 3);

bool HasAnyOf(QStringView text, QStringView characters) {
    return std::any_of(text.begin(), text.end(),
                       [=](QChar character) { return characters.contains(character); });
}

void CheckSection(const QString& section) {
    if (section.isEmpty() || section.contains(u']') || HasAnyOf(section, LineEnds)) {
        throw Error(
            u"Der Name „%1“ kann nicht gespeichert werden: Er ist leer oder enthält eine "
            u"schließende eckige Klammer oder einen Zeilenumbruch."_s.arg(section));
    }
}

void CheckKey(const QString& key) {
    const bool startsLikeOther = !key.isEmpty() && (u";#["_s).contains(key.front());
    if (key.isEmpty() || startsLikeOther || key.contains(u'=') || HasAnyOf(key, LineEnds)) {
        throw Error(
            u"Der Schlüssel „%1“ kann nicht gespeichert werden: Er ist leer oder enthält "
            u"ein Zeichen, das dort nicht erlaubt ist."_s.arg(key));
    }
}

void CheckValue(const QString& key, const QString& value) {
    if (HasAnyOf(value, LineEnds)) {
        throw Error(
            u"Der Wert von „%1“ kann nicht gespeichert werden: Er enthält einen "
            u"Zeilenumbruch."_s.arg(key));
    }
}

}  // namespace

IniContent::IniContent(QByteArrayView bytes) : text_(DecodeText(bytes)), lineEnd_(u"\n"_s) {
    if (!text_.isEmpty()) {
        const QStringView first = FirstLine(text_);
        const QStringView end = first.sliced(WithoutEnd(first).size());
        lineEnd_ = end.isEmpty() ? lineEnd_ : end.toString();
        text_ += WithoutEnd(text_).size() == text_.size() ? lineEnd_ : QString();
    }
    folded_ = CaseFolded(text_);
    blocks_.emplace_back();
    for (QStringView rest = text_; !rest.isEmpty();) {
        const QStringView line = FirstLine(rest);
        rest = rest.sliced(line.size());
        AddLine(line);
    }
}

void IniContent::AddLine(QStringView line) {
    if (const QStringView name = HeaderName(line); !name.isEmpty()) {
        AddHeader(name);
    }
    Block& block = blocks_.back();
    const QStringView key = block.section < 0 ? QStringView() : KeyName(line);
    if (!key.isEmpty()) {
        const EntryName name{block.section, Folded(key)};
        const Place place{qsizetype(blocks_.size()) - 1, qsizetype(block.lines.size())};
        if (keys_.contains(name)) {
            laterKeys_.insert(name, place);
        } else {
            keys_.insert(name, place);
        }
    }
    block.lines.push_back(line);
}

/// Begins a block with the comment that stands directly above.
void IniContent::AddHeader(QStringView name) {
    const qsizetype number = sections_.value(Folded(name), qsizetype(blocksOfSections_.size()));
    if (number == qsizetype(blocksOfSections_.size())) {
        sections_.insert(Folded(name), number);
        blocksOfSections_.emplace_back();
    }
    blocksOfSections_[size_t(number)].push_back(qsizetype(blocks_.size()));
    Block block{name, number, {}};
    std::vector<QStringView>& above = blocks_.back().lines;
    const auto comment = std::find_if_not(above.rbegin(), above.rend(), IsComment).base();
    block.lines.assign(comment, above.end());
    above.erase(comment, above.end());
    blocks_.push_back(std::move(block));
}

/// `part` of text_, as it is compared.
QStringView IniContent::Folded(QStringView part) const {
    return QStringView(folded_).sliced(part.data() - text_.constData(), part.size());
}

QStringView IniContent::Kept(QString text) {
    added_.append(std::move(text));
    return added_.back();
}

QByteArray IniContent::ToBytes() const {
    QByteArray bytes;
    for (const Block& block : blocks_) {
        for (const QStringView line : block.lines) {
            bytes += line.toUtf8();
        }
    }
    // At the start of the file it would read as a byte order mark and be dropped.
    if (bytes.startsWith("\xEF\xBB\xBF")) {
        bytes.prepend('\n');
    }
    return bytes;
}

QStringList IniContent::Sections() const {
    QStringList names;
    for (size_t i = 0; i < blocks_.size(); ++i) {
        const Block& block = blocks_[i];
        if (block.section >= 0 &&
            blocksOfSections_[size_t(block.section)].front() == qsizetype(i)) {
            names.append(block.name.toString());
        }
    }
    return names;
}

qsizetype IniContent::SectionNumber(const QString& section) const {
    return sections_.value(CaseFolded(Trimmed(section)), -1);
}

std::optional<QString> IniContent::Value(const QString& section, const QString& key) const {
    const QString name = CaseFolded(Trimmed(key));
    const auto found = keys_.constFind({SectionNumber(section), name});
    if (found == keys_.cend()) {
        return std::nullopt;
    }
    return ValueText(blocks_[size_t(found->block)].lines[size_t(found->line)]).toString();
}

bool IniContent::SetValue(const QString& section, const QString& key, const QString& value) {
    const QString sectionName = Trimmed(section).toString();
    const QString keyName = Trimmed(key).toString();
    const QString text = Trimmed(value).toString();
    CheckSection(sectionName);
    CheckKey(keyName);
    CheckValue(keyName, text);
    const qsizetype number = SectionNumber(section);
    const QString folded = CaseFolded(keyName);
    const auto found = keys_.constFind({number, folded});
    if (found == keys_.cend()) {
        InsertKey(number >= 0 ? number : AppendSection(sectionName), keyName, text);
        return true;
    }
    QStringView& line = LineAt(*found);
    const QStringView old = ValueText(line);
    if (old == text) {
        return false;
    }
    const qsizetype start = old.isEmpty() ? line.indexOf(u'=') + 1 : old.data() - line.data();
    line =
        Kept(line.left(start).toString() + text + line.sliced(WithoutEnd(line).size()).toString());
    return true;
}

QStringView IniContent::LastLine() const {
    for (size_t block = blocks_.size(); block > 0; --block) {
        const std::vector<QStringView>& lines = blocks_[block - 1].lines;
        const auto line = std::find_if_not(lines.rbegin(), lines.rend(),
                                           [](QStringView text) { return text.isEmpty(); });
        if (line != lines.rend()) {
            return *line;
        }
    }
    return {};
}

/// Sets the new section apart by an empty line.
qsizetype IniContent::AppendSection(const QString& name) {
    if (!IsBlank(LastLine())) {
        blocks_.back().lines.push_back(Kept(lineEnd_));
    }
    const auto number = qsizetype(blocksOfSections_.size());
    sections_.insert(Kept(CaseFolded(name)), number);
    blocksOfSections_.push_back({qsizetype(blocks_.size())});
    blocks_.push_back({Kept(name), number, {Kept(u'[' + name + u']' + lineEnd_)}});
    return number;
}

/// Behind the section's last line that is not empty.
void IniContent::InsertKey(qsizetype section, const QString& key, const QString& value) {
    const qsizetype number = blocksOfSections_[size_t(section)].back();
    std::vector<QStringView>& lines = blocks_[size_t(number)].lines;
    const auto place = std::find_if_not(lines.rbegin(), lines.rend(), IsBlank).base();
    keys_.insert({section, Kept(CaseFolded(key))}, {number, place - lines.begin()});
    lines.insert(place, Kept(key + u'=' + value + lineEnd_));
}

bool IniContent::EraseSection(const QString& section) {
    // Its number goes out of use, and with it its keys.
    const qsizetype number = SectionNumber(section);
    sections_.remove(CaseFolded(Trimmed(section)));
    if (number < 0) {
        return false;
    }
    for (const qsizetype block : blocksOfSections_[size_t(number)]) {
        blocks_[size_t(block)] = Block();
    }
    return true;
}

bool IniContent::EraseKey(const QString& section, const QString& key) {
    const QString folded = CaseFolded(Trimmed(key));
    const EntryName name{SectionNumber(section), folded};
    const auto found = keys_.constFind(name);
    if (found == keys_.cend()) {
        return false;
    }
    LineAt(*found) = {};
    keys_.erase(found);
    // A later one would count once the file is read again.
    for (const Place place : laterKeys_.values(name)) {
        LineAt(place) = {};
    }
    laterKeys_.remove(name);
    return true;
}

}  // namespace kadrona::platform
