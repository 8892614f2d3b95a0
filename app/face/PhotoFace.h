#pragma once

#include <QObject>
#include <QSize>
#include <QTimer>
#include <functional>
#include <optional>
#include <vector>

#include "imaging/face/Face.h"
#include "imaging/face/PortraitMeasures.h"

class QWidget;

namespace kadrona::app {

class PhotoSession;

/// The face of the session's photo: looked for when somebody wants to know, forgotten when the
/// photo's pixels change, and corrected by the user. All that is given outlives the object.
class PhotoFace : public QObject {
    Q_OBJECT

 public:
    /// Throws as imaging::FindFace.
    using Searcher = std::function<imaging::FaceSearch(const imaging::Pixels&)>;

    /// `window` shows what fails in a search that nobody waits for.
    PhotoFace(PhotoSession& session, QWidget& window, Searcher search = SearchOfThisMachine());

    /// Looks for the face unless that was done. True where there is one. Throws
    /// imaging::CascadesMissing and platform::Error; the next call tries again.
    bool Find();
    /// Does so when the user has been idle for a moment; Looked() follows, also where it was done.
    void FindSoon();

    /// False before a search and where it failed.
    bool WasLookedFor() const { return known_; }
    /// Why the last search could not begin, and what to install; empty where it could.
    const QString& Missing() const { return missing_; }

    /// What is known; no face before a search.
    const imaging::FaceSearch& Search() const { return found_; }
    /// Of the photo and its face; empty where there is none. Measured anew by Find() after the
    /// stamp, other tones or a moved point.
    const imaging::PortraitMeasures& Measures() const { return measures_; }

    /// Takes a face that the user has pointed out, as if it had been found. PointMoved() follows,
    /// and Looked() when the pointer rests. Precondition: a photo is open.
    void TakeMarked(const imaging::Face& face);
    /// Puts a point of the face elsewhere: the user knows better. What follows as after
    /// TakeMarked(). The skull goes with the others until it is moved itself. A point stays where
    /// the face would be none. Returns which point it is now: a pupil that is drawn past the other
    /// is the other one. Precondition: there is a face.
    imaging::FacePoint imaging::Face::*MovePoint(imaging::FacePoint imaging::Face::*point,
                                                 QPointF to);
    /// Whether the user has pointed out a point of the face.
    bool IsCorrected() const;

 Q_SIGNALS:
    /// FindSoon() has ended, with or without a face.
    void Looked();
    /// The photo is another one, or what it shows lies elsewhere: what was known holds no more.
    void Forgotten();
    void PointMoved();

 private:
    void FollowTurn(double degreesCounterClockwise);
    void FollowPhoto();
    void Look();
    static Searcher SearchOfThisMachine();

    PhotoSession& session_;
    QWidget& window_;
    Searcher search_;
    QTimer timer_;
    imaging::FaceSearch found_;
    imaging::PortraitMeasures measures_;
    QString missing_;
    /// The points that the user had corrected before each turn that can be undone.
    std::vector<std::optional<imaging::Face>> beforeTurns_;
    /// What becomes of corrected points in a photo that is being turned.
    std::optional<imaging::Face> turned_;
    bool isTurning_ = false;
    QSize photoSize_;        ///< of the photo as it is
    int geometry_ = 0;       ///< the same
    bool known_ = false;     ///< found_ is of the photo as it is
    bool measured_ = false;  ///< measures_ are of the photo and the points as they are
    bool painting_ = false;  ///< the next change of the photo is the stamp's
};

}  // namespace kadrona::app
