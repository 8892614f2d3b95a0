#include "platform/IniLine.h"

namespace kadrona::platform {

QStringView Trimmed(QStringView text) {
    const auto isBlank = [](QChar unit) { return unit == u' ' || unit == u'\t'; };
    while (!text.isEmpty() && isBlank(text.front())) {
        text = text.sliced(1);
    }
    while (!text.isEmpty() && isBlank(text.back())) {
        text.chop(1);
    }
    return text;
}

QStringView FirstLine(QStringView text) {
    qsizetype length = 0;
    while (length < text.size() && text[length] != u'\n' && text[length] != u'\r') {
        ++length;
    }
    const bool isPair = text.sliced(length).startsWith(u"\r\n");
    return text.left(length + (isPair ? 2 : 1));
}

QStringView WithoutEnd(QStringView line) {
    while (line.endsWith(u'\n') || line.endsWith(u'\r')) {
        line.chop(1);
    }
    return line;
}

bool IsBlank(QStringView line) {
    return Trimmed(WithoutEnd(line)).isEmpty();
}

bool IsComment(QStringView line) {
    const QStringView trimmed = Trimmed(line);
    return trimmed.startsWith(u';') || trimmed.startsWith(u'#');
}

QStringView HeaderName(QStringView line) {
    const QStringView trimmed = Trimmed(line);
    const qsizetype end = trimmed.startsWith(u'[') ? trimmed.indexOf(u']') : -1;
    return end > 0 ? Trimmed(trimmed.sliced(1, end - 1)) : QStringView();
}

QStringView KeyName(QStringView line) {
    const QStringView trimmed = Trimmed(line);
    const qsizetype equals = trimmed.indexOf(u'=');
    const bool isOther = equals < 0 || trimmed.startsWith(u'[') || IsComment(trimmed);
    return isOther ? QStringView() : Trimmed(trimmed.left(equals));
}

QStringView ValueText(QStringView line) {
    return Trimmed(WithoutEnd(line.sliced(line.indexOf(u'=') + 1)));
}

QString CaseFolded(QStringView text) {
    QString folded = text.toString();
    for (qsizetype i = 0; i < folded.size(); ++i) {
        if (folded[i].isHighSurrogate() && i + 1 < folded.size() &&
            folded[i + 1].isLowSurrogate()) {
            const char32_t character =
                QChar::toCaseFolded(QChar::surrogateToUcs4(folded[i], folded[i + 1]));
            folded[i] = QChar::highSurrogate(character);
            folded[++i] = QChar::lowSurrogate(character);
        } else {
            folded[i] = folded[i].toCaseFolded();
        }
    }
    return folded;
}

}  // namespace kadrona::platform
