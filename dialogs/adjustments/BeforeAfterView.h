#pragma once

#include <QWidget>

#include "imaging/document/LayeredImage.h"
#include "imaging/tone/PixelFilter.h"

namespace kadrona::imaging::view {
class ImageView;
}

namespace kadrona::dialogs {

/// A photo beside itself as a filter would make it. Both sides zoom and pan together.
class BeforeAfterView : public QWidget {
    Q_OBJECT

 public:
    explicit BeforeAfterView(QWidget* parent = nullptr);
    ~BeforeAfterView() override;

    /// Shows another photo as a whole.
    void SetPhoto(const imaging::Pixels& photo);
    /// Null changes nothing.
    void SetFilter(imaging::PixelFilterPointer filter);

 private:
    imaging::view::ImageView* AddSide(int column, const QString& title, const QString& name);
    void AddZoomButtons();
    void Follow(const imaging::view::ImageView& leader, imaging::view::ImageView& follower);

    imaging::LayeredImage photo_;
    imaging::view::ImageView* before_;
    imaging::view::ImageView* after_;
    bool isFollowing_ = false;
};

}  // namespace kadrona::dialogs
