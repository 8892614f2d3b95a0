#pragma once

#include <QString>

class QAction;
class QWidget;

namespace kadrona::controls {

/// A tool tip of a bold heading over a text, wrapped at a comfortable width; line breaks in `text`
/// are kept. Both are plain text; so is what assistive technology is told.
void SetScreenTip(QAction* action, const QString& header, const QString& text);
void SetScreenTip(QWidget* widget, const QString& header, const QString& text);

/// A tool tip that shows foreign text (a name, a path) as it is, in one line and harmless. A tool
/// tip is rich text as soon as it looks like it, so no foreign text goes into one without this.
QString PlainTip(const QString& text);

/// What a button of that action shows: the screen tip if it was given one, else its tool tip or
/// caption; the shortcut stands behind the first line. Rich text.
QString ScreenTipOf(const QAction& action);

}  // namespace kadrona::controls
