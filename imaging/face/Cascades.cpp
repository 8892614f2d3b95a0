#include "imaging/face/Cascades.h"

#include <QDir>
#include <QFileInfo>
#include <array>
#include <opencv2/objdetect.hpp>

using namespace Qt::StringLiterals;

namespace kadrona::imaging {

struct Cascades::Classifiers {
    /// By Kind. Searching changes a classifier's buffers.
    std::array<cv::CascadeClassifier, 3> of;
};

namespace {

const std::array<QString, 3>& FileNames() {
    static const std::array<QString, 3> names{u"haarcascade_frontalface_alt2.xml"_s,
                                              u"haarcascade_eye_tree_eyeglasses.xml"_s,
                                              u"haarcascade_eye.xml"_s};
    return names;
}

/// OpenCV throws for a damaged file.
bool Loaded(cv::CascadeClassifier& classifier, const QString& path) {
    if (!QFileInfo::exists(path)) {
        return false;
    }
    try {
        return classifier.load(QDir::toNativeSeparators(path).toStdString());
    } catch (const cv::Exception&) {
        return false;
    }
}

}  // namespace

Cascades::Cascades(const QString& folder) : classifiers_(std::make_unique<Classifiers>()) {
    for (size_t i = 0; i < FileNames().size(); ++i) {
        const QString path = QDir(folder).filePath(FileNames().at(i));
        if (!Loaded(classifiers_->of.at(i), path)) {
            throw CascadesMissing(
                u"Gesichter können nicht gesucht werden: „%1“ fehlt oder ist beschädigt. "
                u"Installieren Sie das Paket „opencv-data“."_s.arg(path));
        }
    }
}

Cascades::~Cascades() = default;

std::vector<CascadeHit> Cascades::Find(Kind kind, const cv::Mat& grey, int smallest, int largest,
                                       int fewestVotes) const {
    constexpr double ScaleStep = 1.1;
    std::vector<cv::Rect> boxes;
    std::vector<int> votes;
    if (grey.cols < smallest || grey.rows < smallest) {
        return {};
    }
    classifiers_->of.at(kind).detectMultiScale(grey, boxes, votes, ScaleStep, fewestVotes, 0,
                                               cv::Size(smallest, smallest),
                                               cv::Size(largest, largest));
    std::vector<CascadeHit> hits;
    for (size_t i = 0; i < boxes.size(); ++i) {
        hits.push_back({{boxes[i].x, boxes[i].y, boxes[i].width, boxes[i].height}, votes[i]});
    }
    return hits;
}

const Cascades& InstalledCascades() {
    static const Cascades cascades;
    return cascades;
}

}  // namespace kadrona::imaging
