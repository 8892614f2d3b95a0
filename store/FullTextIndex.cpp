#include "store/FullTextIndex.h"

#include <QRegularExpression>

#include "store/Statement.h"
#include "store/StoreError.h"
#include "store/WordTokenizer.h"

namespace kadrona::store {

using namespace Qt::StringLiterals;

QString FullTextIndex::Creation(const QString& name) {
    // "detail = none": where in a text a word stands is of no interest.
    return uR"(CREATE VIRTUAL TABLE IF NOT EXISTS "%1" USING fts5(
        "Text", tokenize = '%2', detail = none))"_s.arg(name,
                                                        QString::fromLatin1(WordTokenizerName));
}

void FullTextIndex::Set(qint64 row, const QString& text) {
    Statement(database_,
              uR"(INSERT OR REPLACE INTO "%1" (rowid, "Text") VALUES (?, ?))"_s.arg(name_))
        .Bind(1, row)
        .Bind(2, text)
        .Step();
}

std::vector<qint64> FullTextIndex::RowsWith(const QString& text) const {
    QStringList words;
    for (const QByteArray& word : WordsOf(text.toUtf8())) {
        words.append(u'"' + QString::fromUtf8(word) + u'"');
    }
    std::vector<qint64> rows;
    if (words.isEmpty()) {
        return rows;
    }
    words.removeDuplicates();
    Statement select(database_,
                     uR"(SELECT rowid FROM "%1" WHERE "%1" MATCH ? ORDER BY rowid)"_s.arg(name_));
    select.Bind(1, words.join(u" AND "));
    while (select.Step()) {
        rows.push_back(select.Integer(0));
    }
    return rows;
}

TextSearch ParseTextSearch(const QString& expression) {
    static const QRegularExpression pattern(
        uR"re(^\s*TEXTSEARCH\s*\(\s*'((?:[^']++|'')*+)'\s*IN\s+"?(\w+)"?\s*\)\s*$)re"_s,
        QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch match = pattern.match(expression);
    if (!match.hasMatch()) {
        throw StoreError(u"Der Filter „%1“ ist nicht verständlich."_s.arg(expression.left(100)));
    }
    return {match.captured(1).replace(u"''"_s, u"'"_s), match.captured(2)};
}

}  // namespace kadrona::store
