#include "controls/messages/ModalResult.h"

#include <QDialog>

namespace kadrona::controls {

static_assert(static_cast<int>(ModalResult::Ok) == QDialog::Accepted);

ModalResult ShowModal(QDialog& dialog) {
    const int code = dialog.exec();
    return code == QDialog::Rejected ? ModalResult::Cancel : static_cast<ModalResult>(code);
}

}  // namespace kadrona::controls
