#pragma once

#include <QColor>

class QApplication;

namespace kadrona::controls {

/// The few colours that everything is drawn with; the palette and the style sheet are made of them.
struct ThemeColors {
    QColor window;   ///< behind the controls
    QColor content;  ///< fields, lists, menus
    QColor text;
    QColor mutedText;  ///< secondary texts; at least 4.5 : 1 on `window`
    QColor disabledText;
    QColor border;
    QColor strongBorder;  ///< of controls that can be edited
    QColor accent;        ///< the one colour: selection, focus, the main button
    QColor accentDark;    ///< accent under a pressed button
    QColor accentTint;    ///< under the pointer
    QColor accentWash;    ///< checked or pressed
};

/// Colours of the one light theme.
const ThemeColors& Colors();

/// Gives the application its look: Fusion with a light palette and a small style sheet, the
/// system's font at 10 points or more, and the icon theme. Call it once, before the first window.
void ApplyTheme(QApplication& application);

}  // namespace kadrona::controls
