#include "store/FullTextIndex.h"

#include <QRegularExpression>

#include "store/StoreError.h"
#include "store/Words.h"

namespace kadrona::store {

using namespace Qt::StringLiterals;

std::vector<qint64> FullTextIndex::RowsWith(const QString& text) const {
    const std::vector<QByteArray> words = DistinctWordsOf(text.toUtf8());
    return words.empty() ? std::vector<qint64>() : database_.RowsWith(name_, words);
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
