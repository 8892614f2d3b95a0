#include "store/postgres/Placeholders.h"

namespace kadrona::store {

NumberedStatement NumberParameters(const QByteArray& sql) {
    NumberedStatement numbered;
    char quote = 0;
    for (const char byte : sql) {
        if (quote != 0) {
            quote = byte == quote ? '\0' : quote;  // a doubled one closes and opens again
        } else if (byte == '\'' || byte == '"') {
            quote = byte;
        } else if (byte == '?') {
            numbered.sql += '$' + QByteArray::number(++numbered.parameters);
            continue;
        }
        numbered.sql += byte;
    }
    return numbered;
}

}  // namespace kadrona::store
