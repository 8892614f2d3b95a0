#include "dialogs/base/Markdown.h"

#include <QTextDocument>
#include <QTextEdit>
#include <QTextFrame>
#include <QTextTable>

#include "controls/theme/Theme.h"

namespace kadrona::dialogs {

void ShowMarkdown(QTextEdit& view, const QString& text) {
    constexpr double Rule = 1;
    constexpr double Room = 4;
    constexpr double Width = 99;  // percent: its rules stand beside it
    view.setMarkdown(text);
    const QList<QTextFrame*> frames = view.document()->rootFrame()->childFrames();
    for (QTextFrame* frame : frames) {
        if (auto* table = qobject_cast<QTextTable*>(frame)) {
            QTextTableFormat format = table->format();
            format.setBorderCollapse(true);
            format.setBorder(Rule);
            format.setBorderStyle(QTextFrameFormat::BorderStyle_Solid);
            format.setBorderBrush(controls::Colors().border);
            format.setWidth(QTextLength(QTextLength::PercentageLength, Width));
            format.setCellSpacing(0);
            format.setCellPadding(Room);
            table->setFormat(format);
        }
    }
}

}  // namespace kadrona::dialogs
