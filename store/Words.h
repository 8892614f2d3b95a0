#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <functional>
#include <vector>

namespace kadrona::store {

/// The words of a UTF-8 text as the full-text index knows them, in lower case.
///
/// Digits, the letters a to z, the underscore and what the codes 128 to 254 of Windows-1252 stand
/// for build words. Control codes, blanks and * + ' , - / : ; < = > \ ` end them. Any other
/// character (a full stop, a bracket, an emoji, a byte that is not UTF-8) is left out without
/// ending the word around it: "07.03.2026" is the word "07032026", searched or found.
std::vector<QByteArray> WordsOf(QByteArrayView text);

/// The same words, each once, in the order of their bytes.
std::vector<QByteArray> DistinctWordsOf(QByteArrayView text);

/// Sees a word and where it stands in the text, in bytes; returns whether to go on.
using WordVisitor = std::function<bool(const QByteArray& word, qsizetype begin, qsizetype end)>;

/// Shows the words of a UTF-8 text one after the other.
void ForEachWord(QByteArrayView text, const WordVisitor& visit);

}  // namespace kadrona::store
