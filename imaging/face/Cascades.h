#pragma once

#include <QString>
#include <array>
#include <memory>
#include <vector>

#include "imaging/face/Classifier.h"
#include "platform/Error.h"

namespace kadrona::imaging {

/// The face finder's data is not on this machine; the text says what to install.
class CascadesMissing : public platform::FileError {
    using FileError::FileError;
};

/// The trained classifiers that faces and eyes are found with (P. Viola and M. Jones, "Robust
/// real-time face detection", IJCV 57(2), 2004), of Debian's package "opencv-data".
class Cascades {
 public:
    enum Kind { FrontalFace, EyeWithGlasses, Eye, FrontalFaceAgain };

    static inline const QString DebianFolder = QStringLiteral("/usr/share/opencv4/haarcascades");

    /// Loads the classifiers. Throws CascadesMissing where one is missing or damaged.
    explicit Cascades(const QString& folder = DebianFolder);

    /// Hits in an 8-bit grey picture, at least `smallest` and at most `largest` pixels wide.
    std::vector<CascadeHit> Find(Kind kind, const cv::Mat& grey, int smallest, int largest,
                                 int fewestVotes) const;

 private:
    /// By Kind. Searching changes a classifier's buffers.
    std::array<std::unique_ptr<Classifier>, 4> classifiers_;
};

/// Those of this machine, loaded by the first call that finds them. Throws CascadesMissing, and
/// platform::Error where memory is short.
const Cascades& InstalledCascades();

}  // namespace kadrona::imaging
