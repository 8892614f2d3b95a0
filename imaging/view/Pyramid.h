#pragma once

#include <QImage>
#include <QRect>
#include <vector>

namespace kadrona::imaging::view {

/// A picture in ever halved sizes, so that a small drawing of it reads few pixels and does not
/// alias. Level 0 is the picture itself. Each higher level is half as wide and high, rounded up.
///
/// The levels are built in blocks, each when it is first asked for: what is never seen is never
/// computed. A block covers the same square of the picture at every level, and is made from the
/// nearest finer level that has it; levels between are not built for it.
///
/// The picture is handed in at every call and not kept: a second holder of its pixels would force
/// everybody who changes them to copy them first.
class Pyramid {
 public:
    Pyramid() = default;
    explicit Pyramid(QSize picture);

    QSize PictureSize() const { return levels_.empty() ? QSize() : levels_.front().size; }
    int LevelCount() const { return static_cast<int>(levels_.size()); }
    QSize LevelSize(int level) const { return levels_.at(static_cast<size_t>(level)).size; }

    /// The picture has changed, but not its size: its levels are built anew, in the memory
    /// that they have.
    void Invalidate();
    /// The picture has changed inside `area` (in its own pixels) alone.
    void Invalidate(const QRect& area);

    /// True when a level needs no building for `part` (in the level's pixels).
    bool IsBuilt(int level, const QRect& part) const { return MissingBlocks(level, part).empty(); }

    /// So many pixels of finer levels have to be read before `part` of a level is built. A million
    /// take about a millisecond.
    qint64 CostOf(int level, const QRect& part) const;

    /// Builds what is missing of `part` (in the level's pixels), but reads no more than `mostCost`
    /// pixels and one block; true when all of it is built. `picture` is the same at every call
    /// until Invalidate, 32 bits a pixel, opaque or premultiplied. Throws platform::Error where
    /// memory is short.
    bool Build(const QImage& picture, int level, const QRect& part, qint64 mostCost);

    /// A level, of which only what is built may be read; level 0 is `picture`.
    const QImage& Level(const QImage& picture, int level) const {
        return level == 0 ? picture : levels_.at(static_cast<size_t>(level)).image;
    }

 private:
    struct LevelState {
        QSize size;
        /// Null until the level is first used, always for level 0.
        QImage image;
        /// Of the blocks, row by row.
        std::vector<bool> isBuilt;
    };

    /// The blocks that a part of a level (in its pixels) touches.
    std::vector<size_t> BlocksIn(const QRect& part, int level) const;
    std::vector<size_t> MissingBlocks(int level, const QRect& part) const;
    QRect BlockRectangle(size_t block, int level) const;
    qint64 CostOf(int level, size_t block) const;
    void BuildBlocks(const QImage& picture, int level, const std::vector<size_t>& blocks);
    int NearestFinerLevel(int level, size_t block) const;

    int blockColumns_ = 0;
    std::vector<LevelState> levels_;
};

}  // namespace kadrona::imaging::view
