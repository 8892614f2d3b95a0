#include "app/base/PhotoSession.h"

#include "imaging/pixels/Cropping.h"

namespace kadrona::app {

PhotoSession::PhotoSession(QObject* parent) : QObject(parent) {
    using imaging::LayeredImage;
    connect(&image_, &LayeredImage::PhotoChanged, this, &PhotoSession::Changed);
    connect(&image_, &LayeredImage::LayersChanged, this, &PhotoSession::Changed);
}

void PhotoSession::SetStage(Stage stage) {
    stage_ = stage;
    Q_EMIT Changed();
}

void PhotoSession::SetFileName(const QString& name) {
    fileName_ = name;
    cut_ = {};
    Q_EMIT Changed();
}

imaging::Pixels PhotoSession::Cut() const {
    return stage_ == Stage::PhotoOpen && HasTemplate()
               ? imaging::Cropped(image_.Photo(), image_.LayerAt(1).rectangle)
               : cut_;
}

void PhotoSession::SetLayoutIndex(int index) {
    layoutIndex_ = index;
    Q_EMIT Changed();
}

void PhotoSession::SetTemplateName(const QString& name) {
    templateName_ = name;
    Q_EMIT Changed();
}

}  // namespace kadrona::app
