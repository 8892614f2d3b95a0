#include "imaging/view/Pyramid.h"

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include "imaging/MatView.h"
#include "imaging/NewImage.h"

namespace kadrona::imaging::view {

namespace {

constexpr int BlockSide = 256;

QSize Halved(QSize size) { return {(size.width() + 1) / 2, (size.height() + 1) / 2}; }

// `block` in the pixels of the reduced image. A source with an odd side lacks the last column or
// row of the last block: it is doubled, so that every block is reduced by exactly two.
void ReduceBlock(const cv::Mat& source, cv::Mat& reduced, const QRect& block) {
    const cv::Rect wanted(2 * block.x(), 2 * block.y(), 2 * block.width(), 2 * block.height());
    const cv::Rect present = wanted & cv::Rect(0, 0, source.cols, source.rows);
    cv::Mat input = source(present);
    if (present != wanted) {
        cv::copyMakeBorder(input, input, 0, wanted.height - present.height, 0,
                           wanted.width - present.width, cv::BORDER_REPLICATE);
    }
    cv::Mat output = reduced(cv::Rect(block.x(), block.y(), block.width(), block.height()));
    cv::resize(input, output, output.size(), 0, 0, cv::INTER_AREA);
}

QRect BlockRectangle(QPoint block, QSize level) {
    return QRect(block * BlockSide, QSize(BlockSide, BlockSide)) & QRect(QPoint(0, 0), level);
}

}  // namespace

Pyramid::Pyramid(QSize picture) : pictureSize_(picture) {
    for (QSize size = picture; size.width() > 1 || size.height() > 1;) {
        size = Halved(size);
        const QSize blocks((size.width() + BlockSide - 1) / BlockSide,
                           (size.height() + BlockSide - 1) / BlockSide);
        reduced_.push_back({size, QImage(), blocks, {}});
    }
}

QSize Pyramid::LevelSize(int level) const {
    return level == 0 ? pictureSize_ : reduced_.at(static_cast<size_t>(level) - 1).size;
}

const QImage& Pyramid::Level(const QImage& picture, int level, const QRect& part) {
    if (level == 0) {
        return picture;
    }
    Build(picture, level, part & QRect(QPoint(0, 0), LevelSize(level)));
    return reduced_.at(static_cast<size_t>(level) - 1).image;
}

void Pyramid::Build(const QImage& picture, int level, const QRect& part) {
    Reduced& target = reduced_.at(static_cast<size_t>(level) - 1);
    if (target.image.isNull()) {
        // Left uninitialised: memory that is never drawn from is never touched.
        target.image = NewImage(target.size, picture.format());
        target.isBuilt.assign(target.IndexOf({0, target.blocks.height()}), false);
    }
    const std::vector<QPoint> missing = MissingBlocks(target, part);
    for (const QPoint& block : missing) {
        const QRect wanted = BlockRectangle(block, target.size);
        Level(picture, level - 1, {2 * wanted.topLeft(), 2 * wanted.size()});
    }
    const QImage& parent = level == 1 ? picture : reduced_.at(static_cast<size_t>(level) - 2).image;
    const cv::Mat source = ConstMatView(parent);
    cv::Mat reduced = MatView(target.image);
    cv::parallel_for_(cv::Range(0, static_cast<int>(missing.size())), [&](const cv::Range& range) {
        for (int i = range.start; i < range.end; ++i) {
            ReduceBlock(source, reduced,
                        BlockRectangle(missing[static_cast<size_t>(i)], target.size));
        }
    });
    for (const QPoint& block : missing) {
        target.isBuilt[target.IndexOf(block)] = true;
    }
}

std::vector<QPoint> Pyramid::MissingBlocks(const Reduced& level, const QRect& part) {
    std::vector<QPoint> missing;
    for (int row = part.top() / BlockSide; row <= part.bottom() / BlockSide; ++row) {
        for (int column = part.left() / BlockSide; column <= part.right() / BlockSide; ++column) {
            if (!level.isBuilt[level.IndexOf({column, row})]) {
                missing.emplace_back(column, row);
            }
        }
    }
    return missing;
}

}  // namespace kadrona::imaging::view
