#include "dialogs/base/Markdown.h"

#include <QTextCursor>
#include <QTextDocument>
#include <QTextFrame>
#include <QTextTable>

#include "controls/theme/Theme.h"

namespace kadrona::dialogs {

void ShowMarkdown(QTextDocument& document, const QString& text) {
    constexpr double Rule = 1;
    constexpr double Room = 4;
    document.setMarkdown(text);
    const QList<QTextFrame*> frames = document.rootFrame()->childFrames();
    for (QTextFrame* frame : frames) {
        if (auto* table = qobject_cast<QTextTable*>(frame)) {
            QTextTableFormat format = table->format();
            format.setBorderCollapse(true);
            format.setBorder(Rule);
            format.setBorderStyle(QTextFrameFormat::BorderStyle_Solid);
            format.setBorderBrush(controls::Colors().border);
            format.setCellSpacing(0);
            format.setCellPadding(Room);
            table->setFormat(format);
        }
    }
}

}  // namespace kadrona::dialogs
