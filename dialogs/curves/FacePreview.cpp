#include "dialogs/curves/FacePreview.h"

#include <QVBoxLayout>

#include "imaging/pixels/Cropping.h"
#include "imaging/view/ImageView.h"

using namespace Qt::StringLiterals;

namespace kadrona::dialogs {

namespace {

constexpr int Height = 150;

}  // namespace

FacePreview::FacePreview(QWidget* parent)
    : QWidget(parent), view_(new imaging::view::ImageView(face_)) {
    setObjectName(u"FacePreview"_s);
    setMinimumHeight(Height / 2);
    setMaximumHeight(Height);
    view_->setAccessibleName(u"Vorschau des Gesichts"_s);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(view_);
}

QSize FacePreview::sizeHint() const {
    return {QWidget::sizeHint().width(), Height};
}

/// The view goes before the picture that it shows.
FacePreview::~FacePreview() {
    delete view_;
}

void FacePreview::Show(const imaging::LayeredImage& image) {
    const imaging::Pixels& photo = image.Photo();
    QRect part(QPoint(), photo.Size());
    if (image.LayerCount() >= 2) {
        const QRect covered = part.intersected(image.LayerAt(1).rectangle);
        part = covered.isEmpty() ? part : covered;
    }
    view_->SetAutomaticFit(true);
    face_.Open(photo.IsEmpty() ? photo : imaging::Cropped(photo, part), image.Resolution());
}

void FacePreview::Clear() {
    view_->SetPreviewFilter(nullptr);
    face_.Clear();
}

void FacePreview::SetFilter(imaging::PixelFilterPointer filter) {
    view_->SetPreviewFilter(std::move(filter));
}

}  // namespace kadrona::dialogs
