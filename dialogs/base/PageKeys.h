#pragma once

class QTabWidget;
class QWidget;

namespace kadrona::dialogs {

/// Ctrl+Tab and Ctrl+Shift+Tab turn the pages wherever in the window the focus is; a combo box or a
/// field would keep these keys from them.
void TurnPagesByKeys(QTabWidget& pages, QWidget& window);

}  // namespace kadrona::dialogs
