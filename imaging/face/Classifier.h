#pragma once

#include <QRect>
#include <vector>

namespace cv {
class Mat;
}

namespace kadrona::imaging {

/// What a classifier found: a square, and how many overlapping hits agreed on it.
struct CascadeHit {
    QRect box;
    int votes = 0;
};

/// A trained classifier. OpenCV's object detection brings its neural networks along, so it belongs
/// to a part of the program that is opened when the first face is looked for.
class Classifier {
 public:
    virtual ~Classifier() = default;

    /// Hits in an 8-bit grey picture, at least `smallest` and at most `largest` pixels wide.
    virtual std::vector<CascadeHit> Find(const cv::Mat& grey, int smallest, int largest,
                                         int fewestVotes) = 0;
};

}  // namespace kadrona::imaging
