#include "controls/theme/Tone.h"

#include <QStyle>
#include <QVariant>
#include <QWidget>

using namespace Qt::StringLiterals;

namespace kadrona::controls {

namespace {

/// As the style sheet names them.
QString NameOf(Tone tone) {
    switch (tone) {
        case Tone::Muted:
            return u"muted"_s;
        case Tone::Good:
            return u"good"_s;
        case Tone::Warning:
            return u"warning"_s;
        case Tone::Bad:
            return u"bad"_s;
        case Tone::Plain:
            break;
    }
    return {};
}

}  // namespace

void SetTone(QWidget& text, Tone tone) {
    const QString name = NameOf(tone);
    if (text.property("tone").toString() == name) {
        return;
    }
    text.setProperty("tone", name);
    text.style()->unpolish(&text);
    text.style()->polish(&text);
}

}  // namespace kadrona::controls
