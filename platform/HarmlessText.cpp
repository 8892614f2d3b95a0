#include "platform/HarmlessText.h"

namespace kadrona::platform {
namespace {

bool TurnsDirection(char16_t unit) {
    return (unit >= 0x202a && unit <= 0x202e) || (unit >= 0x2066 && unit <= 0x2069);
}

bool IsHalf(QStringView text, qsizetype place) {
    const QChar unit = text[place];
    if (unit.isHighSurrogate()) {
        return place + 1 == text.size() || !text[place + 1].isLowSurrogate();
    }
    return unit.isLowSurrogate() && (place == 0 || !text[place - 1].isHighSurrogate());
}

bool IsHarmful(QStringView text, qsizetype place) {
    const QChar unit = text[place];
    switch (unit.category()) {
        case QChar::Other_Control:
        case QChar::Separator_Line:
        case QChar::Separator_Paragraph:
            return true;
        case QChar::Other_Format:
            return TurnsDirection(unit.unicode());
        case QChar::Other_Surrogate:
            return IsHalf(text, place);
        default:
            return false;
    }
}

/// Of a text of several lines.
bool IsLayout(QStringView text, qsizetype place) {
    const QChar unit = text[place];
    const bool endsLine = unit == u'\r' && place + 1 < text.size() && text[place + 1] == u'\n';
    return unit == u'\n' || unit == u'\t' || endsLine;
}

template <typename IsKept>
QString Cleaned(const QString& text, IsKept isKept) {
    QString cleaned = text;  // shared until something has to go
    for (qsizetype place = 0; place < text.size(); ++place) {
        if (IsHarmful(text, place) && !isKept(text, place)) {
            cleaned[place] = QChar::ReplacementCharacter;
        }
    }
    return cleaned;
}

}  // namespace

QString HarmlessLine(const QString& text) {
    return Cleaned(text, [](QStringView, qsizetype) { return false; });
}

QString HarmlessText(const QString& text) {
    return Cleaned(text, IsLayout);
}

}  // namespace kadrona::platform
