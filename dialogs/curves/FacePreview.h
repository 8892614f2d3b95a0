#pragma once

#include <QWidget>

#include "imaging/document/LayeredImage.h"
#include "imaging/tone/PixelFilter.h"

namespace kadrona::imaging::view {
class ImageView;
}  // namespace kadrona::imaging::view

namespace kadrona::dialogs {

/// What lies under the template, small: a dialog in the middle of the window hides the face that it
/// changes.
class FacePreview : public QWidget {
    Q_OBJECT

 public:
    explicit FacePreview(QWidget* parent = nullptr);
    ~FacePreview() override;

    /// Shows the part of the photo that the template covers, the whole one where there is none.
    /// Shares its pixels.
    void Show(const imaging::LayeredImage& image);
    /// Lets go of the pixels.
    void Clear();
    /// Null shows the photo as it is.
    void SetFilter(imaging::PixelFilterPointer filter);

    /// Half as high where the screen is small.
    QSize sizeHint() const override;

 private:
    imaging::LayeredImage face_;
    imaging::view::ImageView* view_;
};

}  // namespace kadrona::dialogs
