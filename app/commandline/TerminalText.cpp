#include "app/commandline/TerminalText.h"

#include <exception>

#include "platform/FailureText.h"

namespace kadrona::app {

namespace {

bool Steers(QChar character) {
    switch (character.category()) {
        case QChar::Other_Control:
        case QChar::Other_Format:
        case QChar::Separator_Line:
        case QChar::Separator_Paragraph:
            return true;
        default:
            return false;
    }
}

QString Harmless(const QString& text, bool keepLines) {
    QString harmless;
    for (const QChar character : text) {
        if (Steers(character) && !(keepLines && character == u'\n')) {
            harmless += QStringLiteral("\\u%1").arg(character.unicode(), 4, 16, QChar(u'0'));
        } else {
            harmless += character;
        }
    }
    return harmless;
}

}  // namespace

QString HarmlessName(const QString& name) {
    return Harmless(name, false);
}

QString HarmlessText(const QString& text) {
    return Harmless(text, true);
}

QString FailureLine(const QString& photo) {
    QString reason = platform::FailureText(std::current_exception());
    return HarmlessName(photo + QStringLiteral(": ") + reason.replace(u'\n', u' '));
}

}  // namespace kadrona::app
