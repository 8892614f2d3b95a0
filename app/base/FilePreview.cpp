#include "app/base/FilePreview.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QGridLayout>
#include <QLabel>
#include <QTimer>
#include <QVBoxLayout>

#include "controls/theme/Tone.h"
#include "dialogs/base/WindowPlacement.h"
#include "imaging/pixels/Resampling.h"
#include "imaging/reading/ImageReader.h"

using namespace Qt::StringLiterals;

namespace kadrona::app {

namespace {

constexpr int Side = 200;
constexpr int Width = Side + 16;
constexpr int SettlingMilliseconds = 150;
/// Larger ones than telephones and most cameras make would keep the dialog waiting; JPEGs, which
/// are decoded at an eighth of their width, only from sizes on that no camera makes.
constexpr imaging::ReadOptions Small{.maximumPixels = 26'000'000,
                                     .maximumShrunkPixels = 120'000'000,
                                     .shrink = 8,
                                     .patienceMilliseconds = 1000};

}  // namespace

void FilePreview::AddTo(QFileDialog& dialog) {
    auto* grid = qobject_cast<QGridLayout*>(dialog.layout());
    if (grid == nullptr) {
        return;
    }
    const QSize wanted = dialog.size() + QSize(Width + grid->spacing(), 0);
    if (dialogs::WithinScreen(dialog, wanted) == wanted) {
        grid->addWidget(new FilePreview(dialog), 1, grid->columnCount());
        dialog.resize(wanted);
    }
}

FilePreview::FilePreview(QFileDialog& dialog) : picture_(new QLabel), settled_(new QTimer(this)) {
    setObjectName(u"FilePreview"_s);
    setFixedWidth(Width);
    setFrameShape(StyledPanel);
    setBackgroundRole(QPalette::Base);
    setAutoFillBackground(true);
    picture_->setObjectName(u"PreviewPicture"_s);
    picture_->setAlignment(Qt::AlignCenter);
    controls::SetTone(*picture_, controls::Tone::Muted);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins({});
    column->addWidget(picture_);
    settled_->setSingleShot(true);
    settled_->setInterval(SettlingMilliseconds);
    connect(settled_, &QTimer::timeout, this, &FilePreview::Show);
    connect(&dialog, &QFileDialog::currentChanged, this, &FilePreview::Follow);
}

void FilePreview::Follow(const QString& path) {
    path_ = path;
    picture_->clear();
    settled_->start();
}

/// What cannot be read is told once it is opened.
void FilePreview::Show() {
    if (!QFileInfo(path_).isFile()) {
        return;
    }
    try {
        const imaging::Pixels photo = imaging::ReadImageFile(path_, Small).pixels;
        const double ratio = devicePixelRatioF();
        const int side = static_cast<int>(Side * ratio);
        const QSize size = photo.Size().scaled(side, side, Qt::KeepAspectRatio).expandedTo({1, 1});
        QPixmap shown = QPixmap::fromImage(imaging::Resampled(photo, size).ToImage());
        shown.setDevicePixelRatio(ratio);
        picture_->setPixmap(shown);
    } catch (const platform::Error&) {
        picture_->setText(u"Keine Vorschau"_s);
    }
}

}  // namespace kadrona::app
