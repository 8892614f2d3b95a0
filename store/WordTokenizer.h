#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <vector>

struct sqlite3;

namespace kadrona::store {

/// The words of a UTF-8 text as the full-text index knows them, in lower case.
///
/// Digits, the letters a to z, the underscore and what the codes 128 to 254 of Windows-1252 stand
/// for build words. Control codes, blanks and * + ' , - / : ; < = > \ ` end them. Any other
/// character (a full stop, a bracket, an emoji, a byte that is not UTF-8) is left out without
/// ending the word around it: "07.03.2026" is the word "07032026", searched or found.
std::vector<QByteArray> WordsOf(QByteArrayView text);

/// The name under which a connection's full-text tables find the tokenizer.
inline constexpr const char* WordTokenizerName = "kadrona_words";

/// Makes the tokenizer known to the full-text engine of a connection. Returns SQLite's result code.
int RegisterWordTokenizer(sqlite3* handle);

}  // namespace kadrona::store
