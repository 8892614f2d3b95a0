#pragma once

#include <QImage>
#include <QRect>
#include <vector>

namespace kadrona::imaging::view {

/// A picture in ever halved sizes, so that a small drawing of it reads few pixels and does not
/// alias. Level 0 is the picture itself. Each higher level is half as wide and high, rounded up,
/// and is built in blocks, each when it is first asked for: what is never seen is never computed.
///
/// The picture is handed in at every call and not kept: a second holder of its pixels would force
/// everybody who changes them to copy them first.
class Pyramid {
 public:
    Pyramid() = default;
    explicit Pyramid(QSize picture);

    int LevelCount() const { return static_cast<int>(reduced_.size()) + 1; }
    QSize LevelSize(int level) const;

    /// A level of which at least `part` (in the level's pixels) is built. `picture` is the same at
    /// every call, 32 bits a pixel, opaque or premultiplied. Throws platform::Error where memory is
    /// short.
    const QImage& Level(const QImage& picture, int level, const QRect& part);

 private:
    struct Reduced {
        QSize size;
        QImage image;
        /// Columns and rows of blocks.
        QSize blocks;
        /// Of the blocks, row by row.
        std::vector<bool> isBuilt;

        size_t IndexOf(QPoint block) const {
            return static_cast<size_t>(block.y()) * static_cast<size_t>(blocks.width()) +
                   static_cast<size_t>(block.x());
        }
    };

    void Build(const QImage& picture, int level, const QRect& part);
    static std::vector<QPoint> MissingBlocks(const Reduced& level, const QRect& part);

    QSize pictureSize_;
    /// Levels 1 and up.
    std::vector<Reduced> reduced_;
};

}  // namespace kadrona::imaging::view
