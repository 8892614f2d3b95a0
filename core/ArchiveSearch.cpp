#include "core/ArchiveSearch.h"

#include <QList>

namespace kadrona::core {

namespace {

bool IsBlank(char byte) {
    return byte == ' ' || (byte >= '\t' && byte <= '\r') || byte == FieldEnd;
}

/// The general way, for texts with letters beyond Latin-1 or accents that stand by themselves.
QByteArray FoldedByUnicode(QByteArrayView text) {
    return QString::fromUtf8(text).normalized(QString::NormalizationForm_C).toCaseFolded().toUtf8();
}

/// Whether all characters of UTF-8 text lie below U+0100 (bytes C2 and C3 lead those beyond ASCII),
/// without the one whose folded form is not the letter 0x20 behind it.
bool IsSimple(QByteArrayView text) {
    for (qsizetype i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<uchar>(text[i]);
        if (byte > 0xc3 || (byte == 0xc2 && text.sliced(i).startsWith("\xc2\xb5")) ||
            (byte == 0xc3 && text.sliced(i).startsWith("\xc3\x9f"))) {
            return false;
        }
    }
    return true;
}

/// Folds a byte of simple text; `lead` is the one before it.
char FoldedByte(char byte, char lead) {
    const auto code = static_cast<uchar>(byte);
    const bool ascii = code >= 'A' && code <= 'Z';
    const bool latin = lead == '\xc3' && code >= 0x80 && code <= 0x9e && code != 0x97;
    return static_cast<char>(ascii || latin ? code + 0x20 : code);
}

}  // namespace

void AppendFolded(QByteArray& folded, QByteArrayView text) {
    const bool simple = IsSimple(text);
    const QByteArray unicode = simple ? QByteArray() : FoldedByUnicode(text);
    char lead = FieldEnd;
    for (const char byte : simple ? text : QByteArrayView(unicode)) {
        if (!IsBlank(byte)) {
            folded.append(simple ? FoldedByte(byte, lead) : byte);
        } else if (!IsBlank(lead)) {
            folded.append(' ');
        }
        lead = byte;
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
        AppendFolded(folded, piece.toUtf8());
        if (!folded.isEmpty()) {
            added.pieces.emplace_back(folded);
        }
    }
    if (!added.pieces.empty()) {
        terms_.push_back(std::move(added));
    }
}

bool ArchiveSearch::Matches(QByteArrayView record) const {
    for (const Term& term : terms_) {
        if (Finds(term, record) == term.excluded) {
            return false;
        }
    }
    return true;
}

bool ArchiveSearch::Finds(const Term& term, QByteArrayView record) {
    const QByteArrayMatcher& first = term.pieces.front();
    qsizetype at = first.indexIn(record.data(), record.size());
    if (term.pieces.size() == 1 || at < 0) {
        return at >= 0;
    }
    while (at >= 0) {
        const qsizetype fieldEnd = record.indexOf(FieldEnd, at);
        qsizetype end = at + first.pattern().size();
        for (size_t i = 1; i < term.pieces.size() && end >= 0; ++i) {
            const QByteArrayMatcher& piece = term.pieces[i];
            at = piece.indexIn(record.data(), fieldEnd, end);
            end = at < 0 ? -1 : at + piece.pattern().size();
        }
        if (end >= 0) {
            return true;
        }
        // The earliest places of one field did not do; no later ones in it will.
        at = first.indexIn(record.data(), record.size(), fieldEnd);
    }
    return false;
}

}  // namespace kadrona::core
