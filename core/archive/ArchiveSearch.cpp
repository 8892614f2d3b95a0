#include "core/archive/ArchiveSearch.h"

#include <QList>
#include <algorithm>
#include <array>
#include <string_view>

using namespace Qt::StringLiterals;

namespace kadrona::core {

namespace {

bool IsBlank(char byte) {
    return byte == ' ' || (byte >= '\t' && byte <= '\r') || byte == FieldEnd;
}

/// Letters that decompose into no plain one, with what stands for them; all small.
struct Spelling {
    char16_t letter;
    QLatin1StringView plain;
};
constexpr std::array Spellings{
    Spelling{u'ß', "ss"_L1}, Spelling{u'æ', "ae"_L1}, Spelling{u'œ', "oe"_L1},
    Spelling{u'ø', "o"_L1},  Spelling{u'ł', "l"_L1},  Spelling{u'đ', "d"_L1},
    Spelling{u'ð', "d"_L1},  Spelling{u'þ', "th"_L1}, Spelling{u'ħ', "h"_L1},
    Spelling{u'ı', "i"_L1},
};

constexpr char16_t Diaeresis = 0x308;

bool IsUmlautBase(QChar letter) {
    return letter == u'a' || letter == u'o' || letter == u'u';
}

/// Small letters without their marks; the dots of an umlaut become an e where they are spelled out.
QString WithoutMarks(const QString& text, Umlauts umlauts) {
    const QString decomposed = text.toCaseFolded().normalized(QString::NormalizationForm_D);
    QString plain;
    for (const QChar letter : decomposed) {
        if (letter.isMark()) {
            if (letter == Diaeresis && umlauts == Umlauts::SpelledOut && !plain.isEmpty() &&
                IsUmlautBase(plain.back())) {
                plain += u'e';
            }
            continue;
        }
        const auto* const spelling =
            std::find_if(Spellings.begin(), Spellings.end(),
                         [letter](const Spelling& row) { return row.letter == letter; });
        spelling == Spellings.end() ? plain += letter : plain += spelling->plain;
    }
    return plain;
}

/// Whether all characters of UTF-8 text lie below U+0100: C2 and C3 lead those beyond ASCII.
bool IsLatin1(QByteArrayView text) {
    return std::all_of(text.begin(), text.end(),
                       [](char byte) { return static_cast<uchar>(byte) <= 0xc3; });
}

/// What WithoutMarks makes of the letters U+00E0 to U+00FF; empty where they stay.
constexpr std::array<std::string_view, 32> Latin1Letters{
    "a", "a", "a", "a", "ae", "a", "ae", "c", "e", "e", "e", "e", "i",  "i", "i",  "i",
    "d", "n", "o", "o", "o",  "o", "oe", "",  "o", "u", "u", "u", "ue", "y", "th", "y"};

std::string_view Latin1Letter(int code, Umlauts umlauts) {
    if (code == 0xb5) {  // the micro sign is a small Greek mu
        return "\xce\xbc";
    }
    if (code == 0xdf) {  // sharp s
        return "ss";
    }
    if (code < 0xc0 || code == 0xd7) {
        return {};
    }
    const bool umlaut = (code & 0xdf) == 0xc4 || (code & 0xdf) == 0xd6 || (code & 0xdf) == 0xdc;
    const std::string_view letter = Latin1Letters.at(static_cast<size_t>(code & 0x1f));
    return umlaut && umlauts == Umlauts::Plain ? letter.substr(0, 1) : letter;
}

/// The quick way for such text, in place: no letter becomes longer. Returns the new end.
char* FoldLatin1(char* begin, const char* end, Umlauts umlauts) {
    char* out = begin;
    for (const char* at = begin; at < end; ++at) {
        const auto byte = static_cast<uchar>(*at);
        if (byte < 0x80 || at + 1 == end) {
            *out++ = byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte + 0x20) : *at;
            continue;
        }
        const std::string_view letter = Latin1Letter((byte & 3) << 6 | (at[1] & 0x3f), umlauts);
        out = letter.empty() ? std::copy(at, at + 2, out)
                             : std::copy(letter.begin(), letter.end(), out);
        ++at;
    }
    return out;
}

/// Drops the blanks at the beginning and makes one of each other run; returns the new end.
char* JoinBlanks(char* begin, const char* end) {
    char* out = begin;
    for (const char* at = begin; at < end; ++at) {
        if (!IsBlank(*at)) {
            *out++ = *at;
        } else if (out > begin && out[-1] != ' ') {
            *out++ = ' ';
        }
    }
    return out;
}

}  // namespace

