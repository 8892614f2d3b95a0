#include "app/opening/WatchActions.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QLocale>
#include <QTimer>

#include "app/base/AtRest.h"
#include "app/base/MainActions.h"
#include "app/base/SmallPicture.h"
#include "controls/fields/PhotoStrip.h"
#include "controls/messages/ActionGuard.h"
#include "core/base/FileDialogs.h"
#include "core/settings/Settings.h"
#include "core/settings/WatchedFolder.h"
#include "imaging/reading/ImageReader.h"
#include "platform/FolderWatch.h"

using namespace Qt::StringLiterals;

namespace kadrona::app {

namespace {

constexpr int FolderLookMilliseconds = 1000;
/// A folder of ten thousand files takes a tenth of a second: of the time at most a part goes there.
constexpr int LookShare = 20;
/// Whoever looks for older ones opens the folder.
constexpr int MostShown = 40;
/// The window waits for each picture, whatever somebody has put into the folder.
constexpr imaging::ReadOptions ForStrip{.maximumPixels = 60'000'000,
                                        .maximumShrunkPixels = 200'000'000,
                                        .shrink = 8,
                                        .patienceMilliseconds = 1000};

}  // namespace

WatchActions::WatchActions(controls::PhotoStrip& strip, const core::Settings& settings,
                           MainActions& actions, Open open)
    : strip_(strip),
      settings_(settings),
      actions_(actions),
      open_(std::move(open)),
      timer_(new QTimer(this)) {
    timer_->setInterval(FolderLookMilliseconds);
    connect(timer_, &QTimer::timeout, this, &WatchActions::Look);
    connect(&actions, &MainActions::Handled, this, &WatchActions::FollowSettings);
    connect(&strip, &controls::PhotoStrip::Chosen, this,
            [this](const QString& path) { open_(path); });
    FollowSettings();
}

WatchActions::~WatchActions() = default;

void WatchActions::FollowSettings() {
    if (unreadable_) {
        return;  // it was said once
    }
    QString folder;
    unreadable_ = true;
    controls::Guarded(strip_.window(), [&] {
        folder = core::WatchedFolder();
        unreadable_ = false;
    });
    if (folder == (watch_ ? watch_->Folder() : QString())) {
        return;
    }
    watch_ = folder.isEmpty() ? nullptr
                              : std::make_unique<platform::FolderWatch>(
                                    folder, core::OpenDialog::OfPhotos().Patterns());
    strip_.SetFiles({});
    if (watch_) {
        timer_->start();
        QTimer::singleShot(0, this, &WatchActions::Look);  // the window is shown first
    } else {
        timer_->stop();
    }
}

void WatchActions::Look() {
    if (!watch_) {
        return;
    }
    QElapsedTimer time;
    time.start();
    const bool wasCrowded = watch_->IsCrowded();
    const bool changed = watch_->Look();
    if (watch_->IsCrowded() && !wasCrowded) {
        Q_EMIT actions_.Succeeded(
            u"In „%1“ liegen über %2 Dateien; neue Fotos werden dort nicht gesucht."_s.arg(
                watch_->Folder(), QLocale(QLocale::German).toString(watch_->MostEntries)));
    }
    timer_->setInterval(std::max(FolderLookMilliseconds, LookShare * int(time.elapsed())));
    if (changed) {
        ShowFiles();
    }
    MakeOnePicture();
    OpenNewest();
}

/// A photo that filled the window is to be seen as a whole beside the strip too.
void WatchActions::ShowFiles() {
    const bool wasHidden = strip_.isHidden();
    strip_.SetFiles(watch_->Files().first(std::min<qsizetype>(watch_->Files().size(), MostShown)));
    if (strip_.isHidden() != wasHidden) {
        QTimer::singleShot(0, actions_[Action::ZoomFit], &QAction::trigger);
    }
}

/// One between two events, so that the window never waits for a whole card. What cannot be read may
/// not be complete after all; it is left out until it changes.
void WatchActions::MakeOnePicture() {
    const QString path = strip_.WithoutPicture();
    // While something else goes on under a window, the next look comes back to it.
    if (path.isEmpty() || QApplication::activeModalWidget() != nullptr) {
        return;
    }
    try {
        strip_.SetPicture(path, SmallPicture(imaging::ReadImageFile(path, ForStrip).pixels,
                                             strip_.devicePixelRatioF()));
        QTimer::singleShot(0, this, &WatchActions::MakeOnePicture);
    } catch (const imaging::ReadTooLong&) {
        strip_.SetNoPicture(path);  // the next look makes the next one
    } catch (const platform::Error&) {
        watch_->PassOver(path);
        ShowFiles();
    }
}

/// Never while the user is asked something or an action is under way.
void WatchActions::OpenNewest() {
    if (!IsAtRest()) {
        return;
    }
    const QStringList arrived = watch_->TakeArrived();
    if (settings_.OpenNewestPhoto() && !arrived.isEmpty()) {
        open_(arrived.first());
    }
}

}  // namespace kadrona::app
