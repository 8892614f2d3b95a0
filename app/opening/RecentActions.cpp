#include "app/opening/RecentActions.h"

#include <QBuffer>
#include <QFileInfo>
#include <QMenu>
#include <utility>

#include "app/base/PhotoSession.h"
#include "app/base/PictureFileDialog.h"
#include "app/base/SmallPicture.h"
#include "controls/commands/ScreenTip.h"
#include "controls/fields/PhotoStrip.h"
#include "controls/messages/ActionGuard.h"
#include "core/base/RecentPhotos.h"
#include "imaging/reading/ImageReader.h"
#include "platform/HarmlessText.h"

using namespace Qt::StringLiterals;

namespace kadrona::app {

namespace {

/// Longer names are cut in the middle; the tool tip has the whole path.
constexpr int MenuTextWidth = 320;

QByteArray AsPng(const QImage& picture) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    const bool written = buffer.open(QIODevice::WriteOnly) && picture.save(&buffer, "PNG");
    return written && bytes.size() <= core::RecentPhotos::MostPictureBytes ? bytes : QByteArray();
}

/// Null where there is none, or one that is no small picture.
QImage PictureOf(const core::RecentPhoto& photo) {
    QByteArray bytes = photo.picture;
    if (bytes.isEmpty()) {
        return {};
    }
    try {
        constexpr qint64 MostPixels = qint64{256} * 256;
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::ReadOnly);
        return imaging::ReadImage(buffer, photo.path, {.maximumPixels = MostPixels})
            .pixels.ToImage();
    } catch (const platform::Error&) {
        return {};
    }
}

}  // namespace

RecentActions::RecentActions(QMenu& menu, controls::PhotoStrip& strip, const PhotoSession& session,
                             Open open)
    : menu_(menu), strip_(strip), session_(session), open_(std::move(open)) {
    menu.setToolTipsVisible(true);
    connect(&menu, &QMenu::aboutToShow, this, &RecentActions::FillMenu);
    connect(&strip, &controls::PhotoStrip::Chosen, this,
            [this](const QString& path) { open_(path); });
    Read();
    FillStrip();
}

RecentActions::~RecentActions() = default;

/// Another window may have changed the list. Where it cannot be read there is none, and nothing is
/// said: the user has not asked for it.
void RecentActions::Read() {
    try {
        photos_ = std::make_unique<core::RecentPhotos>();
    } catch (const platform::Error&) {
        photos_.reset();
    }
}

void RecentActions::Remember(const QString& path) {
    if (!photos_ || !photos_->Keeps()) {
        return;
    }
    try {
        photos_->Add(
            {QFileInfo(path).absoluteFilePath(),
             AsPng(SmallPicture(session_.Image().LayerAt(0).pixels, strip_.devicePixelRatioF()))});
    } catch (const platform::Error&) {
    }
    FillStrip();
}

void RecentActions::FillMenu() {
    menu_.clear();
    Read();
    if (!photos_) {
        return;
    }
    const QFontMetrics metrics(menu_.font());
    for (const core::RecentPhoto& photo : photos_->Photos()) {
        const QString name =
            metrics.elidedText(platform::HarmlessLine(QFileInfo(photo.path).fileName()),
                               Qt::ElideMiddle, MenuTextWidth);
        QAction* action = menu_.addAction(QIcon(QPixmap::fromImage(PictureOf(photo))),
                                          QString(name).replace(u'&', u"&&"_s));
        action->setToolTip(controls::PlainTip(photo.path));
        connect(action, &QAction::triggered, this, [this, path = photo.path] { open_(path); });
    }
    menu_.addSeparator();
    QAction* clear = menu_.addAction(u"Liste &leeren"_s);
    clear->setObjectName(u"acRecentClear"_s);
    clear->setEnabled(!photos_->Photos().isEmpty());
    connect(clear, &QAction::triggered, this, [this] {
        Change([this] {
            photos_->Clear();
            ForgetFolders();
        });
    });
    QAction* keep = menu_.addAction(u"Geöffnete Fotos &merken"_s);
    keep->setObjectName(u"acRecentKeep"_s);
    keep->setCheckable(true);
    keep->setChecked(photos_->Keeps());
    connect(keep, &QAction::triggered, this,
            [this](bool checked) { Change([this, checked] { SetKeeps(checked); }); });
}

void RecentActions::FillStrip() {
    if (!photos_) {
        return;
    }
    QStringList paths;
    for (const core::RecentPhoto& photo : photos_->Photos()) {
        paths.append(photo.path);
    }
    strip_.SetFiles(paths);
    for (const core::RecentPhoto& photo : photos_->Photos()) {
        if (const QImage picture = PictureOf(photo); !picture.isNull()) {
            strip_.SetPicture(photo.path, picture);
        }
    }
}

void RecentActions::SetKeeps(bool keeps) {
    photos_->SetKeeps(keeps);
    if (!keeps) {
        ForgetFolders();
    }
}

void RecentActions::Change(const std::function<void()>& change) {
    controls::Guarded(menu_.window(), change);
    FillStrip();
}

}  // namespace kadrona::app
