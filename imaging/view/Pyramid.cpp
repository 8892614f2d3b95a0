#include "imaging/view/Pyramid.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include "imaging/pixels/MatView.h"
#include "imaging/pixels/NewImage.h"

namespace kadrona::imaging::view {

namespace {

// A block is as many pixels of level 0 wide and high, so the highest level has one pixel for it.
constexpr int HighestLevel = 10;
constexpr int BlockSide = 1 << HighestLevel;

// Buffers for the levels between, kept from block to block.
using Scratch = std::array<cv::Mat, HighestLevel>;

// An odd side is made even by doubling the last column or row, so that all is reduced by exactly
// two.
void Halve(const cv::Mat& source, cv::Mat& half) {
    cv::Mat even = source;
    if (source.cols % 2 != 0 || source.rows % 2 != 0) {
        cv::copyMakeBorder(source, even, 0, source.rows % 2, 0, source.cols % 2,
                           cv::BORDER_REPLICATE);
    }
    cv::resize(even, half, cv::Size(even.cols / 2, even.rows / 2), 0, 0, cv::INTER_AREA);
}

cv::Rect ToCv(const QRect& rectangle) {
    return {rectangle.x(), rectangle.y(), rectangle.width(), rectangle.height()};
}

}  // namespace

Pyramid::Pyramid(QSize picture) : blockColumns_((picture.width() + BlockSide - 1) / BlockSide) {
    const int blockRows = (picture.height() + BlockSide - 1) / BlockSide;
    const size_t blocks = static_cast<size_t>(blockColumns_) * static_cast<size_t>(blockRows);
    levels_.push_back({picture, QImage(), std::vector<bool>(blocks, true)});
    for (QSize size = picture; size.width() > 1 || size.height() > 1;) {
        if (LevelCount() > HighestLevel) {
            break;
        }
        size = {(size.width() + 1) / 2, (size.height() + 1) / 2};
        levels_.push_back({size, QImage(), std::vector<bool>(blocks, false)});
    }
}

void Pyramid::Invalidate() {
    for (size_t level = 1; level < levels_.size(); ++level) {
        levels_[level].isBuilt.assign(levels_[level].isBuilt.size(), false);
    }
}

void Pyramid::Invalidate(const QRect& area) {
    if (levels_.empty()) {
        return;
    }
    for (const size_t block : BlocksIn(area, 0)) {
        for (size_t level = 1; level < levels_.size(); ++level) {
            levels_[level].isBuilt[block] = false;
        }
    }
}

qint64 Pyramid::CostOf(int level, size_t block) const {
    const QSize source = BlockRectangle(block, NearestFinerLevel(level, block)).size();
    return qint64{source.width()} * source.height();
}

qint64 Pyramid::CostOf(int level, const QRect& part) const {
    const std::vector<size_t> missing = MissingBlocks(level, part);
    return std::accumulate(missing.begin(), missing.end(), qint64{0},
                           [&](qint64 sum, size_t block) { return sum + CostOf(level, block); });
}

bool Pyramid::Build(const QImage& picture, int level, const QRect& part, qint64 mostCost) {
    std::vector<size_t> missing = MissingBlocks(level, part);
    if (missing.empty()) {
        return true;
    }
    LevelState& state = levels_.at(static_cast<size_t>(level));
    if (state.image.isNull() || state.image.format() != picture.format()) {
        // Left uninitialised: memory that is never drawn from is never touched.
        state.image = NewImage(state.size, picture.format());
    }
    size_t count = 0;
    for (qint64 cost = 0; count < missing.size() && cost < mostCost; ++count) {
        cost += CostOf(level, missing[count]);
    }
    const bool isAll = count == missing.size();
    missing.resize(count);
    BuildBlocks(picture, level, missing);
    return isAll;
}

std::vector<size_t> Pyramid::BlocksIn(const QRect& part, int level) const {
    const QRect inside = part & QRect(QPoint(0, 0), LevelSize(level));
    const int side = BlockSide >> level;
    std::vector<size_t> blocks;
    if (inside.isEmpty()) {
        return blocks;
    }
    for (int row = inside.top() / side; row <= inside.bottom() / side; ++row) {
        for (int column = inside.left() / side; column <= inside.right() / side; ++column) {
            blocks.push_back(static_cast<size_t>(row) * static_cast<size_t>(blockColumns_) +
                             static_cast<size_t>(column));
        }
    }
    return blocks;
}

std::vector<size_t> Pyramid::MissingBlocks(int level, const QRect& part) const {
    const LevelState& state = levels_.at(static_cast<size_t>(level));
    std::vector<size_t> missing = BlocksIn(part, level);
    std::erase_if(missing, [&state](size_t block) { return bool{state.isBuilt[block]}; });
    return missing;
}

QRect Pyramid::BlockRectangle(size_t block, int level) const {
    const int side = BlockSide >> level;
    const auto columns = static_cast<size_t>(blockColumns_);
    const QPoint place(static_cast<int>(block % columns), static_cast<int>(block / columns));
    return QRect(place * side, QSize(side, side)) & QRect(QPoint(0, 0), LevelSize(level));
}

int Pyramid::NearestFinerLevel(int level, size_t block) const {
    level = std::max(level - 1, 0);
    while (level > 0 && !levels_[static_cast<size_t>(level)].isBuilt[block]) {
        --level;
    }
    return level;
}

void Pyramid::BuildBlocks(const QImage& picture, int level, const std::vector<size_t>& blocks) {
    LevelState& target = levels_.at(static_cast<size_t>(level));
    cv::Mat built = MatView(target.image);
    cv::parallel_for_(cv::Range(0, static_cast<int>(blocks.size())), [&](const cv::Range& range) {
        Scratch scratch;
        for (int i = range.start; i < range.end; ++i) {
            const size_t block = blocks[static_cast<size_t>(i)];
            int finer = NearestFinerLevel(level, block);
            const QImage& image = finer == 0 ? picture : levels_[static_cast<size_t>(finer)].image;
            cv::Mat source = ConstMatView(image)(ToCv(BlockRectangle(block, finer)));
            for (++finer; finer < level; ++finer) {
                cv::Mat& half = scratch[static_cast<size_t>(finer)];
                Halve(source, half);
                source = half;
            }
            cv::Mat output = built(ToCv(BlockRectangle(block, level)));
            Halve(source, output);
        }
    });
    for (const size_t block : blocks) {
        target.isBuilt[block] = true;
    }
}

}  // namespace kadrona::imaging::view
