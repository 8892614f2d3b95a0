#pragma once

struct sqlite3;

namespace kadrona::store {

/// The name under which a connection's full-text tables find the tokenizer, which makes the words
/// of store/Words.h.
inline constexpr const char* WordTokenizerName = "kadrona_words";

/// Makes the tokenizer known to the full-text engine of a connection. Returns SQLite's result code.
int RegisterWordTokenizer(sqlite3* handle);

}  // namespace kadrona::store
