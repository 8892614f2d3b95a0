#pragma once

class QString;
class QTextDocument;

namespace kadrona::dialogs {

/// Shows a text of ours; its tables have thin rules and room around their words.
void ShowMarkdown(QTextDocument& document, const QString& text);

}  // namespace kadrona::dialogs
