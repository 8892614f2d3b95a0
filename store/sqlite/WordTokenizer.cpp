#include "store/sqlite/WordTokenizer.h"

#include <sqlite3.h>

#include "store/Words.h"

namespace kadrona::store {

namespace {

using TokenCallback = int (*)(void*, int, const char*, int, int, int);

int Tokenize(Fts5Tokenizer* /*tokenizer*/, void* context, int /*flags*/, const char* text,
             int length, TokenCallback report) {
    int result = SQLITE_OK;
    try {
        ForEachWord({text, length}, [&](const QByteArray& word, qsizetype begin, qsizetype end) {
            result = report(context, 0, word.constData(), static_cast<int>(word.size()),
                            static_cast<int>(begin), static_cast<int>(end));
            return result == SQLITE_OK;
        });
    } catch (const std::bad_alloc&) {
        return SQLITE_NOMEM;
    }
    return result;
}

/// There is nothing to keep, but the engine wants something that is not null.
int Create(void* /*context*/, const char** /*arguments*/, int /*count*/, Fts5Tokenizer** made) {
    static char nothing;
    *made = reinterpret_cast<Fts5Tokenizer*>(&nothing);
    return SQLITE_OK;
}

/// Null where SQLite was built without its full-text engine.
fts5_api* FullTextEngine(sqlite3* handle) {
    fts5_api* engine = nullptr;
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(handle, "SELECT fts5(?1)", -1, &statement, nullptr) == SQLITE_OK) {
        sqlite3_bind_pointer(statement, 1, &engine, "fts5_api_ptr", nullptr);
        sqlite3_step(statement);
    }
    sqlite3_finalize(statement);
    return engine;
}

}  // namespace

int RegisterWordTokenizer(sqlite3* handle) {
    fts5_api* engine = FullTextEngine(handle);
    if (engine == nullptr) {
        return SQLITE_ERROR;
    }
    fts5_tokenizer tokenizer{Create, [](Fts5Tokenizer*) {}, Tokenize};
    return engine->xCreateTokenizer(engine, WordTokenizerName, nullptr, &tokenizer, nullptr);
}

}  // namespace kadrona::store
