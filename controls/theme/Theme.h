#pragma once

#include <QColor>
#include <QString>

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
    QColor onAccent;      ///< texts and ticks on `accent`
    QColor accentStrong;  ///< accent under a pressed button; further from `window` than `accent`
    QColor accentTint;    ///< under the pointer
    QColor accentWash;    ///< checked or pressed
    QColor alternate;     ///< every other row of a list
    QColor good;          ///< texts, as those of `warning` and `bad`: at least 4.5 : 1 on `window`
    QColor warning;
    QColor bad;
    QColor view;  ///< around the photo
    QColor desk;  ///< around a sheet of paper; `mutedText` is readable on it
};

enum class Appearance { Light, Dark };

/// The one that ApplyTheme was called with last.
Appearance PresentAppearance();

/// Colours of the present appearance.
const ThemeColors& Colors();

/// Ink on white paper, whatever the appearance.
inline constexpr QColor PaperInk(0x23, 0x26, 0x29);

/// The folder of the drawings for the present appearance, as a resource.
QString DrawingsFolder();

/// Gives the application its look: Fusion with a palette and a small style sheet, the system's font
/// at 10 points or more, and the icon theme. Call it before the first window, and whenever another
/// appearance is wanted: windows that are open take it over.
void ApplyTheme(QApplication& application, Appearance appearance = Appearance::Light);

}  // namespace kadrona::controls