void AppendFolded(QByteArray& folded, QByteArrayView text, Umlauts umlauts) {
    const qsizetype before = folded.size();
    const bool latin1 = IsLatin1(text);
    folded.append(latin1 ? text : WithoutMarks(QString::fromUtf8(text), umlauts).toUtf8());
    char* const begin = folded.data() + before;
    const char* end = folded.constEnd();
    if (latin1) {
        end = FoldLatin1(begin, end, umlauts);
    }
    folded.resize(JoinBlanks(begin, end) - folded.constData());
}

void AppendField(QByteArray& record, QByteArrayView text) {
    const qsizetype before = record.size();
    AppendFolded(record, text, Umlauts::SpelledOut);
    record.append(FieldEnd);
    const bool ascii = std::all_of(text.begin(), text.end(),
                                   [](char byte) { return static_cast<uchar>(byte) < 0x80; });
    if (!ascii) {
        const qsizetype middle = record.size();
        AppendFolded(record, text, Umlauts::Plain);
        record.append(FieldEnd);
        if (QByteArrayView(record).sliced(middle) ==
            QByteArrayView(record).sliced(before, middle - before)) {
            record.resize(middle);
        }
    }
}

ArchiveSearch::ArchiveSearch(const QString& text) {
    QStringView rest = text;
    while (!(rest = rest.trimmed()).isEmpty()) {
        const bool excluded = rest.front() == u'-';
        rest = rest.sliced(excluded ? 1 : 0);
        const bool phrase = rest.startsWith(u'"');
        rest = rest.sliced(phrase ? 1 : 0);
        qsizetype end = 0;
        while (end < rest.size() && (phrase ? rest[end] != u'"' : !rest[end].isSpace())) {
            ++end;
        }
        Add(rest.first(end), excluded);
        rest = rest.sliced(qMin(end + (phrase ? 1 : 0), rest.size()));
    }
}

/// A term of nothing but asterisks says nothing.
void ArchiveSearch::Add(QStringView term, bool excluded) {
    Term added;
    added.excluded = excluded;
    for (const QStringView piece : term.split(u'*', Qt::SkipEmptyParts)) {
        QByteArray folded;
        AppendFolded(folded, piece.toUtf8(), Umlauts::SpelledOut);
        if (!folded.isEmpty()) {
            added.pieces.emplace_back(folded);
        }
    }
    if (!added.pieces.empty()) {
        terms_.push_back(std::move(added));
    }
}

bool ArchiveSearch::Matches(QByteArrayView record) const {
    return std::all_of(terms_.begin(), terms_.end(),
                       [&](const Term& term) { return Finds(term, record) != term.excluded; });
}

bool ArchiveSearch::Finds(const Term& term, QByteArrayView record) {
    const QByteArrayMatcher& first = term.pieces.front();
    qsizetype at = first.indexIn(record.data(), record.size());
    if (term.pieces.size() == 1 || at < 0) {
        return at >= 0;
    }
    while (at >= 0) {
        const qsizetype fieldEnd = record.indexOf(FieldEnd, at);
        qsizetype from = at + first.pattern().size();
        for (size_t i = 1; i < term.pieces.size() && from >= 0; ++i) {
            const QByteArrayMatcher& piece = term.pieces[i];
            at = piece.indexIn(record.data(), fieldEnd, from);
            from = at < 0 ? -1 : at + piece.pattern().size();
        }
        if (from >= 0) {
            return true;
        }
        // The earliest places of one field did not do; no later ones in it will.
        at = first.indexIn(record.data(), record.size(), fieldEnd);
    }
    return false;
}

}  // namespace kadrona::core
