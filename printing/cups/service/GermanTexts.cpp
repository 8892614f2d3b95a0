#include "printing/cups/service/GermanTexts.h"

#include <QFile>

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

}  // namespace

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
                          QString::fromUtf8(line.mid(slash + 1, colon - slash - 1)).trimmed());
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
