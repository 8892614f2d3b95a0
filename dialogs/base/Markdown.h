#pragma once

class QString;
class QTextEdit;

namespace kadrona::dialogs {

/// Shows a text of ours; its tables have thin rules and room around their words.
void ShowMarkdown(QTextEdit& view, const QString& text);

}  // namespace kadrona::dialogs
