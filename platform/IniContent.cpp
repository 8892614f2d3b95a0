#include "platform/IniContent.h"

// The library's code is compiled in: its names are ordered in our own way. Texts are converted by
// Qt, so none of its converters is needed.
#define SI_IMPLEMENTATION
#define SI_NO_CONVERSION
#include <SimpleIni.h>

#include <algorithm>
#include <cstring>

#include "platform/Error.h"
#include "platform/IniShield.h"
#include "platform/TextDecoding.h"

namespace kadrona::platform {
namespace {

using namespace Qt::StringLiterals;

/// Between UTF-8 outside and UTF-16 inside, in the form that SimpleIni calls for.
class Utf8Converter {
 public:
    explicit Utf8Converter(bool /*storeIsUtf8*/) {}

    size_t SizeFromStore(const char* /*bytes*/, size_t size) { return size; }

    bool ConvertFromStore(const char* bytes, size_t size, char16_t* units, size_t capacity) {
        const QString text = QString::fromUtf8(bytes, qsizetype(size));
        if (size_t(text.size()) > capacity) {
            return false;
        }
        std::copy(text.utf16(), text.utf16() + text.size(), units);
        return true;
    }

    size_t SizeToStore(const char16_t* units) {
        return size_t(QStringView(units).toUtf8().size()) + 1;
    }

    bool ConvertToStore(const char16_t* units, char* bytes, size_t capacity) {
        const QByteArray converted = QStringView(units).toUtf8();
        if (size_t(converted.size()) >= capacity) {
            return false;
        }
        std::memcpy(bytes, converted.constData(), size_t(converted.size()) + 1);
        return true;
    }
};

using SimpleIni = CSimpleIniTempl<char16_t, CaseInsensitiveLess, Utf8Converter>;

const char16_t* Units(const QString& text) {
    return reinterpret_cast<const char16_t*>(text.utf16());
}

void CheckDone(SI_Error result) {
    if (result < 0) {
        throw Error(
            u"Die Einstellungen konnten nicht verarbeitet werden: "
            u"Der Arbeitsspeicher reicht nicht aus."_s);
    }
}

QStringList InFileOrder(SimpleIni::TNamesDepend names) {
    names.sort(SimpleIni::Entry::LoadOrder());
    QStringList texts;
    for (const SimpleIni::Entry& name : names) {
        const QString text = QStringView(name.pItem).toString();
        if (!text.isEmpty() && !text.startsWith(IniShieldMark)) {
            texts.append(text);
        }
    }
    return texts;
}

QString Trimmed(const QString& text) {
    return TrimmedIniText(text).toString();
}

bool HasAnyOf(const QString& text, QStringView characters) {
    return std::any_of(text.begin(), text.end(),
                       [=](QChar character) { return characters.contains(character); });
}

/// The characters that end a line, and the one that ends a text in the library.
constexpr QStringView LineEnds(u"\r\n\0", 3);

void CheckSection(const QString& section) {
    if (section.isEmpty() || section.contains(u']') || HasAnyOf(section, LineEnds)) {
        throw Error(
            u"Der Name „%1“ kann nicht gespeichert werden: Er ist leer oder enthält eine "
            u"schließende eckige Klammer oder einen Zeilenumbruch."_s.arg(section));
    }
}

void CheckKey(const QString& key) {
    const bool startsLikeOther = !key.isEmpty() && (u";#[\x01"_s).contains(key.front());
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

struct IniContent::Store {
    SimpleIni ini{/*a_bIsUtf8=*/true, /*a_bAllowMultiKey=*/false, /*a_bAllowMultiLine=*/false};
};

IniContent::IniContent(QByteArrayView bytes) : store_(std::make_unique<Store>()) {
    store_->ini.SetSpaces(false);
    const QByteArray shielded = ShieldedIniText(DecodeText(bytes)).toUtf8();
    CheckDone(store_->ini.LoadData(shielded.constData(), size_t(shielded.size())));
}

IniContent::~IniContent() = default;

QByteArray IniContent::ToBytes() const {
    std::string written;
    CheckDone(store_->ini.Save(written));
    return UnshieldedIniText(written);
}

QStringList IniContent::Sections() const {
    SimpleIni::TNamesDepend names;
    store_->ini.GetAllSections(names);
    return InFileOrder(std::move(names));
}

QStringList IniContent::Keys(const QString& section) const {
    SimpleIni::TNamesDepend names;
    store_->ini.GetAllKeys(Units(Trimmed(section)), names);
    return InFileOrder(std::move(names));
}

std::optional<QString> IniContent::Value(const QString& section, const QString& key) const {
    const char16_t* value = store_->ini.GetValue(Units(Trimmed(section)), Units(Trimmed(key)));
    return value != nullptr ? std::optional(QStringView(value).toString()) : std::nullopt;
}

bool IniContent::SetValue(const QString& section, const QString& key, const QString& value) {
    const QString trimmedSection = Trimmed(section);
    const QString trimmedKey = Trimmed(key);
    const QString trimmedValue = Trimmed(value);
    CheckSection(trimmedSection);
    CheckKey(trimmedKey);
    CheckValue(trimmedKey, trimmedValue);
    if (Value(trimmedSection, trimmedKey) == trimmedValue) {
        return false;
    }
    CheckDone(store_->ini.SetValue(Units(trimmedSection), Units(trimmedKey), Units(trimmedValue)));
    return true;
}

bool IniContent::EraseSection(const QString& section) {
    const QString trimmed = Trimmed(section);
    return !trimmed.isEmpty() && store_->ini.Delete(Units(trimmed), nullptr);
}

bool IniContent::EraseKey(const QString& section, const QString& key) {
    const QString trimmed = Trimmed(key);
    return !trimmed.startsWith(IniShieldMark) &&
           store_->ini.Delete(Units(Trimmed(section)), Units(trimmed));
}

}  // namespace kadrona::platform
