#pragma once

#include <QLineF>
#include <QRect>
#include <QWidget>
#include <optional>
#include <vector>

#include "imaging/face/Face.h"

class QPainter;

namespace kadrona::imaging::view {
class ImageView;
}

namespace kadrona::app {

class FaceLine;

/// What is drawn over the photo of a face: the dashed outline of the template's proposed place,
/// which the line under the photo offers, the face's points, and a line that is being drawn. The
/// mouse goes through it to the view.
class FaceOverlay : public QWidget {
    Q_OBJECT

 public:
    /// Both outlive the object.
    FaceOverlay(imaging::view::ImageView& view, FaceLine& line);

    /// Nothing takes the offer away.
    void Propose(const std::optional<QRect>& rectangle, const QString& text);
    /// A line of text alone; an empty one takes it away. Ends an offer.
    void ShowHint(const QString& text);
    /// A hint until EndRemark() or another hint or offer.
    void ShowRemark(const QString& text);
    void EndRemark();
    /// A line that is being drawn, photo pixels.
    void ShowLine(const std::optional<QLineF>& line);
    /// Guessed ones, of no confidence, are dotted. None shows no points.
    void ShowPoints(std::vector<imaging::FacePoint> points);
    bool IsProposing() const { return proposed_.has_value(); }

 Q_SIGNALS:
    void Accepted();
    void Refused();

 protected:
    void paintEvent(QPaintEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

 private:
    void Follow();
    void ShowAgain();
    void DrawProposal(QPainter& painter) const;
    void DrawFace(QPainter& painter, QPen pen) const;

    imaging::view::ImageView& view_;
    FaceLine& line_;
    std::optional<QRect> proposed_;
    bool isRemark_ = false;  ///< what the line shows
    std::vector<imaging::FacePoint> points_;
    std::optional<QLineF> drawn_;
};

}  // namespace kadrona::app
