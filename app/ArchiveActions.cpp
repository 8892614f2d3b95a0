#include "app/ArchiveActions.h"

#include <QFileInfo>

#include "controls/fields/StatusPanels.h"
#include "controls/messages/WaitCursor.h"
#include "core/Data.h"
#include "core/base/UserInterface.h"
#include "core/settings/Settings.h"
#include "core/sheet/PhotoLoading.h"
#include "core/sheet/SheetTiling.h"
#include "dialogs/ArchiveWindow.h"
#include "imaging/view/PaintingSuspension.h"

using namespace Qt::StringLiterals;

namespace kadrona::app {

void ArchiveActions::acSearchArchivExecute() {
    const QString folder = window_.settings.ImageDestinationDir();
    if (folder.isEmpty()) {
        window_.ui.ShowMessage(
            u"Sie haben kein Bilddatenbankverzeichnis in den Einstellungen angegeben"_s);
        return;
    }
    if (window_.archive.ShowEx(folder) != controls::ModalResult::Ok) {
        return;
    }
    const QString path = window_.data.GetFileNameFromRecord(folder);
    if (!path.isEmpty()) {
        OpenForPrinting(path);
    }
}

void ArchiveActions::OpenForPrinting(const QString& path) {
    window_.view.Image().Clear();
    try {
        const imaging::view::PaintingSuspension suspension(window_.view);
        const controls::WaitCursor wait;
        MakeSheet(path);
    } catch (...) {
        // A file that is damaged must not leave actions enabled that need a photo.
        window_.view.Image().Clear();
        window_.photoReplaced(false);
        throw;
    }
    window_.photoReplaced(true);
    if (window_.settings.PrintAfterCrop()) {
        window_.print();
    }
}

/// The archived photo has its border and its resolution already; it is only turned and repeated.
void ArchiveActions::MakeSheet(const QString& path) {
    imaging::LayeredImage& image = window_.view.Image();
    window_.statusPanels.SetPath(u"Archiv Image"_s);
    window_.data.SetCurrentFileName(QFileInfo(path).fileName());
    core::OpenPhoto(path, window_.settings, image);
    core::LayOutCopies(image, window_.settings, window_.layoutIndex());
    image.ClearUndo();
}

}  // namespace kadrona::app
