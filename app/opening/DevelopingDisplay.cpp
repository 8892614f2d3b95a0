#include "app/opening/DevelopingDisplay.h"

#include <QApplication>
#include <QLabel>
#include <QProgressDialog>
#include <cmath>

#include "controls/messages/ProgressBox.h"
#include "controls/theme/Theme.h"
#include "imaging/pixels/Resampling.h"

using namespace Qt::StringLiterals;

namespace kadrona::app {

DevelopingDisplay::DevelopingDisplay(QWidget& place) : place_(place) {}

DevelopingDisplay::~DevelopingDisplay() {
    if (line_) {
        QApplication::restoreOverrideCursor();
    }
}

void DevelopingDisplay::Begin(const imaging::Pixels& preview) {
    if (!preview.IsEmpty()) {
        ShowPreview(preview);
    }
    ShowLine();
    GoOn(Unknown);
}

/// As large as the photo will be.
void DevelopingDisplay::ShowPreview(const imaging::Pixels& preview) {
    constexpr int Margin = 12;
    const QSize room = place_.size().shrunkBy({Margin, Margin, Margin, Margin});
    const QSize size =
        preview.Size().scaled(room * place_.devicePixelRatioF(), Qt::KeepAspectRatio);
    QPixmap picture =
        QPixmap::fromImage(imaging::Resampled(preview, size.expandedTo({1, 1})).ToImage());
    picture.setDevicePixelRatio(place_.devicePixelRatioF());
    preview_ = std::make_unique<QLabel>(&place_);
    preview_->setObjectName(u"DevelopingPreview"_s);
    preview_->setAutoFillBackground(true);
    QPalette palette = preview_->palette();
    palette.setColor(preview_->backgroundRole(), controls::Colors().view);  // as around the photo
    preview_->setPalette(palette);
    preview_->setAlignment(Qt::AlignCenter);
    preview_->setPixmap(picture);
    preview_->setGeometry(place_.rect());
    preview_->show();
}

/// At the foot of the photo, so that the face is seen.
void DevelopingDisplay::ShowLine() {
    constexpr int AboveEdge = 24;
    line_ =
        controls::MakeProgressDialog(u"DevelopingProgress"_s, u"Bild öffnen"_s, place_.window());
    line_->setLabelText(u"Das Foto wird geöffnet …"_s);
    line_->setMinimumDuration(0);
    const QSize size = line_->sizeHint().expandedTo(line_->minimumSize());
    const QPoint foot = place_.mapToGlobal(QPoint(place_.width() / 2, place_.height()));
    line_->move(foot - QPoint(size.width() / 2, size.height() + AboveEdge));
    // The hourglass of whoever opens the photo would lie over the button.
    QApplication::setOverrideCursor(Qt::ArrowCursor);
    line_->show();
}

bool DevelopingDisplay::GoOn(double part) {
    line_->setMaximum(part < 0 ? 0 : controls::ProgressParts);  // of 0 the bar only moves
    if (part >= 0) {
        line_->setLabelText(u"Das Foto wird entwickelt …"_s);
        line_->setValue(static_cast<int>(std::lround(part * controls::ProgressParts)));
    }
    QCoreApplication::processEvents();
    return !line_->wasCanceled();
}

}  // namespace kadrona::app
