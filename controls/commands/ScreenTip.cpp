#include "controls/commands/ScreenTip.h"

#include <QAction>
#include <QFontMetrics>
#include <QStringList>
#include <QToolTip>
#include <QVariant>
#include <QWidget>
#include <algorithm>

#include "controls/theme/Theme.h"
#include "platform/HarmlessText.h"

using namespace Qt::StringLiterals;

namespace kadrona::controls {
namespace {

constexpr int MaximumTextWidth = 300;
const char* const HeaderProperty = "screenTipHeader";
const char* const TextProperty = "screenTipText";

// Rich text breaks lines at blanks only inside a table of fixed width; short texts get no such
// table, so that their tip is no wider than they are.
QString WrappedText(const QString& text) {
    const QFontMetrics metrics(QToolTip::font());
    const QStringList lines = text.split(u'\n');
    int widest = 0;
    for (const QString& line : lines) {
        widest = std::max(widest, metrics.horizontalAdvance(line));
    }
    const QString html = text.toHtmlEscaped().replace(u'\n', u"<br>"_s);
    if (widest <= MaximumTextWidth) {
        return u"<div style='white-space:nowrap'>%1</div>"_s.arg(html);
    }
    return u"<table width='%1' cellspacing='0' cellpadding='0'><tr><td>%2</td></tr></table>"_s.arg(
        QString::number(MaximumTextWidth), html);
}

QString HeaderLine(const QString& header, const QString& shortcut) {
    QString line = u"<b>%1</b>"_s.arg(header.toHtmlEscaped());
    if (!shortcut.isEmpty()) {
        line += u"&nbsp;&nbsp;<span style='color:%1'>%2</span>"_s.arg(Colors().mutedText.name(),
                                                                      shortcut.toHtmlEscaped());
    }
    return u"<div style='white-space:nowrap'>%1</div>"_s.arg(line);
}

QString Tip(const QString& header, const QString& text, const QString& shortcut = {}) {
    return HeaderLine(header, shortcut) +
           (text.isEmpty() ? QString()
                           : u"<div style='margin-top:4px'></div>"_s + WrappedText(text));
}

}  // namespace

void SetScreenTip(QAction* action, const QString& header, const QString& text) {
    action->setProperty(HeaderProperty, header);
    action->setProperty(TextProperty, text);
    // What shows the tip asks ScreenTipOf; this is what is read out.
    action->setToolTip(header + u'\n' + text);
}

void SetScreenTip(QWidget* widget, const QString& header, const QString& text) {
    widget->setToolTip(Tip(header, text));
    if (widget->accessibleDescription().isEmpty()) {
        widget->setAccessibleDescription(text);
    }
}

QString PlainTip(const QString& text) {
    return text.isEmpty() ? QString()
                          : u"<p style='white-space:pre'>%1</p>"_s.arg(
                                platform::HarmlessLine(text).toHtmlEscaped());
}

QString ScreenTipOf(const QAction& action) {
    const QString shortcut = action.shortcut().toString(QKeySequence::NativeText);
    const QVariant header = action.property(HeaderProperty);
    if (header.isValid()) {
        return Tip(header.toString(), action.property(TextProperty).toString(), shortcut);
    }
    return HeaderLine(action.toolTip(), shortcut);
}

}  // namespace kadrona::controls
