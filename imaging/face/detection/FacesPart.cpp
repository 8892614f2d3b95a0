#include "imaging/face/FacesPart.h"

#include <QDir>
#include <QFileInfo>
#include <algorithm>
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

    /// Looks at every second size first. The sizes between, nearly half of the time, only add to
    /// what is seen there: they are looked at near the sizes of what a good part of the wanted hits
    /// agree on.
    std::vector<CascadeHit> Find(const cv::Mat& grey, int smallest, int largest,
                                 int fewestVotes) override {
        std::vector<cv::Rect> boxes = Hits(grey, SizeStep * SizeStep, {smallest, largest});
        const std::vector<int> sizes = SizesOfMoreThan(fewestVotes / 4, boxes);
        const double window = cascade_.getOriginalWindowSize().width;
        for (double scale = SizeStep; scale * window <= largest; scale *= SizeStep * SizeStep) {
            const int size = cvRound(scale * window);
            if (size >= smallest && IsNearOneOf(sizes, size)) {
                const std::vector<cv::Rect> more = Hits(grey, SizeStep, {size, size});
                boxes.insert(boxes.end(), more.begin(), more.end());
            }
        }
        std::vector<int> votes;
        cv::groupRectangles(boxes, votes, fewestVotes, MostApart);
        std::vector<CascadeHit> hits;
        for (size_t i = 0; i < boxes.size(); ++i) {
            hits.push_back({{boxes[i].x, boxes[i].y, boxes[i].width, boxes[i].height}, votes[i]});
        }
        return hits;
    }

 private:
    static constexpr double SizeStep = 1.1;
    /// Of boxes that stand for one object, beside their sides.
    static constexpr double MostApart = 0.2;

    /// Sides of squares, pixels.
    struct Sizes {
        int smallest = 0;
        int largest = 0;
    };

    /// Every hit by itself.
    std::vector<cv::Rect> Hits(const cv::Mat& grey, double step, Sizes sizes) {
        std::vector<cv::Rect> boxes;
        cascade_.detectMultiScale(grey, boxes, step, 0, 0, cv::Size(sizes.smallest, sizes.smallest),
                                  cv::Size(sizes.largest, sizes.largest));
        return boxes;
    }

    /// Sizes of the boxes of which more than so many stand for one object.
    static std::vector<int> SizesOfMoreThan(int count, const std::vector<cv::Rect>& boxes) {
        if (boxes.empty()) {
            return {};
        }
        std::vector<int> objects;
        cv::partition(boxes, objects, cv::SimilarRects(MostApart));
        std::vector<int> sizes;
        for (size_t i = 0; i < boxes.size(); ++i) {
            if (std::ranges::count(objects, objects[i]) > count) {
                sizes.push_back(boxes[i].width);
            }
        }
        return sizes;
    }

    static bool IsNearOneOf(const std::vector<int>& sizes, int size) {
        constexpr double MostUnlike = 1.35;
        return std::ranges::any_of(sizes, [size](int other) {
            return std::max(size, other) < MostUnlike * std::min(size, other);
        });
    }

    cv::CascadeClassifier cascade_;
};

}  // namespace

kadrona::imaging::Classifier* kadrona_load_classifier(const QString& path) {
    auto classifier = std::make_unique<CascadeOfOpenCv>();
    return QFileInfo::exists(path) && classifier->Load(path) ? classifier.release() : nullptr;
}
