#include "imaging/document/LayeredImage.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <utility>

namespace kadrona::imaging {

namespace {

/// Changes when other pixels are shown and when the same ones are changed in place.
std::pair<qint64, QSize> Identity(const Pixels& pixels) {
    return {pixels.Key(), pixels.Size()};
}

}  // namespace

LayeredImage::LayeredImage(QObject* parent) : QObject(parent) {}

void LayeredImage::SetCurrentLayer(int index) {
    static_cast<void>(LayerAt(index));
    if (index != currentLayer_) {
        currentLayer_ = index;
        Q_EMIT LayersChanged();
    }
}

const Pixels& LayeredImage::Photo() const {
    static const Pixels none;
    return IsEmpty() ? none : layers_.front().pixels;
}

void LayeredImage::SetResolution(DotsPerInch resolution) {
    resolution_ = resolution;
}

void LayeredImage::Clear() {
    resolution_ = {};
    iptc_ = {};
    edits_ = {.geometry = edits_.geometry + 1};
    history_.Clear();
    turns_.Forget();
    if (IsEmpty()) {
        return;
    }
    layers_.clear();
    currentLayer_ = -1;
    Q_EMIT PhotoChanged();
    Q_EMIT LayersChanged();
}

void LayeredImage::Open(Pixels photo, DotsPerInch resolution) {
    if (photo.IsEmpty()) {
        Clear();
        return;
    }
    const bool layersChange = layers_.size() != 1 || currentLayer_ != 0 ||
                              !layers_.front().visible || !layers_.front().selectionFrameVisible;
    const QRect rectangle(QPoint(), photo.Size());
    layers_.clear();
    layers_.push_back({std::move(photo), rectangle});
    currentLayer_ = 0;
    resolution_ = resolution;
    iptc_ = {};
    edits_ = {.geometry = edits_.geometry + 1};
    history_.Clear();
    turns_.Forget();
    Q_EMIT PhotoChanged();
    if (layersChange) {
        Q_EMIT LayersChanged();
    }
}

void LayeredImage::ChangePhoto(Pixels changed, PhotoEdit edit) {
    Layer& photo = layers_.at(0);
    if (changed.IsEmpty()) {
        throw std::invalid_argument("a photo cannot change to nothing");
    }
    if (changed.SharesPixelsWith(photo.pixels)) {
        return;
    }
    if (automaticUndo_) {
        RecordUndoStep();
    }
    photo.rectangle = QRect(QPoint(), changed.Size());
    photo.pixels = std::move(changed);
    edits_.Add(edit);
    Q_EMIT PhotoChanged();
}

void LayeredImage::TurnPhoto(double degreesCounterClockwise) {
    Pixels turned = turns_.Turned(layers_.at(0).pixels, degreesCounterClockwise);
    if (turned.SharesPixelsWith(Photo())) {
        return;
    }
    if (automaticUndo_) {
        RecordUndoStep();
        std::vector<LayerPlace> places;
        for (auto layer = layers_.begin() + 1; layer != layers_.end(); ++layer) {
            places.push_back({layer->pixels.Key(), layer->rectangle});
        }
        history_.KeepPlaces(std::move(places));
    }
    layers_.front().rectangle = QRect(QPoint(), turned.Size());
    layers_.front().pixels = std::move(turned);
    edits_.Add(PhotoEdit::Geometry);
    edits_.turnedFreely |= std::fmod(degreesCounterClockwise, 90) != 0;
    Q_EMIT PhotoTurned(degreesCounterClockwise);
    Q_EMIT PhotoChanged();
}

void LayeredImage::EditPhoto(const QRect& area, const std::function<void(QImage& photo)>& edit) {
    Pixels& photo = layers_.at(0).pixels;
    const QRect inside = area & QRect(QPoint(), photo.Size());
    if (inside.isEmpty()) {
        return;
    }
    // Its hold on the pixels would have them copied.
    turns_.Forget();
    photo = Pixels(photo.ToImage());
    history_.EditInPlace(photo, inside, edit);
    edits_.Add(PhotoEdit::Retouch);
    Q_EMIT PhotoEdited(inside);
    Q_EMIT PhotoChanged();
}

int LayeredImage::AddLayer(Layer layer) {
    if (IsEmpty()) {
        throw std::out_of_range("a layer needs a photo below it");
    }
    layers_.push_back(std::move(layer));
    currentLayer_ = LayerCount() - 1;
    Q_EMIT LayersChanged();
    return currentLayer_;
}

void LayeredImage::RemoveLayersAbovePhoto() {
    if (LayerCount() <= 1) {
        return;
    }
    layers_.erase(layers_.begin() + 1, layers_.end());
    currentLayer_ = 0;
    Q_EMIT LayersChanged();
}

void LayeredImage::SetLayerRectangle(int index, const QRect& rectangle) {
    Layer& layer = layers_.at(static_cast<size_t>(index));
    if (index == 0) {
        throw std::out_of_range("the photo's rectangle is its size");
    }
    if (layer.rectangle != rectangle) {
        layer.rectangle = rectangle;
        Q_EMIT LayersChanged();
    }
}

void LayeredImage::SetLayerVisible(int index, bool visible, bool selectionFrameVisible) {
    Layer& layer = layers_.at(static_cast<size_t>(index));
    if (layer.visible != visible || layer.selectionFrameVisible != selectionFrameVisible) {
        layer.visible = visible;
        layer.selectionFrameVisible = selectionFrameVisible;
        Q_EMIT LayersChanged();
    }
}

void LayeredImage::SetUndoLimit(int limit) {
    history_.SetLimit(limit);
}

void LayeredImage::RecordUndoStep() {
    if (!IsEmpty()) {
        history_.Record(Photo(), resolution_, edits_);
    }
}

void LayeredImage::Undo() {
    if (!CanUndo()) {
        return;
    }
    Layer& photo = layers_.front();
    const auto before = Identity(photo.pixels);
    const PhotoEdits edits = history_.NewestEdits();
    const auto places = history_.TakeNewest(photo.pixels, resolution_);
    edits_ = edits;
    if (Identity(photo.pixels) == before) {
        return;
    }
    photo.rectangle = QRect(QPoint(), photo.pixels.Size());
    if (places) {
        Q_EMIT PhotoTurned(0);
    }
    Q_EMIT PhotoChanged();
    if (places) {
        Restore(*places);
    }
}

/// A layer that has come or gone since is left alone.
void LayeredImage::Restore(const std::vector<LayerPlace>& places) {
    const size_t count = std::min(places.size() + 1, layers_.size());
    for (size_t i = 1; i < count; ++i) {
        if (layers_[i].pixels.Key() == places[i - 1].pixels) {
            SetLayerRectangle(static_cast<int>(i), places[i - 1].rectangle);
        }
    }
}

void LayeredImage::ClearUndo() {
    history_.Clear();
}

}  // namespace kadrona::imaging
