#include "printing/cups/service/DeviceMode.h"

#include <QHash>
#include <algorithm>

namespace kadrona::printing::cups {

namespace {

enum class Part { Key, Value };

QByteArray Escaped(const QByteArray& text, Part part) {
    QByteArray escaped;
    for (const char c : text) {
        switch (c) {
            case '\\':
                escaped += "\\\\";
                break;
            case '\n':
                escaped += "\\n";
                break;
            case '\r':
                escaped += "\\r";
                break;
            case '\0':
                escaped += "\\0";
                break;
            case '=':
                escaped += part == Part::Key ? "\\=" : "=";
                break;
            default:
                escaped += c;
        }
    }
    return escaped;
}

QByteArray Unescaped(const QByteArray& text) {
    QByteArray plain;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] != '\\' || i + 1 == text.size()) {
            plain += text[i];
            continue;
        }
        switch (const char c = text[++i]) {
            case 'n':
                plain += '\n';
                break;
            case 'r':
                plain += '\r';
                break;
            case '0':
                plain += '\0';
                break;
            default:
                plain += c;
        }
    }
    return plain;
}

/// Position of the first '=' that ends a key; -1 where there is none.
qsizetype KeyEnd(const QByteArray& line) {
    for (qsizetype i = 0; i < line.size(); ++i) {
        if (line[i] == '\\') {
            ++i;
        } else if (line[i] == '=') {
            return i;
        }
    }
    return -1;
}

}  // namespace

DeviceMode::DeviceMode(const QByteArray& block) {
    // A foreign block may have any number of lines, so that Set would take too long.
    QHash<QByteArray, size_t> places;
    for (const QByteArray& line : block.split('\n')) {
        const qsizetype end = KeyEnd(line);
        if (end <= 0) {
            continue;
        }
        const QByteArray key = Unescaped(line.left(end));
        const auto place = places.constFind(key);
        if (place != places.cend()) {
            options_[*place].second = Unescaped(line.mid(end + 1));
        } else {
            places.insert(key, options_.size());
            options_.emplace_back(key, Unescaped(line.mid(end + 1)));
        }
    }
}

QByteArray DeviceMode::ToBlock() const {
    QByteArray block;
    for (const auto& [key, value] : options_) {
        block += Escaped(key, Part::Key) + '=' + Escaped(value, Part::Value) + '\n';
    }
    return block;
}

QByteArray DeviceMode::Value(const QByteArray& key) const {
    const auto found = std::find_if(options_.begin(), options_.end(),
                                    [&](const auto& option) { return option.first == key; });
    return found == options_.end() ? QByteArray() : found->second;
}

void DeviceMode::Set(const QByteArray& key, const QByteArray& value) {
    const auto found = std::find_if(options_.begin(), options_.end(),
                                    [&](const auto& option) { return option.first == key; });
    if (found == options_.end()) {
        options_.emplace_back(key, value);
    } else {
        found->second = value;
    }
}

void DeviceMode::Remove(const QByteArray& key) {
    std::erase_if(options_, [&](const auto& option) { return option.first == key; });
}

printing::Orientation DeviceMode::SheetOrientation() const {
    const QByteArray value = Value(Orientation);
    return value == "auto" ? printing::Orientation::Automatic
           : value == "4"  ? printing::Orientation::Turned
                           : printing::Orientation::Upright;
}

void DeviceMode::SetSheetOrientation(printing::Orientation orientation) {
    Set(Orientation, orientation == printing::Orientation::Automatic ? "auto"
                     : orientation == printing::Orientation::Turned  ? "4"
                                                                     : "3");
}

int DeviceMode::CopyCount() const {
    return std::clamp(Value(Copies).toInt(), 1, MostCopies);
}

}  // namespace kadrona::printing::cups
