#include "store/Words.h"

#include <algorithm>
#include <string_view>

#include "platform/TextDecoding.h"

namespace kadrona::store {

namespace {

/// True for what the codes 128 to 159 of Windows-1252 stand for.
bool IsOfMiddleCodes(char32_t character) {
    for (int code = 128; code < 160; ++code) {
        if (platform::FromWindows1252(static_cast<uchar>(code)).unicode() == character) {
            return true;
        }
    }
    return false;
}

bool IsSeparator(char32_t character) {
    constexpr std::u32string_view Others = U" *+',-/:;<=>\\`";
    return (character >= 1 && character <= 31) ||
           Others.find(character) != std::u32string_view::npos;
}

bool BuildsWords(char32_t character) {
    if (character < 128) {
        return (character >= '0' && character <= '9') || (character >= 'a' && character <= 'z') ||
               (character >= 'A' && character <= 'Z') || character == '_';
    }
    return (character >= 160 && character <= 254) || IsOfMiddleCodes(character);
}

/// The lower case of a character that builds words.
char32_t LowerCase(char32_t character) {
    const bool ascii = character >= 'A' && character <= 'Z';
    const bool latin = character >= 0xc0 && character <= 0xde && character != 0xd7;
    if (ascii || latin) {
        return character + 0x20;
    }
    switch (character) {
        case 0x0152:  // Œ
        case 0x0160:  // Š
        case 0x017d:  // Ž
            return character + 1;
        case 0x0178:  // Ÿ
            return 0xff;
        default:
            return character;
    }
}

/// `character` is below 0x10000.
void AppendUtf8(QByteArray& bytes, char32_t character) {
    const auto tail = [&](int shift) {
        bytes.append(static_cast<char>(0x80 | ((character >> shift) & 0x3f)));
    };
    if (character < 0x80) {
        bytes.append(static_cast<char>(character));
    } else if (character < 0x800) {
        bytes.append(static_cast<char>(0xc0 | (character >> 6)));
        tail(0);
    } else {
        bytes.append(static_cast<char>(0xe0 | (character >> 12)));
        tail(6);
        tail(0);
    }
}

/// Takes the next character off UTF-8 text, which is not empty; 0 for a byte that makes no sense
/// and for what lies beyond 0xffff.
char32_t TakeCharacter(QByteArrayView& text) {
    const auto byteAt = [&](qsizetype index) {
        return index < text.size() ? static_cast<uchar>(text[index]) : uchar{0};
    };
    const auto isTail = [&](qsizetype index) { return (byteAt(index) & 0xc0) == 0x80; };
    const uchar lead = byteAt(0);
    char32_t character = 0;
    qsizetype length = 1;
    if (lead < 0x80) {
        character = lead;
    } else if (lead >= 0xc2 && lead < 0xe0 && isTail(1)) {
        character = ((lead & 0x1fU) << 6) | (byteAt(1) & 0x3fU);
        length = 2;
    } else if (lead >= 0xe0 && lead < 0xf0 && isTail(1) && isTail(2)) {
        character = ((lead & 0x0fU) << 12) | ((byteAt(1) & 0x3fU) << 6) | (byteAt(2) & 0x3fU);
        length = 3;
    }
    text = text.sliced(length);
    return character;
}

}  // namespace

void ForEachWord(QByteArrayView text, const WordVisitor& visit) {
    QByteArray word;
    qsizetype begin = 0;
    qsizetype end = 0;
    QByteArrayView rest = text;
    while (!rest.isEmpty()) {
        const qsizetype position = text.size() - rest.size();
        const char32_t character = TakeCharacter(rest);
        if (BuildsWords(character)) {
            begin = word.isEmpty() ? position : begin;
            end = text.size() - rest.size();
            AppendUtf8(word, LowerCase(character));
        } else if (IsSeparator(character) && !word.isEmpty()) {
            if (!visit(word, begin, end)) {
                return;
            }
            word.resize(0);
        }
    }
    if (!word.isEmpty()) {
        visit(word, begin, end);
    }
}

std::vector<QByteArray> WordsOf(QByteArrayView text) {
    std::vector<QByteArray> words;
    ForEachWord(text, [&](const QByteArray& word, qsizetype /*begin*/, qsizetype /*end*/) {
        words.push_back(word);
        return true;
    });
    return words;
}

std::vector<QByteArray> DistinctWordsOf(QByteArrayView text) {
    std::vector<QByteArray> words = WordsOf(text);
    std::sort(words.begin(), words.end());
    words.erase(std::unique(words.begin(), words.end()), words.end());
    return words;
}

}  // namespace kadrona::store
