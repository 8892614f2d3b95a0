#pragma once

class QDialog;

namespace kadrona::controls {

/// How a modal dialog ended. Every dialog's ShowEx returns this; the toolkit's own codes differ.
enum class ModalResult : int { Ok = 1, Cancel = 2, Yes = 6, No = 7 };

/// Shows a dialog modally. It gives Ok where it is accepted, Cancel where it is rejected or closed,
/// Yes and No by `done(static_cast<int>(...))`.
ModalResult ShowModal(QDialog& dialog);

}  // namespace kadrona::controls
