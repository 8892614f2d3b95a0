#pragma once

#include <QString>

namespace kadrona::platform {

/// Foreign text (a name of a file, profile, template, print queue, ...) as it may be shown: in one
/// line and from left to right as the letters say. Control characters, line breaks, halves of
/// characters and the marks that turn the direction of writing become U+FFFD, so that a name can
/// neither pose as another one nor leave its place. Not for mark-up: what shows the text must take
/// it as plain text.
QString HarmlessLine(const QString& text);

/// The same for a text of several lines, which keeps its line breaks and tabs.
QString HarmlessText(const QString& text);

}  // namespace kadrona::platform
