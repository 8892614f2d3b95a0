#include "imaging/face/Cascades.h"

#include <QDir>
#include <array>
#include <opencv2/core/mat.hpp>

#include "imaging/face/EnoughMemory.h"
#include "imaging/face/FacesPart.h"
#include "platform/ProgramPart.h"

using namespace Qt::StringLiterals;

namespace kadrona::imaging {

namespace {

const std::array<QString, 4>& FileNames() {
    static const std::array<QString, 4> names{
        u"haarcascade_frontalface_alt2.xml"_s, u"haarcascade_eye_tree_eyeglasses.xml"_s,
        u"haarcascade_eye.xml"_s, u"haarcascade_frontalface_default.xml"_s};
    return names;
}

/// How classifiers are loaded.
auto Loader() try {
    return platform::PartFunction<decltype(kadrona_load_classifier)>("kadrona-faces",
                                                                     "kadrona_load_classifier");
} catch (const platform::PartMissing& missing) {
    throw CascadesMissing(missing.Text());
}

}  // namespace

Cascades::Cascades(const QString& folder) {
    const auto load = Loader();
    for (size_t i = 0; i < FileNames().size(); ++i) {
        const QString path = QDir(folder).filePath(FileNames().at(i));
        classifiers_.at(i).reset(load(path));
        if (!classifiers_.at(i)) {
            throw CascadesMissing(
                u"Gesichter können nicht gesucht werden: „%1“ fehlt oder ist beschädigt. "
                u"Installieren Sie das Paket „opencv-data“."_s.arg(path));
        }
    }
}

std::vector<CascadeHit> Cascades::Find(Kind kind, const cv::Mat& grey, int smallest, int largest,
                                       int fewestVotes) const {
    if (grey.cols < smallest || grey.rows < smallest) {
        return {};
    }
    return classifiers_.at(kind)->Find(grey, smallest, largest, fewestVotes);
}

const Cascades& InstalledCascades() {
    static const Cascades cascades = WithEnoughMemory([] { return Cascades(); });
    return cascades;
}

}  // namespace kadrona::imaging
