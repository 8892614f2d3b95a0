#include "core/archive/ArchiveSearch.h"

#include <QList>
#include <algorithm>

using namespace Qt::StringLiterals;

namespace kadrona::core {

namespace {

bool IsBlank(char byte) {
    return byte == ' ' || (byte >= '\t' && byte <= '\r') || byte == FieldEnd;
}

/// The general way, for texts with letters beyond Latin-1 or accents that stand by themselves.
QByteArray FoldedByUnicode(QByteArrayView text) {
    const QString composed = QString::fromUtf8(text).normalized(QString::NormalizationForm_C);
    return composed.toCaseFolded().replace(u'ß', u"ss"_s).toUtf8();
}

/// Whether all characters of UTF-8 text lie below U+0100: C2 and C3 lead those beyond ASCII.
bool IsLatin1(QByteArrayView text) {
    return std::all_of(text.begin(), text.end(),
                       [](char byte) { return static_cast<uchar>(byte) <= 0xc3; });
}

/// Folds such text in place: no folded form is longer or shorter.
void FoldLatin1(char* begin, const char* end) {
    for (char* at = begin; at < end; ++at) {
        if (*at >= 'A' && *at <= 'Z') {
            *at = static_cast<char>(*at + 0x20);
        }
        if (static_cast<uchar>(*at) < 0x80 || at + 1 == end) {
            continue;
        }
        const int code = (static_cast<uchar>(at[0]) & 3) << 6 | (at[1] & 0x3f);
        if (code >= 0xc0 && code <= 0xde && code != 0xd7) {
            at[1] = static_cast<char>(at[1] + 0x20);
        } else if (code == 0xdf) {  // sharp s
            at[0] = at[1] = 's';
        } else if (code == 0xb5) {  // the micro sign is a small Greek mu
            at[0] = '\xce';
            at[1] = '\xbc';
        }
        ++at;
    }
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

void AppendFolded(QByteArray& folded, QByteArrayView text) {
    const qsizetype before = folded.size();
    const bool latin1 = IsLatin1(text);
    folded.append(latin1 ? text : FoldedByUnicode(text));
    char* const begin = folded.data() + before;
    if (latin1) {
        FoldLatin1(begin, folded.constEnd());
    }
    folded.resize(JoinBlanks(begin, folded.constEnd()) - folded.constData());
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
