#include "app/archive/ArchiveActions.h"

#include <QFileInfo>
#include <QScopeGuard>

#include "app/base/MainActions.h"
#include "app/base/PhotoSession.h"
#include "app/base/ViewActions.h"
#include "app/printing/PrintFlow.h"
#include "controls/messages/WaitCursor.h"
#include "core/Data.h"
#include "core/archive/ArchiveFiles.h"
#include "core/archive/ArchiveOriginals.h"
#include "core/base/UserInterface.h"
#include "core/settings/Settings.h"
#include "core/sheet/PaperSize.h"
#include "core/sheet/PhotoLoading.h"
#include "core/sheet/SheetTiling.h"
#include "core/templates/LayerPosition.h"
#include "core/templates/TemplateSize.h"
#include "dialogs/archive/ArchiveWindow.h"
#include "imaging/view/PaintingSuspension.h"

using namespace Qt::StringLiterals;

namespace kadrona::app {

using Choice = dialogs::TfmImgSearch::Choice;

ArchiveActions::ArchiveActions(PhotoSession& session, imaging::view::ImageView& view,
                               core::TData& data, const core::Settings& settings,
                               core::UserInterface& ui, dialogs::TfmImgSearch& archive,
                               MainActions& actions, ViewActions& viewActions, PrintFlow& printFlow)
    : session_(session),
      view_(view),
      data_(data),
      settings_(settings),
      ui_(ui),
      archive_(archive),
      actions_(actions),
      viewActions_(viewActions),
      printFlow_(printFlow) {
    actions.Connect(Action::SearchArchiv, this, [this] { acSearchArchivExecute(); });
    actions.Connect(Action::ArchivePhoto, this, [this] { acArchivePhotoExecute(); });
}

bool ArchiveActions::HasFolder() {
    const bool has = !settings_.ImageDestinationDir().isEmpty();
    if (!has) {
        ui_.ShowMessage(
            u"Sie haben kein Bilddatenbankverzeichnis in den Einstellungen angegeben"_s);
    }
    return has;
}

void ArchiveActions::acArchivePhotoExecute() {
    if (!HasFolder()) {
        return;
    }
    data_.ArchiveImage(session_.Image());
    if (!data_.CanArchive()) {
        Q_EMIT actions_.Succeeded(data_.Archiving().IsAway()
                                      ? u"Das Passbild wartet auf den Server des Bildarchivs."_s
                                      : u"Das Passbild ist jetzt im Bildarchiv."_s);
    }
}

void ArchiveActions::acSearchArchivExecute() {
    if (!HasFolder()) {
        return;
    }
    const QString folder = settings_.ImageDestinationDir();
    if (archive_.ShowEx(folder) != controls::ModalResult::Ok) {
        return;
    }
    if (archive_.Chosen() == Choice::Recut) {
        OpenForCutting(folder);
        return;
    }
    const QString path = data_.GetFileNameFromRecord(folder);
    if (!path.isEmpty()) {
        OpenForPrinting(path, archive_.Chosen() == Choice::Print);
    }
}

/// The template lies over the head where the one before did, as long as the photo has the size that
/// it had then: one that is not turned when it is opened.
void ArchiveActions::OpenForCutting(const QString& archiveFolder) {
    const auto original = core::ReadOriginal(data_.ArchiveDatabase(), data_.CurrentRecord());
    const QString path =
        original ? core::StoredFolderPath(archiveFolder,
                                          core::StoredPath(original->folder, original->name))
                 : QString();
    if (!original || !core::IsArchiveFolder(archiveFolder) ||
        !core::ForeignWay(path, archiveFolder).isEmpty() || !QFileInfo(path).isFile()) {
        ui_.ShowMessage(u"Das Original dieses Bildes konnte nicht gefunden werden!"_s);
        return;
    }
    const auto record = data_.Archive()->Read(data_.CurrentRecord());
    if (!openOriginal_(path)) {
        return;
    }
    data_.SetTags(record ? record->tags : QString());
    imaging::LayeredImage& image = session_.Image();
    if (!session_.HasTemplate() || image.Photo().Size() != original->photo) {
        return;
    }
    const QRect before = original->rectangle;
    QRect place(QPoint(), session_.TemplateRectangle().size().scaled(
                              image.Photo().Width(), before.height(), Qt::KeepAspectRatio));
    place.moveCenter(before.center());
    image.SetLayerRectangle(1, core::KeptInsidePhoto(place, image.Photo().Size()));
}

/// Printing is not triggered through its action, which is hidden while it runs by itself.
void ArchiveActions::OpenForPrinting(const QString& path, bool printNow) {
    MakeSheet(path);
    view_.setFocus();
    if ((printNow || settings_.PrintAfterCrop()) &&
        session_.CurrentStage() == PhotoSession::Stage::SheetMade) {
        printFlow_.acPrintImageExecute();
    }
}

/// What the photo of the current record was cut to, micrometres; empty where its template is gone.
QSize ArchiveActions::PrintedSize() const {
    const core::ArchiveTable* table = data_.Archive();
    const auto record = table != nullptr ? table->Read(data_.CurrentRecord()) : std::nullopt;
    for (int i = 0; record && i < data_.GetSchablonenList().size(); ++i) {
        const QString file = data_.GetMaskFileName(i);
        if (QFileInfo(file).fileName() == record->type) {
            return (core::TemplateSize(file) * core::MicrometresPerMillimetre).toSize();
        }
    }
    return {};
}

/// The archived photo has its border and its resolution already; it is only turned and repeated. A
/// paper that is chosen has its own gap and takes the photo without the border. False where there
/// is to be no sheet.
bool ArchiveActions::LayOut() {
    imaging::LayeredImage& image = session_.Image();
    core::SizedPhoto single;
    const auto choice = paperFor_([&] {
        single = core::WithoutBorder(image.Photo(), image.Resolution(), PrintedSize());
        return single.size;
    });
    if (choice && single.size.isEmpty()) {
        core::LayOutCopies(image, settings_, session_.LayoutIndex());
    } else if (choice) {
        image.ChangePhoto(core::CopiesOnPaper(single.photo, single.size, image.Resolution(),
                                              *choice, session_.LayoutIndex()));
    }
    return choice.has_value();
}

/// A file that is damaged must not leave actions enabled that need a photo.
void ArchiveActions::MakeSheet(const QString& path) {
    const imaging::view::PaintingSuspension suspension(view_);
    const controls::WaitCursor wait;
    imaging::LayeredImage& image = session_.Image();
    image.Clear();
    session_.SetFileName({});
    session_.SetTemplateName({});
    session_.SetStage(PhotoSession::Stage::NoPhoto);
    actions_.SetChecked(Action::ShowLayer, false);
    auto startAnew = qScopeGuard([this] { viewActions_.StartAnew(); });
    data_.SetCurrentFileName(QFileInfo(path).fileName());
    try {
        core::OpenPhoto(path, settings_, image);
        if (!LayOut()) {
            image.Clear();
            return;
        }
    } catch (...) {
        image.Clear();
        throw;
    }
    image.ClearUndo();
    session_.SetFileName(u"Archiv Image"_s);
    session_.SetStage(PhotoSession::Stage::SheetMade);
}

}  // namespace kadrona::app
