#include "printing/cups/service/GermanTexts.h"

#include <QFile>
#include <algorithm>
#include <cctype>

namespace kadrona::printing::cups {

namespace {

/// What stands behind "*de." or "*de_DE."; empty for any other line.
QByteArray GermanLine(const QByteArray& line) {
    for (const char* language : {"*de.", "*de_DE."}) {
        if (line.startsWith(language)) {
            return line.mid(static_cast<qsizetype>(qstrlen(language)));
        }
    }
    return {};
}

bool IsHexadecimal(QByteArrayView digits) {
    return !digits.isEmpty() && digits.size() % 2 == 0 &&
           std::all_of(digits.begin(), digits.end(), [](char digit) {
               return std::isxdigit(static_cast<unsigned char>(digit)) != 0;
           });
}

}  // namespace

QString DescriptionText(const QByteArray& written) {
    QByteArray text;
    qsizetype at = 0;
    while (at < written.size()) {
        const qsizetype end = written[at] == '<' ? written.indexOf('>', at) : -1;
        const QByteArray digits = end < 0 ? QByteArray() : written.mid(at + 1, end - at - 1);
        if (IsHexadecimal(digits)) {
            text += QByteArray::fromHex(digits);
            at = end + 1;
        } else {
            text += written[at++];
        }
    }
    return QString::fromUtf8(text).trimmed();
}

GermanTexts::GermanTexts(const QString& descriptionFile) {
    constexpr qint64 LongestLine = 4096;
    QFile file(descriptionFile);
    if (!file.open(QIODevice::ReadOnly)) {
        return;
    }
    while (!file.atEnd()) {
        // MediaType Glossy/Fotopapier, glänzend: ""
        const QByteArray line = GermanLine(file.readLine(LongestLine));
        const qsizetype slash = line.indexOf('/');
        const qsizetype colon = line.indexOf(':', slash);
        if (slash > 0 && colon > slash) {
            texts_.insert(line.left(slash).simplified(),
                          DescriptionText(line.mid(slash + 1, colon - slash - 1)));
        }
    }
}

QString GermanTexts::OfOption(const QByteArray& keyword) const {
    return OfChoice("Translation", keyword);
}

QString GermanTexts::OfChoice(const QByteArray& keyword, const QByteArray& choice) const {
    return texts_.value(keyword + ' ' + choice);
}

}  // namespace kadrona::printing::cups
