#pragma once

#include <QObject>
#include <QRect>
#include <functional>
#include <vector>

#include "imaging/document/TurnSeries.h"
#include "imaging/document/UndoHistory.h"
#include "imaging/metadata/Iptc.h"
#include "imaging/pixels/Pixels.h"
#include "imaging/pixels/Resolution.h"

namespace kadrona::imaging {

/// One layer of a LayeredImage.
struct Layer {
    Pixels pixels;
    /// Where the layer lies, in pixels of the photo (layer 0). The pixels are scaled to this size.
    QRect rectangle;
    bool visible = true;
    bool selectionFrameVisible = true;
    /// 0 invisible ... 255 opaque, on top of the pixels' own alpha.
    int transparency = 255;
};

/// A photo (layer 0), the layers above it, its print resolution and its undo history.
/// Tools work on layer 0; the current layer is the one that the mouse and the arrow keys move.
///
/// A layer index that does not exist throws std::out_of_range, as does a change of the photo where
/// there is none.
class LayeredImage : public QObject {
    Q_OBJECT

 public:
    explicit LayeredImage(QObject* parent = nullptr);

    bool IsEmpty() const { return layers_.empty(); }
    int LayerCount() const { return static_cast<int>(layers_.size()); }
    const Layer& LayerAt(int index) const { return layers_.at(static_cast<size_t>(index)); }

    /// -1 when empty.
    int CurrentLayer() const { return currentLayer_; }
    void SetCurrentLayer(int index);

    /// Layer 0's pixels; empty pixels when there is no photo.
    const Pixels& Photo() const;
    DotsPerInch Resolution() const { return resolution_; }
    void SetResolution(DotsPerInch resolution);

    /// What was done to the photo since it was opened and not undone.
    const PhotoEdits& Edits() const { return edits_; }

    /// The photo's IPTC metadata; what changes the photo leaves it as it is.
    const IptcItems& Iptc() const { return iptc_; }
    void SetIptc(IptcItems items) { iptc_ = std::move(items); }

    /// Removes every layer, the undo history and the IPTC items; the resolution becomes unknown.
    void Clear();

    /// A new photo without IPTC items: replaces all layers, clears the undo history. Empty pixels
    /// only clear.
    void Open(Pixels photo, DotsPerInch resolution);

    /// Replaces the photo's pixels by changed ones, as every tool does. Records an undo step first
    /// when automatic recording is on. The layers above stay. Throws std::invalid_argument for
    /// empty pixels. `edit` joins Edits() until it is undone.
    void ChangePhoto(Pixels changed, PhotoEdit edit = PhotoEdit::Geometry);

    /// Turns the photo by an angle, without loss by quarter turns, and records an undo step as
    /// ChangePhoto does; undoing it also brings the layers above back to where they are now. Turns
    /// that follow each other soften the photo once (TurnSeries). Throws platform::Error where
    /// memory is short.
    void TurnPhoto(double degreesCounterClockwise);

    /// Changes the photo in place, as a brush does: `edit` gets the photo's image and changes it
    /// inside `area` alone. A stroke begins with RecordUndoStep(), which costs nothing, and calls
    /// this for each dab; the history then takes the 256 x 256 blocks that the stroke touched. It
    /// counts as retouching.
    /// Whoever holds a copy of the photo's pixels meanwhile makes the first dab copy all of them. A
    /// grid is unrolled.
    void EditPhoto(const QRect& area, const std::function<void(QImage& photo)>& edit);

    /// Adds a layer on top of the photo and makes it current; returns its index.
    int AddLayer(Layer layer);
    /// The photo becomes current.
    void RemoveLayersAbovePhoto();
    /// Moves or scales a layer above the photo.
    void SetLayerRectangle(int index, const QRect& rectangle);
    void SetLayerVisible(int index, bool visible, bool selectionFrameVisible);

    void SetAutomaticUndo(bool on) { automaticUndo_ = on; }
    bool AutomaticUndo() const { return automaticUndo_; }
    void SetUndoLimit(int limit);
    /// Does nothing when there is no photo.
    void RecordUndoStep();
    bool CanUndo() const { return !history_.IsEmpty(); }
    int UndoCount() const { return history_.Count(); }
    /// Brings the newest recorded pixels and resolution of the photo back; does nothing when there
    /// is none.
    void Undo();
    void ClearUndo();

    /// Memory that the undo steps take beside the photo.
    qsizetype UndoByteCount() const { return history_.ByteCount(Photo()); }

 Q_SIGNALS:
    /// The photo's pixels or size changed.
    void PhotoChanged();
    /// Comes before PhotoChanged where pixels inside `area` alone were changed in place.
    void PhotoEdited(const QRect& area);
    /// What the photo shows lies elsewhere in it: it was turned around its middle, or a turn
    /// undone, with 0 degrees. Comes before PhotoChanged.
    void PhotoTurned(double degreesCounterClockwise);
    /// A layer above the photo, the current layer or a visibility changed.
    void LayersChanged();

 private:
    void Restore(const std::vector<LayerPlace>& places);

    std::vector<Layer> layers_;
    int currentLayer_ = -1;
    DotsPerInch resolution_;
    IptcItems iptc_;
    PhotoEdits edits_;
    bool automaticUndo_ = true;
    UndoHistory history_;
    TurnSeries turns_;
};

}  // namespace kadrona::imaging
