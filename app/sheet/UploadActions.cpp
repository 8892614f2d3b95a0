#include "app/sheet/UploadActions.h"

#include <QFileInfo>
#include <QLocale>

#include "app/base/MainActions.h"
#include "app/base/PhotoSession.h"
#include "core/Data.h"
#include "core/base/Product.h"
#include "core/base/UserInterface.h"
#include "core/check/TemplateTable.h"
#include "dialogs/UploadDialog.h"
#include "dialogs/settings/SettingsDialog.h"
#include "imaging/pixels/Cropping.h"
#include "platform/AtomicFile.h"

using namespace Qt::StringLiterals;

namespace kadrona::app {

UploadActions::UploadActions(PhotoSession& session, QWidget& window, core::TData& data,
                             dialogs::TEinstellungenFm& settings, core::UserInterface& ui,
                             MainActions& actions)
    : session_(session),
      data_(data),
      settings_(settings),
      ui_(ui),
      actions_(actions),
      dialog_(new dialogs::UploadDialog(&window)) {
    actions.Connect(Action::UploadFile, this, [this] { acUploadFileExecute(); });
}

void UploadActions::acUploadFileExecute() {
    if (confirm_ && !confirm_()) {
        return;
    }
    const core::TemplateRow figures = data_.LoadedFigures();
    imaging::WrittenMetadata metadata{core::SoftwareText.toByteArray()};
    if (settings_.TagsInUploadFiles()) {
        metadata.iptc = session_.Image().Iptc().Own();
    }
    const controls::ModalResult result = dialog_->ShowEx(
        {.cut = session_.Cut(),
         .printedWidth = {data_.TemplateCanvasSize().width()},
         .printedHeight = {data_.TemplateCanvasSize().height()},
         .figures = figures.upload,
         .metadata = metadata},
        figures.name, {settings_.UploadOwnFigures(), core::OwnUploadFigures(settings_)});
    const dialogs::UploadDialog::Choice chosen = dialog_->Chosen();
    if (result == controls::ModalResult::Ok) {
        settings_.KeepUploadFigures(chosen.own, chosen.figures);
        Save();
    }
}

void UploadActions::Save() {
    core::SaveDialog dialog = core::SaveDialog::OfPhotos();
    dialog.title = u"Datei für Online-Antrag speichern"_s;
    dialog.filter = u"JPEG-Grafikdatei (*.jpg)|*.jpg|JPEG-Grafikdatei (*.jpeg)|*.jpeg"_s;
    dialog.initialFolder = data_.SaveFolder();
    dialog.fileName = core::GetNameWithSuffix(data_.CurrentFile(), u"_online"_s);
    const auto path = ui_.AskForSaveFile(dialog);
    if (!path) {
        return;
    }
    const QString extension = QFileInfo(*path).suffix();
    if (!QStringList{u"jpg"_s, u"jpeg"_s}.contains(extension, Qt::CaseInsensitive)) {
        throw platform::Error(
            u"Die Datei ist ein JPEG; ihr Name muss auf „.jpg“ enden, nicht auf „.%1“."_s.arg(
                extension));
    }
    const QByteArray& file = dialog_->File().bytes;
    platform::WriteFileAtomically(*path, file);
    Q_EMIT actions_.Succeeded(u"Gespeichert: %1, %2 Bytes"_s.arg(
        QFileInfo(*path).fileName(), QLocale(QLocale::German).toString(file.size())));
}

}  // namespace kadrona::app
