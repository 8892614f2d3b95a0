#include "imaging/face/FacesPart.h"

#include <QDir>
#include <QFileInfo>
#include <memory>
#include <opencv2/objdetect.hpp>

namespace {

using kadrona::imaging::CascadeHit;

class CascadeOfOpenCv : public kadrona::imaging::Classifier {
 public:
    /// OpenCV throws for a damaged file, and where memory is short.
    bool Load(const QString& path) {
        try {
            return cascade_.load(QDir::toNativeSeparators(path).toStdString());
        } catch (const cv::Exception& error) {
            if (error.code == cv::Error::StsNoMem) {
                throw;
            }
            return false;
        }
    }

    std::vector<CascadeHit> Find(const cv::Mat& grey, int smallest, int largest,
                                 int fewestVotes) override {
        constexpr double ScaleStep = 1.1;
        std::vector<cv::Rect> boxes;
        std::vector<int> votes;
        cascade_.detectMultiScale(grey, boxes, votes, ScaleStep, fewestVotes, 0,
                                  cv::Size(smallest, smallest), cv::Size(largest, largest));
        std::vector<CascadeHit> hits;
        for (size_t i = 0; i < boxes.size(); ++i) {
            hits.push_back({{boxes[i].x, boxes[i].y, boxes[i].width, boxes[i].height}, votes[i]});
        }
        return hits;
    }

 private:
    cv::CascadeClassifier cascade_;
};

}  // namespace

kadrona::imaging::Classifier* kadrona_load_classifier(const QString& path) {
    auto classifier = std::make_unique<CascadeOfOpenCv>();
    return QFileInfo::exists(path) && classifier->Load(path) ? classifier.release() : nullptr;
}
