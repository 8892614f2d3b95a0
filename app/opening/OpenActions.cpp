#include "app/opening/OpenActions.h"

#include <QBuffer>
#include <QClipboard>
#include <QDateTime>
#include <QFileInfo>
#include <QGuiApplication>
#include <QMimeData>
#include <functional>

#include "app/adjustments/RotateActions.h"
#include "app/base/MainActions.h"
#include "app/base/PhotoSession.h"
#include "app/base/PictureFileDialog.h"
#include "app/base/ViewActions.h"
#include "app/opening/DevelopingDisplay.h"
#include "controls/fields/Offer.h"
#include "controls/messages/ActionGuard.h"
#include "controls/messages/WaitCursor.h"
#include "core/Data.h"
#include "core/check/WordedRules.h"
#include "core/sheet/PhotoLoading.h"
#include "core/templates/TemplateSize.h"
#include "dialogs/TemplateChooser.h"
#include "dialogs/settings/ProfileChooser.h"
#include "dialogs/settings/SettingsDialog.h"
#include "imaging/view/PaintingSuspension.h"
#include "platform/FolderProbe.h"

using namespace Qt::StringLiterals;

namespace kadrona::app {

namespace {

const QString NothingCame = u"Das Bild ist vom anderen Programm nicht angekommen."_s;

QString PaperNotice(const core::TData& data, int index) {
    const QString file = QFileInfo(data.GetMaskFileName(index)).fileName();
    return core::PaperNotice(data.TemplateFolder(), file);
}

}  // namespace

/// What is to be opened.
struct OpenActions::Source {
    QString name;
    std::function<imaging::LoadedImage(imaging::ReadProgress& progress)> read;
    /// Makes it the data module's current file.
    std::function<void()> remember;
    /// The name is a file's path.
    bool isFile = false;
    /// Its reading may take long, and be given up.
    bool canGiveUp = false;
};

OpenActions::OpenActions(PhotoSession& session, imaging::view::ImageView& view, core::TData& data,
                         dialogs::TEinstellungenFm& settings, MainActions& actions,
                         ViewActions& viewActions, RotateActions& rotateActions)
    : session_(session),
      view_(view),
      data_(data),
      settings_(settings),
      actions_(actions),
      viewActions_(viewActions),
      templateChooser_(new dialogs::TSchabloneFm(settings, view.window())),
      profileChooser_(new dialogs::TProfileDlgFM(view.window())) {
    templateChooser_->SetRotationHandler(
        [&rotateActions](int degrees) { rotateActions.RotatePhoto(degrees); });
    templateChooser_->SetTemplates(data.GetSchablonenList(), [&data](int index) {
        return core::TemplateSize(data.GetMaskFileName(index));
    });
    templateChooser_->SetNotices([&data](int index) { return PaperNotice(data, index); });
    actions.Connect(Action::Open, this, [this] { acOpenExecute(); });
    actions.Connect(Action::Paste, this, [this] { acPasteExecute(); });
    actions.Connect(Action::OpenWithProfile, this, [this] { acOpenWithProfileExecute(); });
}

/// The chooser may still ask the settings while it goes.
OpenActions::~OpenActions() {
    delete templateChooser_;
}

void OpenActions::acOpenExecute() {
    settings_.AktivateProfileByName(core::StandardProfile, false);
    ChooseAndLoad();
}

void OpenActions::acOpenWithProfileExecute() {
    profileChooser_->SetProfiles(data_.GetProfileList());
    if (profileChooser_->ShowEx() != controls::ModalResult::Ok) {
        return;
    }
    settings_.AktivateProfileByName(profileChooser_->SelectedProfile(), false);
    ChooseAndLoad();
}

void OpenActions::ChooseAndLoad() {
    data_.OpenDialog().initialFolder = data_.CurrentFileFolder();
    if (const auto file = ChoosePicture(view_.window(), data_.OpenDialog())) {
        LoadImageFile(*file);
    }
}

void OpenActions::OpenFiles(const QStringList& paths) {
    controls::Guarded(view_.window(), [&] {
        settings_.AktivateProfileByName(core::StandardProfile, false);
        if (!paths.isEmpty()) {
            LoadImageFile(paths.first());
        }
    });
    Q_EMIT actions_.Handled();
}

void OpenActions::OpenPicture(const QByteArray& bytes, const QString& origin) {
    controls::Guarded(view_.window(), [&] {
        if (bytes.isEmpty()) {
            throw platform::Error(NothingCame);
        }
        settings_.AktivateProfileByName(core::StandardProfile, false);
        const QString name =
            origin + QDateTime::currentDateTime().toString(u" yyyy-MM-dd HH-mm-ss"_s);
        QBuffer picture;
        picture.setData(bytes);
        picture.open(QIODevice::ReadOnly);
        Load({.name = name,
              .read =
                  [&](imaging::ReadProgress& progress) {
                      return core::ReadPhotoBytes(bytes, name, settings_, &progress);
                  },
              .remember = [&] { data_.SetCurrentFileName(name); },
              .canGiveUp = imaging::CanGiveUp(picture)});
    });
    Q_EMIT actions_.Handled();
}

bool OpenActions::OpenOriginal(const QString& path) {
    settings_.AktivateProfileByName(core::StandardProfile, false);
    return Load({.name = path,
                 .read =
                     [&](imaging::ReadProgress& progress) {
                         return core::ReadPhoto(path, settings_, &progress);
                     },
                 .remember =
                     [&] {
                         data_.SetCurrentFileName(QFileInfo(path).fileName());
                         data_.SetOpenedFile(path);
                     },
                 .canGiveUp = imaging::CanGiveUpFile(path)});
}

/// A file manager copies the files' names, whatever else it adds.
void OpenActions::acPasteExecute() {
    const QMimeData* data = QGuiApplication::clipboard()->mimeData();
    // Who owns it may never answer: the toolkit waits five seconds each time that it asks.
    if (data == nullptr || data->formats().isEmpty()) {
        throw platform::Error(u"Die Zwischenablage ist leer."_s);
    }
    const controls::Offer offer = controls::ReadOffer(*data);
    if (!offer.files.isEmpty()) {
        OpenFiles(offer.files);
    } else if (offer.hasPicture) {
        OpenPicture(controls::PictureIn(offer, *data), u"Zwischenablage"_s);
    } else if (offer.isSilent) {
        throw platform::Error(NothingCame);
    } else {
        throw platform::Error(u"In der Zwischenablage ist kein Bild."_s);
    }
}

void OpenActions::LoadImageFile(const QString& fileName) {
    const QString folder = QFileInfo(fileName).path();
    if (platform::LookAtFolder(folder) == platform::FolderState::Silent) {
        throw platform::FileError(
            u"Der Ordner „%1“ antwortet nicht. Das Foto wird nicht geöffnet."_s.arg(folder));
    }
    Load({.name = fileName,
          .read =
              [&](imaging::ReadProgress& progress) {
                  return core::ReadPhoto(fileName, settings_, &progress);
              },
          .remember = [&] { data_.SetCurrentFile(fileName); },
          .isFile = true,
          .canGiveUp = imaging::CanGiveUpFile(fileName)});
}

/// Where the photo cannot be read, what is enabled is as after a successful load.
bool OpenActions::Load(const Source& source) {
    const Outcome outcome = ReadPhoto(source);
    if (outcome == Outcome::Cancelled) {
        return false;
    }
    session_.SetStage(PhotoSession::Stage::PhotoOpen);
    actions_.SetChecked(Action::ShowLayer, false);
    if (outcome == Outcome::Failed) {
        return false;
    }
    if (source.isFile) {
        Q_EMIT PhotoRead(source.name);
    }
    controls::Guarded(view_.window(), [this] {
        const controls::WaitCursor wait;
        core::BalancePhoto(settings_, session_.Image());
    });
    ChooseTemplate();
    data_.LoadLayer(session_.Image());
    view_.setFocus();
    return true;
}

/// Brings the photo into layer 0 and shows it; a failure is shown and leaves the image empty. One
/// that can be given up takes the place and the name of the photo before when it is read, which
/// stays with all that is known of it where the user gives up.
OpenActions::Outcome OpenActions::ReadPhoto(const Source& source) {
    const imaging::view::PaintingSuspension suspension(view_);
    Outcome outcome = Outcome::Failed;
    controls::Guarded(view_.window(), [&] {
        const controls::WaitCursor wait;
        if (!source.canGiveUp) {
            LeavePhotoBefore(source);
        }
        try {
            DevelopingDisplay display(view_.isVisible() ? view_ : *view_.parentWidget());
            imaging::LoadedImage photo = source.read(display);
            if (source.canGiveUp) {
                LeavePhotoBefore(source);
            }
            core::ShowPhoto(std::move(photo), session_.Image());
            outcome = Outcome::Read;
        } catch (const imaging::ReadCancelled&) {
            // The file may have become another one since it was looked at.
            outcome = source.canGiveUp ? Outcome::Cancelled : Outcome::Failed;
        } catch (...) {
            LeavePhotoBefore(source);
            throw;
        }
    });
    if (outcome != Outcome::Cancelled) {
        viewActions_.StartAnew();
        view_.FitUntilMoved();
    }
    return outcome;
}

void OpenActions::LeavePhotoBefore(const Source& source) {
    source.remember();
    session_.Image().Clear();
    session_.SetFileName(source.name);
    session_.SetTemplateName({});
}

/// A template that cannot be read is reported and leaves the photo without one. Where the chooser
/// takes one by itself nobody has read there that paper is no longer taken.
void OpenActions::ChooseTemplate() {
    if (templateChooser_->ShowEx() != controls::ModalResult::Ok) {
        return;
    }
    controls::Guarded(view_.window(), [this] {
        const int row = templateChooser_->SelectedTemplate();
        if (data_.MaskLoadFromFile(data_.GetMaskFileName(row))) {
            session_.SetTemplateName(data_.GetSchablonenList().value(row));
            data_.DrawMask(session_.Image());
            if (!PaperNotice(data_, row).isEmpty()) {
                Q_EMIT actions_.Succeeded(u"Auf Papier nicht mehr angenommen"_s);
            }
        }
    });
}

}  // namespace kadrona::app
