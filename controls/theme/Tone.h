#pragma once

class QWidget;

namespace kadrona::controls {

/// How a text is meant; it shows in a colour that is readable in either appearance.
enum class Tone { Plain, Muted, Good, Warning, Bad };

/// Cheap where the text has that tone already.
void SetTone(QWidget& text, Tone tone);

}  // namespace kadrona::controls
