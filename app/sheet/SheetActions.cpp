#include "app/sheet/SheetActions.h"

#include <QDir>
#include <QFileInfo>
#include <QWidget>

#include "app/base/MainActions.h"
#include "app/base/PhotoSession.h"
#include "app/base/PictureFileDialog.h"
#include "app/base/ViewActions.h"
#include "app/printing/PrintFlow.h"
#include "controls/messages/ActionGuard.h"
#include "controls/messages/MessageBoxes.h"
#include "controls/messages/WaitCursor.h"
#include "core/Data.h"
#include "core/base/UserInterface.h"
#include "core/settings/Settings.h"
#include "core/sheet/PaperSize.h"
#include "core/sheet/PhotoLoading.h"
#include "core/sheet/SheetLayout.h"
#include "platform/Error.h"
#include "platform/Paths.h"

using namespace Qt::StringLiterals;

namespace kadrona::app {

SheetActions::SheetActions(PhotoSession& session, QWidget& window, core::TData& data,
                           const core::Settings& settings, core::UserInterface& ui,
                           MainActions& actions, ViewActions& viewActions, PrintFlow& printFlow)
    : session_(session),
      window_(window),
      data_(data),
      settings_(settings),
      ui_(ui),
      actions_(actions),
      viewActions_(viewActions),
      printFlow_(printFlow) {
    actions.Connect(Action::Crop, this, [this] { acCropExecute(); });
    actions.Connect(Action::Save, this, [this] { acSaveExecute(); });
    actions.Connect(Action::SaveImageFast, this, [this] { acSaveImageFastExecute(); });
}

void SheetActions::acCropExecute() {
    imaging::LayeredImage& image = session_.Image();
    if (actions_.IsChecked(Action::Beauty) || !session_.HasTemplate()) {
        return;
    }
    if (confirm_ && !confirm_()) {
        return;
    }
    const imaging::Pixels cut = session_.Cut();
    image.SetCurrentLayer(0);
    if (core::AverageBrightness(image.Photo()) > core::BrightestAccepted) {
        ui_.ShowMessage(core::TooBrightWarning);
    }
    {
        const controls::WaitCursor wait;
        data_.CropImage(image, session_.LayoutIndex());
    }
    image.ClearUndo();
    session_.KeepCut(cut);
    session_.SetStage(PhotoSession::Stage::SheetMade);
    viewActions_.StartAnew();
    if (settings_.PrintAfterCrop()) {
        // A printer that fails must not keep the photos from being saved.
        controls::Guarded(&window_, [this] { printFlow_.acPrintImageExecute(); });
    }
    const QString remark = remark_ ? remark_() : QString();
    if (!remark.isEmpty()) {
        Q_EMIT actions_.Succeeded(remark);
    }
    // As for the action itself: a sheet of several photos is not saved quickly.
    if (settings_.ImageAutoSave2() && session_.LayoutIndex() == core::SinglePhotoLayout) {
        SaveFast(remark);
    }
}

void SheetActions::acSaveExecute() {
    const controls::WaitCursor wait;
    TellSaved(data_.SaveImage(session_.Image(), data_.SaveFolder(), {}, false));
}

void SheetActions::acSaveImageFastExecute() {
    SaveFast({});
}

void SheetActions::SaveFast(const QString& remark) {
    const QString fileName = data_.GetFileName(settings_.FileNameEd(), settings_.FileVarCombo(),
                                               settings_.FileTypCombo());
    if (QDir::cleanPath(fileName).startsWith(u"../"_s)) {
        throw platform::Error(
            u"Der Dateiname „%1“ der Einstellungen führt aus dem Ordner zum Speichern hinaus."_s
                .arg(settings_.FileNameEd()));
    }
    if (!MayShrinkTheSheet()) {
        return;
    }
    const QString folder = FolderToSaveIn();
    if (folder.isEmpty()) {
        return;
    }
    const QString path =
        PathToSaveUnder(platform::JoinPath(platform::WithoutTrailingSeparator(folder), fileName));
    if (path.isEmpty()) {
        return;
    }
    const controls::WaitCursor wait;
    const QFileInfo file(path);
    TellSaved(
        data_.SaveImage(session_.Image(), file.path(), file.fileName(), settings_.ScaleImageCk()),
        remark);
    savedPhotos_.insert(path, data_.CurrentFile());
}

/// With its size on paper, which is a whole sheet's where paper is chosen. The remark, which the
/// text takes the place of, goes with it.
void SheetActions::TellSaved(const core::PhotoSaver::Saved& saved, const QString& remark) {
    if (saved.path.isEmpty()) {
        return;
    }
    QString text = u"Gespeichert: "_s + QFileInfo(saved.path).fileName();
    if (saved.resolution.value > 0) {
        constexpr int Tenth = core::MicrometresPerMillimetre / 10;
        const QSizeF inches = QSizeF(saved.size) / saved.resolution.value;
        const QSizeF tenths = inches * core::MicrometresPerInch / Tenth;
        text += u", "_s + core::SizeText(tenths.toSize() * Tenth);
    }
    Q_EMIT actions_.Succeeded(remark.isEmpty() ? text : text + u". "_s + remark);
}

/// Without a folder the photo would go to the root of the file system.
QString SheetActions::FolderToSaveIn() {
    QString folder = data_.SaveFolder();
    if (QFileInfo(folder).isDir()) {
        return folder;
    }
    const QString wanted = settings_.ImageSaveDir();
    const QString text = wanted.isEmpty()
                             ? u"In den Einstellungen ist kein Ordner zum Speichern angegeben."_s
                             : u"Den Ordner „%1“ gibt es nicht."_s.arg(wanted);
    return controls::AskYesNo(&window_, text + u"\n\nMöchten Sie einen Ordner wählen?"_s,
                              controls::Severity::Warning)
               ? ChooseFolder(&window_, u"Ordner zum Speichern"_s)
               : QString();
}

/// The number of pictures may have been changed after the sheet was made.
bool SheetActions::MayShrinkTheSheet() {
    const imaging::Pixels& sheet = session_.Image().Photo();
    const int pictures = sheet.PhotoCount();
    const bool isSheet = pictures > 1 || sheet.Arranged() != nullptr;
    const QString what = pictures == 1 ? u"Das Blatt ist ein ganzes Papier"_s
                                       : u"Das Blatt hat %1 Bilder"_s.arg(pictures);
    return !isSheet || !settings_.ScaleImageCk() ||
           controls::AskYesNo(&window_,
                              what +
                                  u" und würde als Ganzes auf die Größe eines einzigen Bildes "
                                  u"verkleinert.\n\nTrotzdem speichern?"_s,
                              controls::Severity::Warning);
}

/// A generated name replaces its own file without asking, as it is meant to, but nothing that is
/// more than that. Empty where nothing else is lost.
QString SheetActions::LostByReplacing(const QString& path) const {
    const QString file = QFileInfo(path).canonicalFilePath();
    const QString savedFrom = savedPhotos_.value(path);
    if (file.isEmpty() || savedFrom == data_.CurrentFile()) {
        return {};
    }
    if (file == QFileInfo(data_.CurrentFile()).canonicalFilePath()) {
        return u"Die Datei „%1“ ist das geöffnete Foto selbst."_s.arg(path);
    }
    const QString archive = QFileInfo(settings_.ImageDestinationDir()).canonicalFilePath();
    if (!archive.isEmpty() && file.startsWith(platform::JoinPath(archive, {}))) {
        return u"Die Datei „%1“ gehört zum Bildarchiv."_s.arg(path);
    }
    return savedFrom.isEmpty() ? QString()
                               : u"In der Datei „%1“ steht das Passbild aus „%2“."_s.arg(
                                     path, QFileInfo(savedFrom).fileName());
}

QString SheetActions::PathToSaveUnder(const QString& path) {
    const QString lost = LostByReplacing(path);
    if (lost.isEmpty() ||
        controls::AskYesNo(&window_,
                           lost + u"\n\nMöchten Sie sie ersetzen? Bei „Nein“ wählen Sie einen "
                                  u"anderen Namen."_s,
                           controls::Severity::Warning)) {
        return path;
    }
    core::SaveDialog dialog = core::SaveDialog::OfPhotos();
    dialog.initialFolder = QFileInfo(path).path();
    dialog.fileName = QFileInfo(data_.CurrentFile()).completeBaseName();
    return ui_.AskForSaveFile(dialog).value_or(QString());
}

}  // namespace kadrona::app
